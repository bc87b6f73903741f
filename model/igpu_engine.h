// The IGPU's VLAN classification table: an exact match of the ten
// significant bytes of its request (all but reserved_1), answering the
// interface's UIDB index and mark bits.
//
// Concurrency: as the PLU engine: one read_mostly_lock, a reader slot per
// NPU thread for a search, the writer side for a change.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <unordered_map>

#include "read_mostly_lock.h"
#include "tcam_defs.h"

namespace model {

class igpu_engine {
 public:
  using key = std::array<std::uint8_t, IGPU_KEY_BYTES>;
  struct result {
    std::uint16_t uidb_index;
    std::uint32_t mark_bits;
  };

  std::optional<result> search(std::uint32_t reader, const key& k) const;
  // Adds or replaces the entry of k.
  void write_entry(const key& k, const result& r);
  bool delete_entry(const key& k);

 private:
  struct key_hash {
    std::size_t operator()(const key& k) const;
  };
  mutable read_mostly_lock lock_;
  std::unordered_map<key, result, key_hash> entries_;
};

}  // namespace model
