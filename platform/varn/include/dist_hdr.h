// Distribution headers: the first bytes of data memory, written by the
// distributor for each packet. Positions count from the start of the header
// (record) that names them.
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

enum bufhdr_l3_type_e : std::uint32_t {
  bufhdr_l3_type_other_e = 0,
  bufhdr_l3_type_ipv4_e = 1,
  bufhdr_l3_type_ipv6_e = 2,
  bufhdr_l3_type_mpls_e = 3,
};

// The fields of the first half of a line packet's header.
struct line_distribution_hdr_fields {
  using dst_format = be_bits<0, 0, 3>;
  using l3_info_status = be_bits<0, 3, 5>;
  using rt_result = be_bits<1, 0, 8>;
  using frame_type = be_bits<2, 0, 5>;
  using hdr_format = be_bits<2, 5, 1>;
  using ifl24 = be_bits<2, 6, 10>;
  using error = be_bits<4, 0, 1>;
  using rsvd1 = be_bits<4, 1, 1>;
  using pktlen = be_bits<4, 2, 14>;
  using gpm_pkt_handle = be_bits<6, 0, 13>;
  using igpb_queue = be_bits<7, 5, 7>;  // INJECT_QUEUE_FIRST..LAST: injected by the host
  using scoreboard = be_bits<8, 4, 12>;
  using head_type_last = be_bits<10, 0, 8>;
  using head_ptr_last = be_bits<11, 0, 8>;
  using head_ptr_d = be_bits<12, 0, 8>;
  using head_ptr_c = be_bits<13, 0, 8>;
  using head_ptr_b = be_bits<14, 0, 8>;
  using head_ptr_a = be_bits<15, 0, 8>;
};

struct line_distribution_hdr : line_distribution_hdr_fields {
  std::uint8_t bytes[16];
};
static_assert(sizeof(line_distribution_hdr) == 16);

// The input queues of the ports that carry the host's injected packets.
inline constexpr std::uint32_t INJECT_QUEUE_FIRST = 80;
inline constexpr std::uint32_t INJECT_QUEUE_LAST = 83;

// Classes of a destination MAC (da_bits).
enum da_bits_e : std::uint32_t {
  DA_BITS_FOREIGN_UNICAST = 0,  // unicast to another station (the parser only)
  DA_BITS_UNICAST = 1,
  DA_BITS_CONTROL_MULTICAST = 2,  // the well-known control groups
  DA_BITS_MULTICAST = 3,          // any other group, and broadcast
};

// The well-known control groups (DA_BITS_CONTROL_MULTICAST): the bridge
// groups 01-80-C2-xx-xx-xx and four exact addresses.
inline constexpr std::uint8_t DA_BRIDGE_GROUP_PREFIX[3] = {0x01, 0x80, 0xC2};
inline constexpr std::uint8_t DA_CONTROL_GROUPS[4][6] = {
    {0x01, 0x00, 0x0C, 0xCC, 0xCC, 0xCC},
    {0x01, 0x00, 0x0C, 0xCC, 0xCC, 0xCD},
    {0x01, 0x00, 0x0C, 0xCD, 0xCD, 0xD0},
    {0x01, 0x00, 0x5E, 0x90, 0x00, 0x01},
};

// Whether the 6-byte destination MAC at `mac` is a well-known control group.
constexpr bool da_is_control_group(const std::uint8_t* mac) {
  const auto starts_with = [mac](const std::uint8_t* bytes, int n) {
    for (int i = 0; i < n; ++i) {
      if (mac[i] != bytes[i]) return false;
    }
    return true;
  };
  if (starts_with(DA_BRIDGE_GROUP_PREFIX, 3)) return true;
  for (const auto& group : DA_CONTROL_GROUPS) {
    if (starts_with(group, 6)) return true;
  }
  return false;
}

// The parser's and the port tables' results, bytes 16..31 of a line packet's
// header. The first eight bytes have several views over the same bytes.
struct baf_hdr_ing_st {
  std::uint8_t bytes[16];

  // Base view.
  using reserved = be_bits<0, 0, 1>;
  using diag_pkt = be_bits<0, 1, 1>;
  using err_type = be_bits<0, 2, 2>;
  using vlan_pbits = be_bits<0, 4, 4>;
  using traffic_type = be_bits<1, 0, 1>;
  using l3_offset = be_bits<1, 1, 7>;
  using qfill_zone = be_bits<2, 0, 2>;
  using l3_type = be_bits<2, 2, 2>;
  using rsvd1 = be_bits<2, 4, 12>;
  using rsvd2 = be_bits<4, 0, 8>;
  using port_bits_l3_lb_hash = be_bits<5, 0, 1>;
  using port_bits_ext = be_bits<5, 1, 1>;
  using port_bits_sat_encap = be_bits<5, 2, 2>;
  using port_bits_sat = be_bits<5, 4, 1>;
  using port_bits_rt_l2 = be_bits<5, 5, 1>;
  using port_bits_rt_l3 = be_bits<5, 6, 1>;
  using port_bits_gbl_feature = be_bits<5, 7, 1>;
  using port_bits_force_l2_ctrl_vector = be_bits<6, 0, 1>;
  using port_bits_2_0 = be_bits<6, 1, 3>;
  using logical_port = be_bits<6, 4, 12>;
  using uidb_index = be_bits<8, 0, 16>;
  using da_bits = be_bits<10, 0, 2>;
  using rt_result_valid = be_bits<10, 2, 1>;
  using decode_bits = be_bits<10, 3, 13>;
  using timestamp = be_bits<12, 0, 32>;

