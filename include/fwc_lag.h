// Bundle (link aggregation) records: the bundle record, read by bundle ID,
// and the member records, read by the memory engine at the bundle's first
// member plus the chosen member's number. Written by the control plane.
// Reserved fields have no descriptor: they stay 0.
#pragma once

#include "be_types.h"
#include "tlu_defs.h"

// One bundle, 16 bytes: its first member record and the member count, which
// is the modulus of the member choice.
struct lag_tbl_info_fields_st {
  std::uint8_t bytes[16];
  using valid = be_bits<0, 0, 1>;
  using truncate_hash = be_bits<0, 1, 1>;  // the choice uses the low 8 bits of the hash
  using global_mem_base_ptr = be_bits<0, 4, 28>;
  using num_members_global = be_bits<4, 0, 10>;
};
static_assert(sizeof(lag_tbl_info_fields_st) == 16);

// One member, 16 bytes.
struct lag_mem_info_fields_st {
  std::uint8_t bytes[16];
  struct bf {
    using valid = be_bits<0, 0, 1>;
    using np_local = be_bits<0, 1, 1>;     // the member port lies on this NPU
    using remote_rack = be_bits<0, 2, 1>;  // the member lies on another rack
  };
  using lag_selector = be_bits<1, 0, 8>;
  using bdl_name_id = be_bits<2, 0, 16>;
  using vqi_voq = be_bits<4, 0, 24>;
  using np_port_id = be_bits<8, 0, 16>;
};
static_assert(sizeof(lag_mem_info_fields_st) == 16);

// The answer of a member read with modulus: the remainder block, then the
// member that the remainder chose.
struct mod_lag_st {
  npu_mod_fields_st mod;
  lag_mem_info_fields_st fields;
};
static_assert(sizeof(mod_lag_st) == 32);
