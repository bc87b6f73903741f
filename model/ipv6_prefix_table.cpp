#include "ipv6_prefix_table.h"

#include <algorithm>

namespace model {

ipv6_key ipv6_key::from_bytes(const std::uint8_t* b) {
  ipv6_key k;
  for (int i = 0; i < 8; ++i) k.hi = (k.hi << 8) | b[i];
  for (int i = 8; i < 16; ++i) k.lo = (k.lo << 8) | b[i];
  return k;
}

ipv6_key ipv6_prefix_table::masked(const ipv6_key& key, unsigned length) {
  auto keep = [](std::uint64_t v, unsigned bits) {
    return bits == 0 ? 0 : bits >= 64 ? v : v & (~0ull << (64 - bits));
  };
  return {keep(key.hi, length), keep(key.lo, length > 64 ? length - 64 : 0)};
}

std::uint32_t ipv6_prefix_table::make(const ipv6_key& key, unsigned length, plu_leaf_id leaf) {
  node n;
  n.key = key;
  n.leaf = leaf;
  n.length = static_cast<std::uint8_t>(length);
  if (free_.empty()) {
    nodes_.push_back(n);
    return static_cast<std::uint32_t>(nodes_.size() - 1);
  }
  const std::uint32_t i = free_.back();
  free_.pop_back();
  nodes_[i] = n;
  return i;
}

std::optional<std::pair<ipv6_prefix_table::link, ipv6_prefix_table::link>> ipv6_prefix_table::locate(
    const ipv6_key& key, unsigned length) const {
  link here;
  link parent;
  for (std::uint32_t i = root_; i != NONE;) {
    const node& n = nodes_[i];
    if (n.length > length || common_length(key, n.key) < n.length) return std::nullopt;
    if (n.length == length) return std::pair{here, parent};
    parent = here;
    here = {i, bit(key, n.length)};
    i = n.child[here.side];
  }
  return std::nullopt;
}

std::optional<plu_leaf_id> ipv6_prefix_table::find(const ipv6_key& key, unsigned length) const {
  const auto where = locate(masked(key, length), length);
  if (!where) return std::nullopt;
  const plu_leaf_id leaf = nodes_[at(where->first)].leaf;
  if (leaf == NONE) return std::nullopt;
  return leaf;
}

// Walks the nodes shorter than the directory's bits for one value of them.
ipv6_prefix_table::slot ipv6_prefix_table::directory_slot(std::uint32_t value) const {
  const ipv6_key key{std::uint64_t{value} << (64 - DIRECTORY_BITS), 0};
  slot s;
  for (std::uint32_t i = root_; i != NONE;) {
    const node& n = nodes_[i];
    if (n.length >= DIRECTORY_BITS) {
      s.start = i;
      break;
    }
    if (common_length(key, n.key) < n.length) break;
    if (n.leaf != NONE) s.best = prefix_match{n.leaf, n.length};
    i = n.child[bit(key, n.length)];
  }
  return s;
}

// A change moves nodes only within the values its prefix covers. The
// directory is made whole when the table first grows large.
void ipv6_prefix_table::refresh_directory(const ipv6_key& key, unsigned length) {
  if (directory_.empty() && prefixes_ < DIRECTORY_FROM) return;
  std::uint32_t count = 1u << (DIRECTORY_BITS - std::min(length, DIRECTORY_BITS));
  std::uint32_t first = static_cast<std::uint32_t>(key.hi >> (64 - DIRECTORY_BITS)) & ~(count - 1);
  if (directory_.empty()) {
    directory_.resize(std::size_t{1} << DIRECTORY_BITS);
    first = 0;
    count = static_cast<std::uint32_t>(directory_.size());
  }
  for (std::uint32_t v = first; v < first + count; ++v) directory_[v] = directory_slot(v);
}

// Descends while the node's prefix covers the new one; where they part, the
// new prefix goes in above the node, or a branching node joins the two.
void ipv6_prefix_table::set(const ipv6_key& key, unsigned length, plu_leaf_id leaf) {
  const ipv6_key k = masked(key, length);
  insert(k, length, leaf);
  refresh_directory(k, length);
}

void ipv6_prefix_table::insert(const ipv6_key& k, unsigned length, plu_leaf_id leaf) {
  for (link l;;) {
    const std::uint32_t cur = at(l);
    if (cur == NONE) {
      const std::uint32_t q = make(k, length, leaf);
      at(l) = q;
      ++prefixes_;
      return;
    }
    const node n = nodes_[cur];
    const unsigned common = std::min({common_length(k, n.key), length, unsigned{n.length}});
    if (common == n.length && n.length == length) {
      prefixes_ += n.leaf == NONE;
      nodes_[cur].leaf = leaf;
      return;
    }
    if (common == n.length) {
      l = {cur, bit(k, n.length)};
      continue;
    }
    const std::uint32_t q = make(k, length, leaf);
    ++prefixes_;
    if (common == length) {
      nodes_[q].child[bit(n.key, length)] = cur;
      at(l) = q;
      return;
    }
    const std::uint32_t g = make(masked(k, common), common, NONE);
    nodes_[g].child[bit(k, common)] = q;
    nodes_[g].child[bit(n.key, common)] = cur;
    at(l) = g;
    return;
  }
}

// A node without a leaf and with fewer than two children has no reason to
// stand: its child (or nothing) takes its place.
void ipv6_prefix_table::splice(const link& l) {
  const std::uint32_t x = at(l);
  const node& n = nodes_[x];
  if (n.leaf != NONE || (n.child[0] != NONE && n.child[1] != NONE)) return;
  at(l) = n.child[0] != NONE ? n.child[0] : n.child[1];
  release(x);
}

void ipv6_prefix_table::erase(const ipv6_key& key, unsigned length) {
  const ipv6_key k = masked(key, length);
  remove(k, length);
  refresh_directory(k, length);
}

void ipv6_prefix_table::remove(const ipv6_key& k, unsigned length) {
  const auto where = locate(k, length);
  if (!where) return;
  const auto [here, parent] = *where;
  const std::uint32_t x = at(here);
  if (nodes_[x].leaf == NONE) return;
  nodes_[x].leaf = NONE;
  --prefixes_;
  const bool leaves_its_place = nodes_[x].child[0] == NONE || nodes_[x].child[1] == NONE;
  splice(here);
  if (leaves_its_place && here.parent != NONE) splice(parent);
}

}  // namespace model
