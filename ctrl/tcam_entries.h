// TCAM profiles and entries, the result records that an entry's index
// selects, and the IGPU's classification entries. Every call checks its
// input first and leaves the tables as they were when it fails.
#pragma once

#include <cstdint>
#include <span>

#include "ctrl/error.h"
#include "ctrl/protected_records.h"
#include "model/npu.h"

namespace ctrl {

// An entry matches a key that equals `value` on every bit set in `mask`;
// value bits outside the mask are refused. Among the entries of a profile the
// lowest index that matches wins, and the index is the hit address.
struct tcam_entry {
  std::uint32_t index;
  std::uint32_t profile;
  std::span<const std::uint8_t> value;
  std::span<const std::uint8_t> mask;
};

class tcam_entries {
 public:
  explicit tcam_entries(model::npu& n) : n_(n) {}

  // A profile's key width (80, 160, 320, 400 or 640 bits) and its bit mask
  // register, one byte per key byte; empty: every bit compared. A new width
  // drops the profile's entries.
  error configure_profile(std::uint32_t profile, std::uint32_t key_bits, std::span<const std::uint8_t> bmr = {});
  error write_entry(const tcam_entry& entry);
  error delete_entry(std::uint32_t index);

  // The 32-byte result record of hit address `index` in the result table of
  // page descriptor tpd_idx, with its coherency bit set. A record that
  // threads may be reading changes through the forward state.
  error write_result(std::uint32_t tpd_idx, std::uint32_t index, const protected_record& contents);

  // The IGPU: a request (reserved_1 not compared) and the interface it names.
  error write_igpu_entry(const igpu_resp_match_request_& key, std::uint16_t uidb_index, std::uint32_t mark_bits);
  error delete_igpu_entry(const igpu_resp_match_request_& key);

 private:
  model::npu& n_;
};

}  // namespace ctrl
