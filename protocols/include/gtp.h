// The GTP-U header (TS 29.281; version 2 of TS 29.274 for its flags): flags,
// message type, length, tunnel endpoint identifier (TEID).
#pragma once

#include <cstdint>

#include "be_types.h"

struct gtp_hdr_st {
  std::uint8_t flags;
  std::uint8_t msg_type;
  be_u16 length;
  be_u32 teid;
};
static_assert(sizeof(gtp_hdr_st) == 8);

inline constexpr std::uint32_t GTP_VERSION_SHIFT = 5;
inline constexpr std::uint8_t GTP_FLAG_T = 0x08;   // version 2: a TEID is present
inline constexpr std::uint8_t GTP_FLAG_E = 0x04;   // version 1: extension headers follow
inline constexpr std::uint8_t GTP_FLAG_S = 0x02;   // version 1: a sequence number is present
inline constexpr std::uint8_t GTP_FLAG_PN = 0x01;  // version 1: an N-PDU number is present
