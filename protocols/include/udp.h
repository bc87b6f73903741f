// The UDP header (RFC 768).
#pragma once

#include <cstdint>

#include "be_types.h"

struct udp_hdr_st {
  be_u16 src_port;
  be_u16 dst_port;
  be_u16 length;
  be_u16 checksum;
};
static_assert(sizeof(udp_hdr_st) == 8);

inline constexpr std::uint16_t UDP_PORT_GTP_U = 2152;
