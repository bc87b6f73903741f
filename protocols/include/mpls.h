// An MPLS label stack entry (RFC 3032): label (20 bits), traffic class (3),
// bottom of stack (1), TTL (8).
#pragma once

#include <cstdint>

#include "be_types.h"

struct mpls_hdr_st {
  std::uint8_t bytes[4];
  using label = be_bits<0, 0, 20>;
  using exp = be_bits<2, 4, 3>;
  using eos = be_bits<2, 7, 1>;
  using ttl = be_bits<3, 0, 8>;
};
static_assert(sizeof(mpls_hdr_st) == 4);

// The entropy label indicator (RFC 6790): the label behind it is the entropy label.
inline constexpr std::uint32_t MPLS_LABEL_ELI = 7;
