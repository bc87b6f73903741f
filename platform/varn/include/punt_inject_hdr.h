// The headers of punted and injected packets: the compressed punt-inject
// header with its 20-byte extension and 28-byte buffer header, the preroute
// feature header, and the Ethernet encapsulation towards a front-end FPGA.
#pragma once

#include "fab_hdr_compressed.h"

// varn_nph_punt_inject_ext_st, positions from the start of the extension.
struct varn_nph_punt_inject_ext_st {
  std::uint8_t bytes[20];
  using qos_info = le_bytes<0, 2>;
  using flow_type = be_bits<2, 0, 8>;
  using pad_zero = be_bits<3, 0, 8>;
  struct ext_fgid {
    using extended_fgid_b23_14 = be_bits<4, 0, 10>;
    using fab_reserved = be_bits<5, 2, 2>;
    using extended_fgid_b13_12 = be_bits<5, 4, 2>;
    using pad_zero = be_bits<5, 6, 2>;
  };
  using lagm = lagm_byte<6>;
  struct flags {
    using li_enable = be_bits<7, 0, 1>;
    using reserved2 = be_bits<7, 1, 3>;
    using nhid_punt = be_bits<7, 4, 1>;
    using rsp_punt = be_bits<7, 5, 1>;
    using md = be_bits<7, 6, 1>;
    using hop_count = be_bits<7, 7, 1>;
  };
  using spare = be_bits<8, 0, 16>;
  // hash_nhid_u and hash_label_u: the hash data, or with flags.nhid_punt the
  // next-hop data.
  struct hash_data {
    using raw_hash = be_bits<10, 0, 32>;
    using nrldim = be_bits<14, 0, 8>;
    using rldim = be_bits<15, 0, 8>;
  };
  struct nhid_data {
    using nhid = be_bits<10, 0, 24>;
    using out_label_msb = be_bits<13, 0, 16>;
    using out_label_lsb = be_bits<15, 0, 8>;
  };
  using input_if_handle = be_bits<16, 0, 32>;  // varn_nph_punt_inject_ext_part4
};
static_assert(sizeof(varn_nph_punt_inject_ext_st) == 20);

// varn_punt_inject_buffhdr_st, positions from its own start.
struct varn_punt_inject_buffhdr_st {
  std::uint8_t bytes[28];
  using sid = be_bits<0, 0, 8>;
  using pkt_dir = be_bits<1, 0, 8>;
  using is_ironwing = be_bits<2, 0, 1>;
  using act_rp_punt = be_bits<2, 1, 1>;
  using spare1 = be_bits<2, 2, 6>;
  using punt_reason = be_bits<3, 0, 8>;
  using punt_subreason = be_bits<4, 0, 8>;
  using layer2_type = be_bits<5, 0, 8>;
  using network_start_offset = be_bits<6, 0, 8>;
  using pkt_type = be_bits<7, 0, 8>;
  using feature_hdr_len = be_bits<8, 0, 8>;
  using l2_proto_flags = be_bits<9, 0, 8>;
  using srv6 = be_bits<10, 0, 1>;
  using dest_or_l2snoop_orig = be_bits<10, 1, 1>;
  using sc_bad_actor = be_bits<10, 2, 1>;
  using bfd_remote_punt = be_bits<10, 3, 1>;
  using ts = be_bits<10, 4, 1>;
  using gre_pwhe = be_bits<10, 5, 1>;
  using abf = be_bits<10, 6, 1>;
  using already_forwarded = be_bits<10, 7, 1>;
  using pkt_len = be_bits<11, 0, 16>;
  using table_id_or_xconnect_id = be_bits<13, 0, 32>;
  using inject_if_handle = be_bits<17, 0, 32>;
  using src_vqi = be_bits<17, 0, 16>;
  using spare2 = be_bits<19, 0, 16>;
  using output_if_handle = be_bits<21, 0, 32>;
  using np_port = be_bits<25, 0, 16>;
  using spare3 = be_bits<27, 0, 1>;
  using trace_pkt = be_bits<27, 1, 1>;
  using fwd_to_bvi = be_bits<27, 2, 1>;
  using spare4 = be_bits<27, 3, 1>;
  using card_type = be_bits<27, 4, 4>;
};
static_assert(sizeof(varn_punt_inject_buffhdr_st) == 28);

// varn_fab_nph_punt_inject_st, 56 bytes: fab_hdr (6), nph_com (2),
// nph_ext (20), buffhdr (28).
struct varn_fab_nph_punt_inject_st : varn_fab_nph_generic_fields {
  std::uint8_t bytes[56];
  static constexpr std::size_t nph_ext_offset = 8;
  static constexpr std::size_t buffhdr_offset = 28;
};
static_assert(sizeof(varn_fab_nph_punt_inject_st) == 56);

// varn_nexthop_addr_st, 20 bytes: one of three forms.
struct varn_nexthop_addr_st {
  std::uint8_t bytes[20];
  struct ipv4 {
    using address = be_bits<0, 0, 32>;
    using vlan_tag_outer = be_bits<4, 0, 16>;
    using vlan_tag_inner = be_bits<6, 0, 16>;
  };
  struct ipv6 {
    using address = be_byte_run<0, 16>;
    using vlan_tag_outer = be_bits<16, 0, 16>;
    using vlan_tag_inner = be_bits<18, 0, 16>;
  };
  struct clns {
    using mac_length = be_bits<0, 0, 8>;
    using src_mac = be_byte_run<1, 6>;
  };
};
static_assert(sizeof(varn_nexthop_addr_st) == 20);

struct varn_preroute_feature_hdr_st {
  std::uint8_t bytes[32];
  using hdr_version = be_bits<0, 0, 8>;
  using preroute_flags = be_bits<1, 0, 8>;
  using np_preroute_flags = be_bits<2, 0, 8>;
  using spare = be_bits<3, 0, 8>;
  using etype_or_len = be_bits<4, 0, 16>;
  using dst_mac = be_byte_run<6, 6>;
  static constexpr std::size_t nexthop_offset = 12;
};
static_assert(sizeof(varn_preroute_feature_hdr_st) == 32);

struct varn_fab_nph_punt_inject_preroute_st : varn_fab_nph_generic_fields {
  std::uint8_t bytes[88];
  static constexpr std::size_t preroute_offset = 56;
};
static_assert(sizeof(varn_fab_nph_punt_inject_preroute_st) == 88);

// An Ethernet header with one VLAN tag, towards a card that takes punts
// through a front-end FPGA.
struct varn_punt_inject_fpga_encap_st {
  std::uint8_t bytes[16];
  using dst_mac = be_byte_run<0, 6>;
  using src_mac = be_byte_run<6, 6>;
  using tpid = be_bits<12, 0, 16>;
  using vlan_id = be_bits<14, 4, 12>;
};
static_assert(sizeof(varn_punt_inject_fpga_encap_st) == 16);

// varn_dc3_nph_punt_inject_fpga_st, 80 bytes: dc3 (32), fpga (16), p4 (4),
// buffhdr (28).
struct varn_dc3_nph_punt_inject_fpga_st : dc3_nph_fields {
  std::uint8_t bytes[80];
  static constexpr std::size_t fpga_offset = 32;
  static constexpr std::size_t p4_offset = 48;
  static constexpr std::size_t buffhdr_offset = 52;
};
static_assert(sizeof(varn_dc3_nph_punt_inject_fpga_st) == 80);
