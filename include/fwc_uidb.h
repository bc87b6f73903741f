// Interface (UIDB) records.
#pragma once

#include "be_types.h"

// L3 ingress interface record, 32 bytes. The first bit is always 1 in a valid
// record, so that a first word of 0 means the result has not arrived.
struct uidb_l3_ing_fields_st {
  std::uint8_t bytes[32];
  using coherency = be_bits<0, 0, 1>;
  using l2_uidb = be_bits<0, 1, 1>;
  using line_status_up = be_bits<0, 7, 1>;
  using satellite_IC = be_bits<1, 0, 1>;
  using uidb_ifhandle = be_bits<12, 0, 32>;  // the interface handle: input_ifh at ingress
};
static_assert(sizeof(uidb_l3_ing_fields_st) == 32);

// The marks of an interface that the hardware copies into the baf part of
// the distribution header, by UIDB index (UIDB_MARK_BITS_ING): a reserved
// byte, 20 marks (the L3 or the L2 view, by l2_uidb), then 4 port bits.
struct mark_bits_st {
  std::uint8_t bytes[4];
  using rsvd0 = be_bits<0, 0, 8>;
  struct l3 {
    using rt_v4 = be_bits<1, 0, 1>;
    using rt_v6 = be_bits<1, 1, 1>;
    using rt_mpls = be_bits<1, 2, 1>;
    using l2_uidb = be_bits<1, 3, 1>;
    using line_status_up = be_bits<1, 4, 1>;
    using ipv4_en = be_bits<1, 5, 1>;
    using ipv6_en = be_bits<1, 6, 1>;
    using mpls_en = be_bits<1, 7, 1>;
    using fast_ext_req = be_bits<2, 0, 1>;
    using ext_req = be_bits<2, 1, 1>;
    using read_bng_uidb_ext = be_bits<2, 2, 1>;
    using global_vrf = be_bits<2, 3, 1>;
    using uidb_maintenance_mode = be_bits<2, 4, 1>;
    using rsvd2 = be_bits<2, 5, 7>;
  };
  struct l2 {
    using rt = be_bits<1, 0, 1>;
    using vpls = be_bits<1, 1, 1>;
    using mark_21 = be_bits<1, 2, 1>;
    using l2_uidb = be_bits<1, 3, 1>;
    using line_status_up = be_bits<1, 4, 1>;
    using rsvd2 = be_bits<1, 5, 3>;
    using uidb_maintenance_mode = be_bits<2, 0, 1>;
    using ext_req = be_bits<2, 1, 1>;
    using mark_13_4 = be_bits<2, 2, 10>;
  };
  using port_bits = be_bits<3, 4, 4>;
};
static_assert(sizeof(mark_bits_st) == 4);
