// The IPv6 header (RFC 8200), 40 bytes, and the extension headers that a
// walk of the chain reads.
#pragma once

#include <cstdint>

#include "be_types.h"

struct ipv6_hdr_st {
  be_u32 ver_tc_flow;  // version (4 bits), traffic class (8), flow label (20)
  be_u16 payload_length;
  std::uint8_t next_header;
  std::uint8_t hop_limit;
  be_u32 src_addr[4];
  be_u32 dst_addr[4];

  using version = be_bits<0, 0, 4>;
  using traffic_class = be_bits<0, 4, 8>;
  using flow_label = be_bits<1, 4, 20>;
};
static_assert(sizeof(ipv6_hdr_st) == 40);

inline constexpr std::uint32_t IPV6_HDR_BYTES = 40;
inline constexpr std::uint32_t IPV6_FLOW_LABEL_MASK = 0xFFFFF;

// The start of every extension header: the next header and a length byte.
struct ipv6_ext_hdr_st {
  std::uint8_t next_header;
  std::uint8_t hdr_ext_len;
};

// The routing header's type, behind its length.
struct ipv6_routing_hdr_st {
  std::uint8_t next_header;
  std::uint8_t hdr_ext_len;
  std::uint8_t routing_type;
  std::uint8_t segments_left;
};
inline constexpr std::uint8_t IPV6_ROUTING_TYPE_SRH = 4;

struct ipv6_frag_hdr_st {
  std::uint8_t next_header;
  std::uint8_t reserved;
  be_u16 frag_off_mf;  // offset (13 bits), reserved (2), more fragments (1)
  be_u32 id;
};
static_assert(sizeof(ipv6_frag_hdr_st) == 8);
inline constexpr std::uint16_t IPV6_FRAG_OFFSET_MASK = 0xFFF8;
inline constexpr std::uint16_t IPV6_FRAG_RESERVED_MASK = 0x0006;
