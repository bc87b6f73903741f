#include "ipv4_prefix_table.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace model {

ipv4_prefix_table::ipv4_prefix_table() : groups_(FANOUT, EMPTY) {}

std::uint32_t ipv4_prefix_table::masked(std::uint32_t addr, unsigned length) {
  return length == 0 ? 0 : addr & (~0u << (MAX_LENGTH - length));
}

std::uint64_t ipv4_prefix_table::prefix_key(std::uint32_t addr, unsigned length) {
  return (std::uint64_t{length} << 32) | masked(addr, length);
}

std::optional<plu_leaf_id> ipv4_prefix_table::find(std::uint32_t addr, unsigned length) const {
  auto it = prefixes_.find(prefix_key(addr, length));
  if (it == prefixes_.end()) return std::nullopt;
  return it->second;
}

void ipv4_prefix_table::set(std::uint32_t addr, unsigned length, plu_leaf_id leaf) {
  assert(length <= MAX_LENGTH && leaf <= ID_MASK);
  prefixes_[prefix_key(addr, length)] = leaf;
  apply(masked(addr, length), {leaf_entry(leaf, length), length, replace::not_longer});
}

// The entries of the prefix fall back to the longest shorter prefix that
// covers it, and groups left uniform fold into their parent entry.
void ipv4_prefix_table::erase(std::uint32_t addr, unsigned length) {
  if (prefixes_.erase(prefix_key(addr, length)) == 0) return;
  addr = masked(addr, length);
  apply(addr, {covering_entry(addr, length), length, replace::exactly});
  collapse_path(addr, length);
}

ipv4_prefix_table::entry ipv4_prefix_table::covering_entry(std::uint32_t addr, unsigned length) const {
  for (unsigned l = length; l-- > 0;) {
    if (auto leaf = find(addr, l)) return leaf_entry(*leaf, l);
  }
  return EMPTY;
}

std::uint32_t ipv4_prefix_table::new_group(entry fill) {
  std::uint32_t g;
  if (free_groups_.empty()) {
    g = static_cast<std::uint32_t>(groups_.size() / FANOUT);
    assert(g <= ID_MASK);
    groups_.resize(groups_.size() + FANOUT, fill);
  } else {
    g = free_groups_.back();
    free_groups_.pop_back();
    std::fill_n(groups_.begin() + g * FANOUT, FANOUT, fill);
  }
  return g;
}

std::optional<ipv4_prefix_table::entry> ipv4_prefix_table::uniform(std::uint32_t group) const {
  const entry first = groups_[group * FANOUT];
  if (kind_of(first) == GROUP) return std::nullopt;
  for (std::uint32_t i = 1; i < FANOUT; ++i) {
    if (groups_[group * FANOUT + i] != first) return std::nullopt;
  }
  return first;
}

// Walks down the address to the level where the prefix ends, making groups
// on the way (an erase finds them there), and rewrites the entries it spans.
void ipv4_prefix_table::apply(std::uint32_t addr, const rewrite& rw) {
  std::uint32_t group = 0;
  for (unsigned level_end = 8;; level_end += 8) {
    const std::uint32_t byte = (addr >> (MAX_LENGTH - level_end)) & 0xFF;
    if (rw.length <= level_end) {
      const std::uint32_t span = 1u << (level_end - rw.length);
      return cover(group, byte & ~(span - 1), span, rw);
    }
    const entry e = at(group, byte);
    if (kind_of(e) != GROUP) {
      if (rw.which == replace::exactly) return;
      const std::uint32_t child = new_group(e);
      at(group, byte) = group_entry(child);
    }
    group = id_of(at(group, byte));
  }
}

void ipv4_prefix_table::cover(std::uint32_t group, std::uint32_t first, std::uint32_t count, const rewrite& rw) {
  for (std::uint32_t i = first; i < first + count; ++i) {
    const entry e = at(group, i);
    if (kind_of(e) == GROUP) {
      cover(id_of(e), 0, FANOUT, rw);
      if (auto u = uniform(id_of(e))) {
        free_groups_.push_back(id_of(e));
        at(group, i) = *u;
      }
      continue;
    }
    const bool replaced = rw.which == replace::not_longer ? kind_of(e) == EMPTY || depth_of(e) <= rw.length
                                                          : kind_of(e) == LEAF && depth_of(e) == rw.length;
    if (replaced) at(group, i) = rw.with;
  }
}

// A group all of whose entries are one leaf (or empty) folds into the
// entry that links it, from the deepest level up.
void ipv4_prefix_table::collapse_path(std::uint32_t addr, unsigned length) {
  std::array<std::pair<std::uint32_t, std::uint32_t>, 4> path{};  // group, byte
  std::uint32_t depth = 0;
  std::uint32_t group = 0;
  for (unsigned level_end = 8; level_end <= MAX_LENGTH; level_end += 8) {
    const std::uint32_t byte = (addr >> (MAX_LENGTH - level_end)) & 0xFF;
    path[depth++] = {group, byte};
    const entry e = at(group, byte);
    if (kind_of(e) != GROUP || length <= level_end) break;
    group = id_of(e);
  }
  for (std::uint32_t i = depth; i-- > 1;) {
    const auto u = uniform(path[i].first);
    if (!u) return;
    free_groups_.push_back(path[i].first);
    at(path[i - 1].first, path[i - 1].second) = *u;
  }
}

}  // namespace model
