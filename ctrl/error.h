// What a control-side call could not do. Every call that can fail returns one.
#pragma once

namespace ctrl {

enum class error {
  none,
  out_of_range,         // an index or number outside what the table or platform has
  bad_size,             // a size the platform cannot take
  table_full,           // no room left for another entry
  exists,               // the key is in the table already
  not_found,            // no entry holds the key
  unsupported,          // the table is not written this way
  bad_prefix_length,    // a prefix longer than its address family allows
  unknown_vrf,          // a VRF the control side has not added
  unknown_profile,      // a TCAM profile that is not configured
  mask_value_mismatch,  // a TCAM value with a bit set where its mask is clear
};

}  // namespace ctrl
