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
};
static_assert(sizeof(uidb_l3_ing_fields_st) == 32);