  // The 20 mark bits copied from the interface record; l2_uidb tells which
  // of mark_l3 and mark_l2 holds.
  struct mark_common {
    using l2_uidb = be_bits<2, 7, 1>;
  };
  struct mark_l3 {
    using rt_v4 = be_bits<2, 4, 1>;
    using rt_v6 = be_bits<2, 5, 1>;
    using rt_mpls = be_bits<2, 6, 1>;
    using line_status_up = be_bits<3, 0, 1>;
    using ipv4_en = be_bits<3, 1, 1>;
    using ipv6_en = be_bits<3, 2, 1>;
    using mpls_en = be_bits<3, 3, 1>;
    using fast_ext_req = be_bits<3, 4, 1>;
    using ext_req = be_bits<3, 5, 1>;
    using read_bng_uidb_ext = be_bits<3, 6, 1>;
    using global_vrf = be_bits<3, 7, 1>;
    using uidb_maintenance_mode = be_bits<4, 0, 1>;
    using mark_11_4 = be_bits<4, 1, 7>;
  };
  struct mark_l2 {
    using rt = be_bits<2, 4, 1>;
    using vpls = be_bits<2, 5, 1>;
    using mark_21 = be_bits<2, 6, 1>;
    using line_status_up = be_bits<3, 0, 1>;
    using uidb_maintenance_mode = be_bits<3, 4, 1>;
    using ext_req = be_bits<3, 5, 1>;
    using mark_13_12 = be_bits<3, 6, 2>;
    using mark_11_4 = be_bits<4, 0, 8>;
  };
  // The marks and port bits as wholes.
  struct baf_override_common {
    using mark_bits_high = be_bits<2, 4, 12>;
    using mark_bits_low = be_bits<4, 0, 8>;
    using portbits = be_bits<5, 0, 12>;
  };

  // Decode bits by protocol, bytes 10 and 11.
  struct v4 {
    using rsvd = be_bits<10, 0, 3>;
    using is_mcast = be_bits<10, 3, 1>;
    using no_more_frags = be_bits<10, 4, 1>;
    using frag_offset_0 = be_bits<10, 5, 1>;
    using not_gre = be_bits<10, 6, 1>;
    using payloadlen_gte_4 = be_bits<10, 7, 1>;
    using frame_gte_hdrtotlen = be_bits<11, 0, 1>;
    using frame_gte_hdrlen = be_bits<11, 1, 1>;
    using addr_bootp_dhcp = be_bits<11, 2, 1>;
    using hdrlen_vld = be_bits<11, 3, 1>;
    using no_ip_options = be_bits<11, 4, 1>;
    using hdr_chksum_vld = be_bits<11, 5, 1>;
    using addr_sane = be_bits<11, 6, 1>;
    using ttl_gt_1 = be_bits<11, 7, 1>;
  };
  struct v6 {
    using rsvd = be_bits<10, 0, 3>;
    using dip_is_multicast = be_bits<10, 3, 1>;
    using sip_is_link_local = be_bits<10, 4, 1>;
    using dip_is_link_local = be_bits<10, 5, 1>;
    using nxthdr_is_gre = be_bits<10, 6, 1>;
    using payloadlen_gte_4 = be_bits<10, 7, 1>;
    using frame_gte_hdrtotlen = be_bits<11, 0, 1>;
    using frame_gte_40 = be_bits<11, 1, 1>;
    using nxthdr_is_icmp_v6 = be_bits<11, 2, 1>;
    using nxthdr_is_sctp = be_bits<11, 3, 1>;
    using nxthdr_is_udp = be_bits<11, 4, 1>;
    using nxthdr_is_tcp = be_bits<11, 5, 1>;
    using addr_sane = be_bits<11, 6, 1>;
    using hop_limit_gt_1 = be_bits<11, 7, 1>;
  };
  struct mpls {
    using rsvd = be_bits<10, 0, 3>;
    using mpls_is_multicast = be_bits<10, 3, 1>;
    using mpls_lt_5_labels = be_bits<10, 4, 1>;
    using mpls_num_labels = be_bits<10, 5, 3>;
    using mpls_gt_1_label = be_bits<11, 0, 1>;
    using found_entropy_label = be_bits<11, 1, 1>;
    using entropy_label_offset = be_bits<11, 2, 3>;
    using mpls_inner_label_not_gal = be_bits<11, 5, 1>;
    using mpls_outer_label_gt_15 = be_bits<11, 6, 1>;
    using mpls_ttl_gt_1 = be_bits<11, 7, 1>;
  };
};
static_assert(sizeof(baf_hdr_ing_st) == 16);

