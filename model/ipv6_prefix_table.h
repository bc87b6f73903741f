// Longest-prefix match over 128-bit addresses: a path-compressed binary trie.
// Each node stands for a prefix; it holds a leaf if that prefix is a route,
// and is a branching point otherwise. A search follows the address bits from
// node to node, keeping the last node whose prefix matched and has a leaf,
// and never allocates. The memory is linear in the number of prefixes, so
// sparse tables of long prefixes stay small.
//
// A table that grows large gets a directory by the address's first 16 bits:
// for each value, the first node of 16 bits or more on its path and the
// best leaf above it, so a search skips the top of the trie. A change
// refreshes the entries its prefix covers.
//
// Not thread-safe on its own: the PLU engine guards it.
#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <vector>

#include "ipv4_prefix_table.h"

namespace model {

struct ipv6_key {
  std::uint64_t hi = 0;
  std::uint64_t lo = 0;

  // From 16 bytes in network order.
  static ipv6_key from_bytes(const std::uint8_t* b);
  bool operator==(const ipv6_key&) const = default;
};

class ipv6_prefix_table {
 public:
  static constexpr unsigned MAX_LENGTH = 128;
  // Prefixes from which the table keeps its directory.
  static constexpr std::size_t DIRECTORY_FROM = 4096;

  std::optional<prefix_match> search(const ipv6_key& key) const {
    std::optional<prefix_match> best;
    std::uint32_t i = root_;
    if (!directory_.empty()) {
      const slot& s = directory_[key.hi >> (64 - DIRECTORY_BITS)];
      if (s.best.leaf != NONE) best = s.best;
      i = s.start;
    }
    for (; i != NONE;) {
      const node& n = nodes_[i];
      if (common_length(key, n.key) < n.length) break;
      if (n.leaf != NONE) best = prefix_match{n.leaf, n.length};
      if (n.length == MAX_LENGTH) break;
      i = n.child[bit(key, n.length)];
    }
    return best;
  }

  std::optional<plu_leaf_id> find(const ipv6_key& key, unsigned length) const;
  // Adds the prefix or gives it another leaf. Bits past length are ignored.
  void set(const ipv6_key& key, unsigned length, plu_leaf_id leaf);
  void erase(const ipv6_key& key, unsigned length);
  std::size_t size() const { return prefixes_; }

  static ipv6_key masked(const ipv6_key& key, unsigned length);

 private:
  static constexpr std::uint32_t NONE = 0xFFFFFFFF;
  static constexpr unsigned DIRECTORY_BITS = 16;
  struct slot {
    std::uint32_t start = NONE;
    prefix_match best{NONE, 0};
  };
  struct node {
    ipv6_key key;  // the prefix, bits past length cleared
    std::uint32_t child[2] = {NONE, NONE};
    plu_leaf_id leaf = NONE;
    std::uint8_t length = 0;
  };
  // Where a node hangs: the root, or side `side` of node `parent`.
  struct link {
    std::uint32_t parent = NONE;
    unsigned side = 0;
  };

  static unsigned common_length(const ipv6_key& a, const ipv6_key& b) {
    if (const std::uint64_t x = a.hi ^ b.hi) return static_cast<unsigned>(std::countl_zero(x));
    return 64 + static_cast<unsigned>(std::countl_zero(a.lo ^ b.lo));
  }
  static unsigned bit(const ipv6_key& k, unsigned i) {
    return static_cast<unsigned>(i < 64 ? (k.hi >> (63 - i)) & 1 : (k.lo >> (127 - i)) & 1);
  }
  std::uint32_t& at(const link& l) { return l.parent == NONE ? root_ : nodes_[l.parent].child[l.side]; }
  std::uint32_t at(const link& l) const { return l.parent == NONE ? root_ : nodes_[l.parent].child[l.side]; }
  std::uint32_t make(const ipv6_key& key, unsigned length, plu_leaf_id leaf);
  void release(std::uint32_t n) { free_.push_back(n); }
  // The link of the node of exactly key/length and the link of its parent.
  std::optional<std::pair<link, link>> locate(const ipv6_key& key, unsigned length) const;
  void splice(const link& l);
  void insert(const ipv6_key& k, unsigned length, plu_leaf_id leaf);
  void remove(const ipv6_key& k, unsigned length);
  slot directory_slot(std::uint32_t value) const;
  void refresh_directory(const ipv6_key& key, unsigned length);

  std::vector<node> nodes_;
  std::vector<std::uint32_t> free_;
  std::uint32_t root_ = NONE;
  std::size_t prefixes_ = 0;
  std::vector<slot> directory_;  // empty below DIRECTORY_FROM prefixes
};

}  // namespace model
