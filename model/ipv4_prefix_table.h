// Longest-prefix match over IPv4 addresses: a multibit trie of four 8-bit
// strides with prefix expansion. Each node is a group of 256 entries, one
// per value of the address byte at its level; an entry holds the leaf of the
// longest prefix that covers it at that level, or the link to the group of
// the next byte. A search is at most four reads and never allocates; groups
// are made and freed by the control side. A table of one VRF starts at 1 KB.
//
// Not thread-safe on its own: the PLU engine guards it.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace model {

using plu_leaf_id = std::uint32_t;

struct prefix_match {
  plu_leaf_id leaf;
  std::uint8_t length;
};

class ipv4_prefix_table {
 public:
  static constexpr unsigned MAX_LENGTH = 32;

  ipv4_prefix_table();

  std::optional<prefix_match> search(std::uint32_t addr) const {
    entry e = groups_[addr >> 24];
    for (unsigned shift = 16; kind_of(e) == GROUP; shift -= 8) {
      e = groups_[id_of(e) * FANOUT + ((addr >> shift) & 0xFF)];
    }
    if (kind_of(e) != LEAF) return std::nullopt;
    return prefix_match{id_of(e), depth_of(e)};
  }

  // The leaf of exactly addr/length, if the table holds that prefix.
  std::optional<plu_leaf_id> find(std::uint32_t addr, unsigned length) const;
  // Adds the prefix or gives it another leaf. Bits of addr past length are ignored.
  void set(std::uint32_t addr, unsigned length, plu_leaf_id leaf);
  void erase(std::uint32_t addr, unsigned length);
  std::size_t size() const { return prefixes_.size(); }
  std::size_t groups() const { return groups_.size() / FANOUT - free_groups_.size(); }

 private:
  // An entry: kind in bits 31..30, prefix length in 29..24, leaf or group id below.
  using entry = std::uint32_t;
  static constexpr std::uint32_t FANOUT = 256;
  static constexpr std::uint32_t EMPTY = 0, LEAF = 1, GROUP = 2;
  static constexpr std::uint32_t ID_MASK = 0xFFFFFF;

  static constexpr std::uint32_t kind_of(entry e) { return e >> 30; }
  static constexpr std::uint8_t depth_of(entry e) { return static_cast<std::uint8_t>((e >> 24) & 0x3F); }
  static constexpr std::uint32_t id_of(entry e) { return e & ID_MASK; }
  static constexpr entry leaf_entry(plu_leaf_id leaf, unsigned length) { return (LEAF << 30) | (length << 24) | leaf; }
  static constexpr entry group_entry(std::uint32_t group) { return (GROUP << 30) | group; }

  // Which entries a rewrite replaces: those of a prefix no longer than the
  // new one (an insert), or those of exactly the prefix removed (an erase).
  enum class replace { not_longer, exactly };
  struct rewrite {
    entry with;
    unsigned length;
    replace which;
  };

  static std::uint64_t prefix_key(std::uint32_t addr, unsigned length);
  static std::uint32_t masked(std::uint32_t addr, unsigned length);
  entry& at(std::uint32_t group, std::uint32_t index) { return groups_[group * FANOUT + index]; }
  std::uint32_t new_group(entry fill);
  std::optional<entry> uniform(std::uint32_t group) const;
  void apply(std::uint32_t addr, const rewrite& rw);
  void cover(std::uint32_t group, std::uint32_t first, std::uint32_t count, const rewrite& rw);
  void collapse_path(std::uint32_t addr, unsigned length);
  entry covering_entry(std::uint32_t addr, unsigned length) const;

  std::vector<entry> groups_;  // group g at g * FANOUT; group 0 is the first byte
  std::vector<std::uint32_t> free_groups_;
  std::unordered_map<std::uint64_t, plu_leaf_id> prefixes_;  // by length << 32 | address
};

}  // namespace model