inline constexpr std::size_t DIST_HDR_BAF_OFFSET = 16;

// A packet from a line port: the line distribution header, then the baf
// part. The baf fields the dispatch reads are also named here, at their
// place in the whole header.
struct dist_hdr_line_st : line_distribution_hdr_fields {
  std::uint8_t bytes[32];

  template <class F>
  using in_baf = be_bits_at<F, DIST_HDR_BAF_OFFSET>;
  using l3_offset = in_baf<baf_hdr_ing_st::l3_offset>;
  using l3_type = in_baf<baf_hdr_ing_st::l3_type>;
  using l2_uidb = in_baf<baf_hdr_ing_st::mark_common::l2_uidb>;
  using ipv4_en = in_baf<baf_hdr_ing_st::mark_l3::ipv4_en>;
  using ipv6_en = in_baf<baf_hdr_ing_st::mark_l3::ipv6_en>;
  using mpls_en = in_baf<baf_hdr_ing_st::mark_l3::mpls_en>;
  using l2_uidb_maintenance_mode = in_baf<baf_hdr_ing_st::mark_l2::uidb_maintenance_mode>;
  using read_bng_uidb_ext = in_baf<baf_hdr_ing_st::mark_l3::read_bng_uidb_ext>;
  using l3_uidb_maintenance_mode = in_baf<baf_hdr_ing_st::mark_l3::uidb_maintenance_mode>;
  using port_bits_sat = in_baf<baf_hdr_ing_st::port_bits_sat>;
  using port_bits_gbl_feature = in_baf<baf_hdr_ing_st::port_bits_gbl_feature>;
  using logical_port = in_baf<baf_hdr_ing_st::logical_port>;
  using uidb_index = in_baf<baf_hdr_ing_st::uidb_index>;
  using da_bits = in_baf<baf_hdr_ing_st::da_bits>;
  using rt_result_valid = in_baf<baf_hdr_ing_st::rt_result_valid>;
  using is_mcast = in_baf<baf_hdr_ing_st::v4::is_mcast>;
};
static_assert(sizeof(dist_hdr_line_st) == 32);

// A packet from the fabric (fabric_dst_hdr_type).
struct dist_hdr_fabric_st {
  std::uint8_t bytes[16];
  using dst_format = be_bits<0, 0, 3>;
  using l3_info_status = be_bits<0, 3, 5>;
  using reserved = be_bits<1, 0, 13>;
  using hdr_format = be_bits<2, 5, 1>;
  using ifl24 = be_bits<2, 6, 10>;
  using error = be_bits<4, 0, 1>;
  using mcast = be_bits<4, 1, 1>;
  using pktlen = be_bits<4, 2, 14>;
  using gpm_pkt_handle = be_bits<6, 0, 13>;
  using egpb_queue = be_bits<7, 5, 7>;
  using scoreboard = be_bits<8, 4, 12>;
  using head_type_last = be_bits<10, 0, 8>;
  using head_ptr_last = be_bits<11, 0, 8>;
  using head_ptr_d = be_bits<12, 0, 8>;
  using head_ptr_c = be_bits<13, 0, 8>;
  using head_ptr_b = be_bits<14, 0, 8>;
  using head_ptr_a = be_bits<15, 0, 8>;
};
static_assert(sizeof(dist_hdr_fabric_st) == 16);

// The 16 bytes that every form shares, in its two views: `fields`
// (common_dst_hdr_type) and `zp` (common_dst_hdr_zp_type), which splits the
// top bit of dst_format off as the ingress bit.
struct common_dst_hdr_type {
  using dst_format = be_bits<0, 0, 3>;
  using rsvd0 = be_bits<0, 3, 18>;
  using hdr_format = be_bits<2, 5, 1>;
  using ifl32 = be_bits<2, 6, 10>;
  using error = be_bits<4, 0, 1>;
  using rsvd1 = be_bits<4, 1, 1>;
  using pktlen = be_bits<4, 2, 14>;
  using gpm_pkt_handle = be_bits<6, 0, 13>;
  using gpb_queue = be_bits<7, 5, 7>;
  using rsvd2 = be_bits<8, 4, 12>;
  using rsvd3 = be_bits<10, 0, 16>;
  using rsvd4 = be_bits<12, 0, 32>;
};
struct common_dst_hdr_zp_type : common_dst_hdr_type {
  using ingress = be_bits<0, 0, 1>;
  using dst_format = be_bits<0, 1, 2>;
  using gpb_pkt_handle = common_dst_hdr_type::gpm_pkt_handle;
};

struct dist_hdr_common_st {
  std::uint8_t bits_8[16];
  using fields = common_dst_hdr_type;
  using zp = common_dst_hdr_zp_type;
};
static_assert(sizeof(dist_hdr_common_st) == 16);
