#include "tcam_entries.h"

#include <algorithm>
#include <vector>

#include "ctrl/page_descriptors.h"

namespace ctrl {

namespace {

constexpr std::uint32_t ITC_KEY_UNIT_BITS = 80;
constexpr std::uint32_t MAX_MARK_BITS = (1u << 20) - 1;
// The shadow copies of result records under change: one place per hit address.
constexpr std::uint32_t RESULT_SHADOW_PLACES = 0x40000;

bool is_key_width(std::uint32_t bits) {
  if (bits % ITC_KEY_UNIT_BITS != 0) return false;
  const std::uint32_t size = bits / ITC_KEY_UNIT_BITS;
  return size == ITC_KEY_80 || size == ITC_KEY_160 || size == ITC_KEY_320 || size == ITC_KEY_400 || size == ITC_KEY_640;
}

bool value_outside_mask(std::span<const std::uint8_t> value, std::span<const std::uint8_t> mask) {
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] & ~mask[i]) return true;
  }
  return false;
}

model::igpu_engine::key igpu_key(const igpu_resp_match_request_& req) {
  model::igpu_engine::key k;
  std::copy_n(req.bytes, k.size(), k.begin());
  return k;
}

}  // namespace

error tcam_entries::configure_profile(std::uint32_t profile, std::uint32_t key_bits,
                                      std::span<const std::uint8_t> bmr) {
  if (profile >= model::tcam_engine::PROFILES) return error::out_of_range;
  if (!is_key_width(key_bits)) return error::bad_size;
  const std::size_t key_bytes = key_bits / 8;
  if (!bmr.empty() && bmr.size() != key_bytes) return error::bad_size;
  const std::vector<std::uint8_t> all_bits(key_bytes, 0xFF);
  n_.tcam().set_profile(profile, bmr.empty() ? std::span<const std::uint8_t>(all_bits) : bmr);
  return error::none;
}

error tcam_entries::write_entry(const tcam_entry& entry) {
  if (entry.index >= model::tcam_engine::ENTRIES || entry.profile >= model::tcam_engine::PROFILES) {
    return error::out_of_range;
  }
  const auto key_bytes = n_.tcam().profile_key_bytes(entry.profile);
  if (!key_bytes) return error::unknown_profile;
  if (entry.value.size() != *key_bytes || entry.mask.size() != *key_bytes) return error::bad_size;
  if (value_outside_mask(entry.value, entry.mask)) return error::mask_value_mismatch;
  n_.tcam().write_entry(entry.index, entry.profile, entry.value, entry.mask);
  return error::none;
}

error tcam_entries::delete_entry(std::uint32_t index) {
  return n_.tcam().delete_entry(index) == model::tcam_engine::change::done ? error::none : error::not_found;
}

error tcam_entries::write_result(std::uint32_t tpd_idx, std::uint32_t index, const protected_record& contents) {
  if (index >= model::tcam_engine::ENTRIES) return error::out_of_range;
  const auto addr = paged_record_address(n_, tpd_idx, index);
  if (!addr) return error::out_of_range;
  protected_record rec = contents;
  rec[0] |= 0x80;  // coherency_always_1
  if (n_.memory().read_u32(n_.memory().translate(*addr)) == 0) {
    write_record(n_, *addr, rec);
    return error::none;
  }
  enter_forward_state(n_, *addr, shadow_address(RESULT_SHADOW_PLACES + index));
  leave_forward_state(n_, *addr, rec);
  return error::none;
}

error tcam_entries::write_igpu_entry(const igpu_resp_match_request_& key, std::uint16_t uidb_index,
                                     std::uint32_t mark_bits) {
  if (mark_bits > MAX_MARK_BITS) return error::out_of_range;
  n_.igpu().write_entry(igpu_key(key), {uidb_index, mark_bits});
  return error::none;
}

error tcam_entries::delete_igpu_entry(const igpu_resp_match_request_& key) {
  return n_.igpu().delete_entry(igpu_key(key)) ? error::none : error::not_found;
}

}  // namespace ctrl
