// The TCAM behind the ITC. It holds up to 65536 entries of value and mask
// bits; an entry's index is the hit address a search answers, and the record
// index of the feature's result table. Each entry belongs to one profile; a profile fixes the key
// width and holds the bit mask register (bmr): the key bits that a search
// with bmr enabled compares. A search of a profile answers the lowest index
// whose value equals the key on every bit that the entry's mask (and the
// bmr, when enabled) selects.
//
// Concurrency: as the PLU engine: one read_mostly_lock, a reader slot per
// NPU thread for a search, the writer side for a change.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "read_mostly_lock.h"
#include "tcam_defs.h"

namespace model {

class tcam_engine {
 public:
  static constexpr std::uint32_t PROFILES = 128;
  static constexpr std::uint32_t ENTRIES = 1u << 16;

  enum class outcome { hit, miss, wrong_width };
  struct search_result {
    outcome what;
    std::uint32_t index;
  };
  enum class change { done, no_profile, wrong_width, missing };

  // ---- searches, on NPU thread `reader` ----
  search_result search(std::uint32_t reader, std::uint32_t profile, bool bmr_enable,
                       std::span<const std::uint8_t> key) const;

  // ---- the control side ----
  // A profile's key width in bytes, and its bmr of as many bytes.
  void set_profile(std::uint32_t profile, std::span<const std::uint8_t> bmr);
  std::optional<std::uint32_t> profile_key_bytes(std::uint32_t profile) const;
  // Puts the entry at index, in place of whatever stood there.
  change write_entry(std::uint32_t index, std::uint32_t profile, std::span<const std::uint8_t> value,
                     std::span<const std::uint8_t> mask);
  change delete_entry(std::uint32_t index);

 private:
  // A profile's entries in index order, values and masks side by side.
  struct profile_table {
    std::uint32_t key_bytes = 0;  // 0: not set
    std::vector<std::uint8_t> bmr;
    std::vector<std::uint32_t> indexes;
    std::vector<std::uint8_t> values;
    std::vector<std::uint8_t> masks;
  };
  static bool matches(const std::uint8_t* key, const std::uint8_t* value, const std::uint8_t* mask,
                      const std::uint8_t* bmr, std::uint32_t bytes);
  void remove(std::uint32_t index);

  mutable read_mostly_lock lock_;
  std::array<profile_table, PROFILES> profiles_;
  std::unordered_map<std::uint32_t, std::uint32_t> profile_of_;  // entry index -> profile
};

}  // namespace model
