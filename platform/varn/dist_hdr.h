// Distribution headers: the first bytes of data memory, written by the
// distributor for each packet. Positions count from the start of the header.
#pragma once

#include "be_types.h"

// Values of dst_format.
enum dst_format_e : std::uint32_t {
  DST_FORMAT_RECYCLE = 0,
  DST_FORMAT_SPECIAL = 1,
  DST_FORMAT_FABRIC = 2,
  DST_FORMAT_PDMA_3 = 3,
  DST_FORMAT_INTERNAL = 4,
  DST_FORMAT_PDMA_5 = 5,
  DST_FORMAT_LINE = 6,
  DST_FORMAT_PDMA_7 = 7,
};

// The 16 bytes that every form shares.
struct dist_hdr_common_st {
  std::uint8_t bytes[16];
  using dst_format = be_bits<0, 0, 3>;
  using ingress = be_bits<0, 0, 1>;
  using error = be_bits<4, 0, 1>;
  using pktlen = be_bits<4, 2, 14>;
  using gpm_pkt_handle = be_bits<6, 0, 13>;
  using gpb_queue = be_bits<7, 5, 7>;
};

// A packet from a line port: the line distribution header, then the parser's
// results (bytes 16..31).
struct dist_hdr_line_st {
  std::uint8_t bytes[32];
  using dst_format = be_bits<0, 0, 3>;
  using l3_info_status = be_bits<0, 3, 5>;
  using rt_result = be_bits<1, 0, 8>;
  using error = be_bits<4, 0, 1>;
  using pktlen = be_bits<4, 2, 14>;
  using gpm_pkt_handle = be_bits<6, 0, 13>;
  using igpb_queue = be_bits<7, 5, 7>;
  using l3_offset = be_bits<17, 1, 7>;
  using l3_type = be_bits<18, 2, 2>;
  using l2_uidb = be_bits<18, 7, 1>;
  using ipv4_en = be_bits<19, 1, 1>;
  using ipv6_en = be_bits<19, 2, 1>;
  using mpls_en = be_bits<19, 3, 1>;
  using l2_uidb_maintenance_mode = be_bits<19, 4, 1>;
  using read_bng_uidb_ext = be_bits<19, 6, 1>;
  using l3_uidb_maintenance_mode = be_bits<20, 0, 1>;
  using port_bits_sat = be_bits<21, 4, 1>;
  using port_bits_gbl_feature = be_bits<21, 7, 1>;
  using logical_port = be_bits<22, 4, 12>;
  using uidb_index = be_bits<24, 0, 16>;
  using da_bits = be_bits<26, 0, 2>;
  using rt_result_valid = be_bits<26, 2, 1>;
  using is_mcast = be_bits<26, 3, 1>;
};
static_assert(sizeof(dist_hdr_line_st) == 32);

// A packet from the fabric.
struct dist_hdr_fabric_st {
  std::uint8_t bytes[16];
  using dst_format = be_bits<0, 0, 3>;
  using error = be_bits<4, 0, 1>;
  using mcast = be_bits<4, 1, 1>;
  using pktlen = be_bits<4, 2, 14>;
  using gpm_pkt_handle = be_bits<6, 0, 13>;
  using egpb_queue = be_bits<7, 5, 7>;
};

enum bufhdr_l3_type_e : std::uint32_t {
  bufhdr_l3_type_other_e = 0,
  bufhdr_l3_type_ipv4_e = 1,
  bufhdr_l3_type_ipv6_e = 2,
  bufhdr_l3_type_mpls_e = 3,
};
