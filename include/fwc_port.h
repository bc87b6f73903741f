// Port records.
#pragma once

#include "be_types.h"

// Ingress port record, 16 bytes, by logical port.
struct ingress_port_fields_part1_st {
  std::uint8_t bytes[12];
  be_u32 port_if_handle;
  using l3_lb_hash = be_bits<0, 4, 1>;
  using ext = be_bits<0, 5, 1>;
  using sat_encap = be_bits<0, 6, 2>;
  using sat = be_bits<1, 0, 1>;
  using rt_l2 = be_bits<1, 1, 1>;
  using rt_l3 = be_bits<1, 2, 1>;
  using gbl_feature = be_bits<1, 3, 1>;
  using force_l2_ctrl_vector = be_bits<1, 4, 1>;
  // The 12 bits from l3_lb_hash on, which the receive header carries as its port bits.
  using port_bits = be_bits<0, 4, 12>;
  using standby_bundle_member = be_bits<6, 1, 1>;
  using sat_port_unicast_state = be_bits<6, 3, 1>;
};
static_assert(sizeof(ingress_port_fields_part1_st) == 16);
