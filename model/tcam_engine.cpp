#include "tcam_engine.h"

#include <algorithm>

namespace model {

bool tcam_engine::matches(const std::uint8_t* key, const std::uint8_t* value, const std::uint8_t* mask,
                          const std::uint8_t* bmr, std::uint32_t bytes) {
  for (std::uint32_t i = 0; i < bytes; ++i) {
    if ((key[i] ^ value[i]) & mask[i] & (bmr ? bmr[i] : 0xFF)) return false;
  }
  return true;
}

tcam_engine::search_result tcam_engine::search(std::uint32_t reader, std::uint32_t profile, bool bmr_enable,
                                               std::span<const std::uint8_t> key) const {
  read_mostly_lock::reader guard(lock_, reader);
  const profile_table& p = profiles_[profile % PROFILES];
  if (p.key_bytes == 0) return {outcome::miss, 0};
  if (p.key_bytes != key.size()) return {outcome::wrong_width, 0};
  const std::uint8_t* bmr = bmr_enable ? p.bmr.data() : nullptr;
  for (std::size_t e = 0; e < p.indexes.size(); ++e) {
    const std::size_t at = e * p.key_bytes;
    if (matches(key.data(), &p.values[at], &p.masks[at], bmr, p.key_bytes)) return {outcome::hit, p.indexes[e]};
  }
  return {outcome::miss, 0};
}

// A new width drops the profile's entries: they no longer fit its keys.
void tcam_engine::set_profile(std::uint32_t profile, std::span<const std::uint8_t> bmr) {
  read_mostly_lock::writer guard(lock_);
  profile_table& p = profiles_[profile];
  if (p.key_bytes != bmr.size()) {
    for (std::uint32_t index : p.indexes) profile_of_.erase(index);
    p = profile_table{};
    p.key_bytes = static_cast<std::uint32_t>(bmr.size());
  }
  p.bmr.assign(bmr.begin(), bmr.end());
}

std::optional<std::uint32_t> tcam_engine::profile_key_bytes(std::uint32_t profile) const {
  read_mostly_lock::writer guard(lock_);
  const std::uint32_t bytes = profiles_[profile % PROFILES].key_bytes;
  if (bytes == 0) return std::nullopt;
  return bytes;
}

void tcam_engine::remove(std::uint32_t index) {
  const auto it = profile_of_.find(index);
  if (it == profile_of_.end()) return;
  profile_table& p = profiles_[it->second];
  const auto pos =
      static_cast<std::size_t>(std::lower_bound(p.indexes.begin(), p.indexes.end(), index) - p.indexes.begin());
  p.indexes.erase(p.indexes.begin() + static_cast<std::ptrdiff_t>(pos));
  const auto first = static_cast<std::ptrdiff_t>(pos * p.key_bytes);
  const auto last = first + static_cast<std::ptrdiff_t>(p.key_bytes);
  p.values.erase(p.values.begin() + first, p.values.begin() + last);
  p.masks.erase(p.masks.begin() + first, p.masks.begin() + last);
  profile_of_.erase(it);
}

tcam_engine::change tcam_engine::write_entry(std::uint32_t index, std::uint32_t profile,
                                             std::span<const std::uint8_t> value, std::span<const std::uint8_t> mask) {
  read_mostly_lock::writer guard(lock_);
  profile_table& p = profiles_[profile];
  if (p.key_bytes == 0) return change::no_profile;
  if (value.size() != p.key_bytes || mask.size() != p.key_bytes) return change::wrong_width;
  remove(index);
  const auto pos = std::lower_bound(p.indexes.begin(), p.indexes.end(), index) - p.indexes.begin();
  const auto at = pos * static_cast<std::ptrdiff_t>(p.key_bytes);
  p.indexes.insert(p.indexes.begin() + pos, index);
  p.values.insert(p.values.begin() + at, value.begin(), value.end());
  p.masks.insert(p.masks.begin() + at, mask.begin(), mask.end());
  profile_of_[index] = profile;
  return change::done;
}

tcam_engine::change tcam_engine::delete_entry(std::uint32_t index) {
  read_mostly_lock::writer guard(lock_);
  if (!profile_of_.count(index)) return change::missing;
  remove(index);
  return change::done;
}

}  // namespace model
