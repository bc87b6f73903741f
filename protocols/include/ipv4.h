// The IPv4 header (RFC 791): 20 bytes, then IHL - 5 words of options.
#pragma once

#include <cstdint>

#include "be_types.h"

struct ipv4_hdr_st {
  std::uint8_t version_ihl;
  std::uint8_t tos;
  be_u16 total_length;
  be_u16 id;
  be_u16 frag_off;  // flags (3 bits), fragment offset (13 bits)
  std::uint8_t ttl;
  std::uint8_t protocol;
  be_u16 checksum;
  be_u32 src_addr;
  be_u32 dst_addr;

  using version = be_bits<0, 0, 4>;
  using ihl = be_bits<0, 4, 4>;  // header length in 4-byte words
  using dont_fragment = be_bits<6, 1, 1>;
  using more_fragments = be_bits<6, 2, 1>;
  using fragment_offset = be_bits<6, 3, 13>;
};
static_assert(sizeof(ipv4_hdr_st) == 20);

inline constexpr std::uint32_t IPV4_HDR_BYTES = 20;
// More-fragments and offset: a packet is a fragment when any of them is set.
inline constexpr std::uint32_t IPV4_FRAG_MF_OFFSET_MASK = 0x3FFF;

// IP protocol numbers, shared with the IPv6 next header.
inline constexpr std::uint8_t IP_PROTO_HOP_BY_HOP = 0;
inline constexpr std::uint8_t IP_PROTO_TCP = 6;
inline constexpr std::uint8_t IP_PROTO_UDP = 17;
inline constexpr std::uint8_t IP_PROTO_ROUTING = 43;
inline constexpr std::uint8_t IP_PROTO_FRAGMENT = 44;
inline constexpr std::uint8_t IP_PROTO_AH = 51;
inline constexpr std::uint8_t IP_PROTO_DEST_OPTS = 60;
inline constexpr std::uint8_t IP_PROTO_SCTP = 132;
inline constexpr std::uint8_t IP_PROTO_MOBILITY = 135;
