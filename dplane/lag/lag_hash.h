// The numerator of a member choice: the bundle's hash bits, or their low 8
// bits alone for a bundle that truncates its hash.
#pragma once

#include <cstdint>

#include "fwc_lag.h"

inline constexpr std::uint32_t LAG_TRUNCATED_HASH_MASK = 0xFF;

inline std::uint32_t lag_selection_hash(const lag_tbl_info_fields_st& bundle, std::uint32_t lag_hash) {
  return lag_tbl_info_fields_st::truncate_hash::get(bundle) ? lag_hash & LAG_TRUNCATED_HASH_MASK : lag_hash;
}
