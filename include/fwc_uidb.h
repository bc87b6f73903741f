// Interface (UIDB) records: one record per interface and direction, written
// whole by the control plane, read by index through the lookup catalogue.
// The first bit of every record that carries one is its coherency bit, always
// 1 in a valid record, so that a first word of 0 means "not arrived yet".
// Reserved fields have no descriptor: they stay 0.
#pragma once

#include "be_types.h"

// The small types that several records hold, each placed at byte B of its
// record: the whole 16 bits, and its fields.
template <std::size_t B>
struct qos_info_st : be_bits<B, 0, 16> {
  using app_id = be_bits<B, 0, 3>;
  using qos_id = be_bits<B, 3, 11>;
  using l3_type = be_bits<B + 1, 6, 2>;
};
template <std::size_t B>
struct acl_info_st : be_bits<B, 0, 16> {
  using app_id = be_bits<B, 0, 3>;
  using acl_common = be_bits<B, 3, 1>;
  using acl_id = be_bits<B, 4, 12>;
};
template <std::size_t B>
struct pbr_info_st : be_bits<B, 0, 16> {
  using app_id = be_bits<B, 0, 3>;
  using pbr_id = be_bits<B, 3, 11>;
  using l3_type = be_bits<B + 1, 6, 2>;
};
// The output interface: a bundle (with bundle_int) or a port.
template <std::size_t B>
struct out_if_un {
  using lag_id = be_bits<B, 0, 16>;
  using port_id = be_bits<B, 0, 16>;
};
// A VLAN tag as the records keep it: its protocol ID, then the tag word.
template <std::size_t B>
struct uidb_tag_at {
  using tpid = be_bits<B, 0, 16>;
  using tag = be_bits<B + 2, 0, 16>;
  struct tid {
    using cos = be_bits<B + 2, 0, 3>;
    using de = be_bits<B + 2, 3, 1>;
    using vlan = be_bits<B + 2, 4, 12>;
  };
};

// L3 ingress record, 32 bytes (UIDB_L3_ING).
struct uidb_l3_ing_fields_st {
  std::uint8_t bytes[32];
  using coherency = be_bits<0, 0, 1>;
  using l2_uidb = be_bits<0, 1, 1>;
  using qos_no_l2_data = be_bits<0, 3, 1>;
  using qos_opt = be_bits<0, 4, 1>;
  using sub_gre_multikey_en = be_bits<0, 5, 1>;
  using edpl_en = be_bits<0, 6, 1>;
  using line_status_up = be_bits<0, 7, 1>;
  using satellite_IC = be_bits<1, 0, 1>;
  using inherit_qos_parent = be_bits<1, 1, 1>;
  using qos_en = be_bits<1, 2, 1>;
  using span_en = be_bits<1, 3, 1>;
  using acl_span_en = be_bits<1, 4, 1>;
  using cfm_en = be_bits<1, 5, 1>;
  using bundle_int = be_bits<1, 6, 1>;
  using global_int = be_bits<1, 7, 1>;
  using ipv4_feature_codepoint = be_bits<2, 0, 8>;
  using ipv6_feature_codepoint = be_bits<3, 0, 8>;
  using table_id = be_bits<4, 0, 16>;
  using qos_info = qos_info_st<6>;
  using ipv4_acl_info = acl_info_st<8>;
  using ipv6_acl_info = acl_info_st<10>;
  using uidb_ifhandle = be_bits<12, 0, 32>;
  struct ipv4 {
    using pbr_flowtag_en = be_bits<16, 0, 1>;
    using meta_acl_ena = be_bits<16, 1, 1>;
    using bfd_en = be_bits<16, 2, 1>;
    using dba_en = be_bits<16, 3, 1>;
    using acl_en = be_bits<16, 4, 1>;
    using nf_en = be_bits<16, 5, 1>;
    using rpf_en = be_bits<16, 6, 1>;
    using rpf_def_route_en = be_bits<16, 7, 1>;
    using rpf_strict_en = be_bits<17, 0, 1>;
    using rpf_self_ping_en = be_bits<17, 1, 1>;
    using bpa_src_en = be_bits<17, 2, 1>;
    using bpa_dst_en = be_bits<17, 3, 1>;
    using qppb_src_qos_en = be_bits<17, 4, 1>;
    using qppb_dst_qos_en = be_bits<17, 5, 1>;
    using qppb_src_prec_en = be_bits<17, 6, 1>;
    using qppb_dst_prec_en = be_bits<17, 7, 1>;
    using qppb_before_qos_en = be_bits<18, 0, 1>;
    using mcast_en = be_bits<18, 1, 1>;
    using mcast_bacl = be_bits<18, 2, 1>;
    using pbr_en = be_bits<18, 3, 1>;
    using src_lkup_en = be_bits<18, 4, 1>;
    using icmp_punt_en = be_bits<18, 5, 1>;
    using acl_qos_tcam_profile_id = be_bits<18, 6, 5>;
    using pbr_tcam_profile_id = be_bits<19, 3, 5>;
  };
  struct ipv6 {
    using pbr_flowtag_en = be_bits<20, 2, 1>;
    using meta_acl_ena = be_bits<20, 3, 1>;
    using acl_en = be_bits<20, 4, 1>;
    using nf_en = be_bits<20, 5, 1>;
    using rpf_en = be_bits<20, 6, 1>;
    using rpf_def_route_en = be_bits<20, 7, 1>;
    using rpf_strict_en = be_bits<21, 0, 1>;
    using rpf_self_ping_en = be_bits<21, 1, 1>;
    using bpa_src_en = be_bits<21, 2, 1>;
    using bpa_dst_en = be_bits<21, 3, 1>;
    using qppb_src_qos_en = be_bits<21, 4, 1>;
    using qppb_dst_qos_en = be_bits<21, 5, 1>;
    using qppb_src_prec_en = be_bits<21, 6, 1>;
    using qppb_dst_prec_en = be_bits<21, 7, 1>;
    using qppb_before_qos_en = be_bits<22, 0, 1>;
    using mcast_en = be_bits<22, 1, 1>;
    using mcast_bacl = be_bits<22, 2, 1>;
    using pbr_en = be_bits<22, 3, 1>;
    using src_lkup_en = be_bits<22, 4, 1>;
    using icmp_punt_en = be_bits<22, 5, 1>;
    using acl_qos_tcam_profile_id = be_bits<22, 6, 5>;
    using pbr_tcam_profile_id = be_bits<23, 3, 5>;
  };
  struct mpls {
    using qos_mpls_tcam_profile_id = be_bits<24, 3, 5>;
    using pbr_en = be_bits<25, 0, 1>;
    using eos0_drop_en = be_bits<25, 1, 1>;
    using nf_en = be_bits<25, 2, 1>;
    using rpf_en = be_bits<25, 3, 1>;
    using mpls_feature_codepoint = be_bits<25, 4, 4>;
  };
  using pbr_info = pbr_info_st<26>;
  struct mpls2 {
    using pbr_tcam_profile_id = be_bits<28, 3, 5>;
  };
  using stats_p = be_bits<29, 0, 24>;
};
static_assert(sizeof(uidb_l3_ing_fields_st) == 32);

// L3 egress record, 32 bytes (UIDB_L3_EGR), by the output index of an adjacency.
struct uidb_l3_egr_fields_st {
  std::uint8_t bytes[32];
  using coherency_always_1 = be_bits<0, 0, 1>;
  using mode = be_bits<0, 1, 1>;
  using line_status_up = be_bits<0, 2, 1>;
  using global_int = be_bits<0, 3, 1>;
  using bundle_int = be_bits<0, 4, 1>;
  using fabric_internal = be_bits<0, 5, 1>;
  using ext_req = be_bits<0, 6, 1>;
  using inherit_qos_parent = be_bits<0, 7, 1>;
  using hqos = be_bits<1, 0, 1>;
  using qos_en = be_bits<1, 1, 1>;
  using span_en = be_bits<1, 2, 1>;
  using acl_span_en = be_bits<1, 3, 1>;
  using ipv4_acl_en = be_bits<1, 4, 1>;
  using ipv4_bpa_dst_en = be_bits<1, 5, 1>;
  using ipv4_bpa_src_en = be_bits<1, 6, 1>;
  using ipv4_nf_en = be_bits<1, 7, 1>;
  using ipv4_icmp_punt_en = be_bits<2, 0, 1>;
  using ipv6_acl_en = be_bits<2, 1, 1>;
  using ipv6_bpa_dst_en = be_bits<2, 2, 1>;
  using ipv6_bpa_src_en = be_bits<2, 3, 1>;
  using ipv6_icmp_punt_en = be_bits<2, 4, 1>;
  using ipv6_nf_en = be_bits<2, 5, 1>;
  using mpls_nf_en = be_bits<2, 6, 1>;
  using vlan_tag2_en = be_bits<2, 7, 1>;
  using vlan_tag1_en = be_bits<3, 0, 1>;
  using fast_ext_req = be_bits<3, 1, 1>;
  using qos_opt = be_bits<3, 2, 1>;
  using qos_no_l2_data = be_bits<3, 3, 1>;
  using bundle_lb_hash_en = be_bits<3, 4, 1>;
  using ipv4_feature_codepoint = be_bits<4, 0, 8>;
  using ipv6_feature_codepoint = be_bits<5, 0, 8>;
  using out_if = out_if_un<6>;
  using qos_uidb_index = be_bits<8, 0, 16>;
  using qos_info = qos_info_st<10>;
  using ipv4_acl_info = acl_info_st<12>;
  using ipv6_acl_info = acl_info_st<14>;
  using tag1 = uidb_tag_at<16>;
  using tag2 = uidb_tag_at<20>;
  using acl_qos_ipv4_tcam_profile_id = be_bits<26, 1, 5>;
  using acl_qos_ipv6_tcam_profile_id = be_bits<26, 6, 5>;
  using qos_mpls_tcam_profile_id = be_bits<27, 3, 5>;
  using mpls_feature_codepoint = be_bits<28, 4, 4>;
  using stats_p = be_bits<29, 0, 24>;
};
static_assert(sizeof(uidb_l3_egr_fields_st) == 32);
using uidb_l3_egr_st = uidb_l3_egr_fields_st;

// L2 ingress record, 32 bytes (UIDB_L2_ING). Bytes 0 to 2 are read through
// `vpws` for a cross-connect and through `vpls` for a bridge port; bytes 20
// to 23 hold the cross-connect's XID in one of its forms, or an L2TP ID.
struct uidb_l2_ing_st {
  std::uint8_t bytes[32];
  struct vpws {
    using coherency = be_bits<0, 0, 1>;
    using l2_uidb = be_bits<0, 1, 1>;
    using vpls = be_bits<0, 2, 1>;
    using vpws_pw_l2tp = be_bits<2, 4, 1>;
    using vpws_remote_rack = be_bits<2, 5, 1>;
    using ipiw_mode = be_bits<2, 6, 1>;
    using ipiw_punt = be_bits<2, 7, 1>;
  };
  struct vpls {
    using coherency = be_bits<0, 0, 1>;
    using l2_uidb = be_bits<0, 1, 1>;
    using vpls_ = be_bits<0, 2, 1>;
    using bd_id = be_bits<1, 0, 16>;
  };
  using feature_codepoint = be_bits<3, 0, 8>;
  using global_int = be_bits<4, 0, 1>;
  using bundle_int = be_bits<4, 1, 1>;
  using pop_2_tags = be_bits<4, 2, 1>;
  using pop_1_tag = be_bits<4, 3, 1>;
  using push_2_tags = be_bits<4, 4, 1>;
  using push_1_tag = be_bits<4, 5, 1>;
  using translate_2nd_tag = be_bits<4, 6, 1>;
  using translate_1st_tag = be_bits<4, 7, 1>;
  using qos_en = be_bits<5, 0, 1>;
  using acl_en = be_bits<5, 1, 1>;
  using l2_acl_en = be_bits<5, 2, 1>;
  using ipv4_acl_en = be_bits<5, 3, 1>;
  using ipv6_acl_en = be_bits<5, 4, 1>;
  using span_en = be_bits<5, 5, 1>;
  using acl_span_en = be_bits<5, 6, 1>;
  using r_aps_chan_en = be_bits<5, 7, 1>;
  using ptp_en = be_bits<6, 0, 1>;
  using l2pt_en = be_bits<6, 1, 1>;
  using cfm_en = be_bits<6, 2, 1>;
  using router_guard_en = be_bits<6, 5, 1>;
  using igmp_snoop_en = be_bits<6, 6, 1>;
  using dhcp_snoop_en = be_bits<6, 7, 1>;
  using mip_en = be_bits<7, 0, 1>;
  using mld_snoop_en = be_bits<7, 1, 1>;
  using mld_snoop_rg_en = be_bits<7, 2, 1>;
  using macsec_en = be_bits<7, 3, 1>;
  using l2tpv3ov6_en = be_bits<7, 4, 1>;
  using mip_ccm_learn_en = be_bits<7, 5, 1>;
  using sat_off_en = be_bits<7, 6, 1>;
  using pbr_en = be_bits<7, 7, 1>;
  using edpl_en = be_bits<8, 0, 1>;
  using inherit_qos_parent = be_bits<8, 1, 1>;
  using efp_filter_bypass = be_bits<8, 2, 1>;
  using dhcp_snoop_trusted = be_bits<8, 5, 1>;
  using filter_dot1ad = be_bits<8, 6, 1>;
  using filter_dot1q = be_bits<8, 7, 1>;
  using l2pt_rev = be_bits<9, 0, 1>;
  using punt_stp_1ad = be_bits<9, 1, 1>;
  using punt_stp_1d = be_bits<9, 2, 1>;
  using punt_nbrdisc_main = be_bits<9, 3, 1>;
  using punt_stp_1ad_main = be_bits<9, 4, 1>;
  using punt_stp_1d_main = be_bits<9, 5, 1>;
  using punt_pvst = be_bits<9, 6, 1>;
  using punt_mvrp = be_bits<9, 7, 1>;
  using vlan_ops = be_bits<10, 5, 1>;
  using qos_opt = be_bits<10, 6, 1>;
  using qos_no_l2_data = be_bits<10, 7, 1>;
  using wire_exp_tag_num = be_bits<11, 2, 3>;
  using cfm_threshold_level = be_bits<11, 5, 3>;
  using qos_l2_tcam_format = be_bits<12, 0, 1>;
  using acl_qos_l2_tcam_profile_id = be_bits<12, 1, 5>;
  using acl_qos_ipv4_tcam_profile_id = be_bits<12, 6, 5>;
  using acl_qos_ipv6_tcam_profile_id = be_bits<13, 3, 5>;
  using qos_info = qos_info_st<14>;
  using acl_info = acl_info_st<16>;
  using ipv6_acl_info = acl_info_st<18>;
  struct xid : be_bits<20, 0, 32> {
    struct global {
      using global_ = be_bits<20, 0, 1>;
      using lag = be_bits<20, 1, 1>;
      using pw = be_bits<20, 2, 1>;
      using rsi_bits = be_bits<20, 3, 10>;
      using key = be_bits<21, 5, 19>;
    };
    struct pool {
      using index = be_bits<21, 5, 18>;
      using pool_ = be_bits<23, 7, 1>;
    };
    struct test {
      using stack = be_bits<21, 5, 1>;
      using pool = be_bits<23, 7, 1>;
    };
    struct stack {
      using stack_ = be_bits<21, 5, 1>;
      using index = be_bits<21, 6, 18>;
    };
  };
  using l2tp_session_id = be_bits<20, 0, 32>;
  using l2tpv3ov6_xid = be_bits<20, 0, 32>;
  using qos_mpls_tcam_profile_id = be_bits<28, 3, 5>;
  using stats_p = be_bits<29, 0, 24>;
};
static_assert(sizeof(uidb_l2_ing_st) == 32);

// L2 egress record, 32 bytes (UIDB_L2_EGR).
struct uidb_l2_egr_st {
  std::uint8_t bytes[32];
  using bf_value = be_bits<0, 0, 32>;
  using coherency_always_1 = be_bits<0, 0, 1>;
  using mode = be_bits<0, 1, 1>;
  using line_status_up = be_bits<0, 2, 1>;
  using global_int = be_bits<0, 3, 1>;
  using bundle_int = be_bits<0, 4, 1>;
  using ext_req = be_bits<0, 5, 1>;
  using inherit_qos_parent = be_bits<0, 6, 1>;
  using hqos = be_bits<0, 7, 1>;
  using qos_en = be_bits<1, 0, 1>;
  using span_en = be_bits<1, 1, 1>;
  using acl_span_en = be_bits<1, 2, 1>;
  using acl_en = be_bits<1, 3, 1>;
  using l2_acl_en = be_bits<1, 4, 1>;
  using ipv4_acl_en = be_bits<1, 5, 1>;
  using ipv6_acl_en = be_bits<1, 6, 1>;
  using r_aps_chan_en = be_bits<1, 7, 1>;
  using ptp_en = be_bits<2, 0, 1>;
  using l2pt_en = be_bits<2, 1, 1>;
  using cfm_en = be_bits<2, 2, 1>;
  using mpls_nf_en = be_bits<2, 3, 1>;
  using ipv6_nf_en = be_bits<2, 4, 1>;
  using ipv4_nf_en = be_bits<2, 5, 1>;
  using punt_stp_1ad = be_bits<2, 6, 1>;
  using punt_stp_1d = be_bits<2, 7, 1>;
  using dhcp_snoop_trusted = be_bits<3, 0, 1>;
  using cfm_mip = be_bits<3, 1, 1>;
  using push_2_tags = be_bits<3, 2, 1>;
  using push_1_tag = be_bits<3, 3, 1>;
  using pop_2_tags = be_bits<3, 4, 1>;
  using pop_1_tag = be_bits<3, 5, 1>;
  using translate_2nd_tag = be_bits<3, 6, 1>;
  using translate_1st_tag = be_bits<3, 7, 1>;
  using feature_codepoint = be_bits<4, 0, 8>;
  using out_if = out_if_un<6>;
  using l2pt_rev = be_bits<8, 0, 1>;
  using vlan_ops = be_bits<8, 1, 1>;
  using qos_opt = be_bits<8, 2, 1>;
  using qos_no_l2_data = be_bits<8, 3, 1>;
  using cfm_threshold_level = be_bits<9, 0, 3>;
  using fabric_exp_tag_num = be_bits<9, 3, 3>;
  using num_vlans = be_bits<9, 6, 2>;
  using qos_info = qos_info_st<10>;
  using acl_info = acl_info_st<12>;
  using ipv6_acl_info = acl_info_st<14>;
  using qos_l2_tcam_format = be_bits<16, 0, 1>;
  using acl_qos_l2_tcam_profile_id = be_bits<16, 1, 5>;
  using acl_qos_ipv4_tcam_profile_id = be_bits<16, 6, 5>;
  using acl_qos_ipv6_tcam_profile_id = be_bits<17, 3, 5>;
  using qos_uidb_index = be_bits<18, 0, 16>;
  using tag1 = uidb_tag_at<20>;
  using tag2 = uidb_tag_at<24>;
  using qos_mpls_tcam_profile_id = be_bits<28, 3, 5>;
  using stats_p = be_bits<29, 0, 24>;
};
static_assert(sizeof(uidb_l2_egr_st) == 32);

// L3 ingress extension, asked for by ext_req: a first half of fields and a
// reserved second half. The extension read takes the first half.
struct uidb_ext_l3_ing_fields {
  using coherency_always_1 = be_bits<0, 0, 1>;
  using sr_ext_intf = be_bits<0, 1, 1>;
  using ipv4_acl_compression_level3 = be_bits<0, 2, 1>;
  using ipv6_acl_compression_level3 = be_bits<0, 3, 1>;
  using copp_police_bad_actor = be_bits<0, 4, 1>;
  using copp_srcmac_bad_actor = be_bits<0, 5, 1>;
  using sub_li_en = be_bits<0, 6, 1>;
  using pppoe_en = be_bits<0, 7, 1>;
  using keepalive_en = be_bits<1, 0, 1>;
  using tcp_mss_adjust = be_bits<1, 1, 1>;
  using gre_multi_key = be_bits<4, 0, 32>;
  using ipv4_meta_acl_info = acl_info_st<8>;
  using ipv6_meta_acl_info = acl_info_st<10>;
  using lmm_en = be_bits<12, 0, 1>;
  using lmm_agg_mode = be_bits<12, 1, 1>;
  using lmm_stats_compress = be_bits<12, 2, 14>;
  using sub_li_tap_index = be_bits<14, 0, 16>;
};
struct uidb_ext_l3_ing_part1_st : uidb_ext_l3_ing_fields {
  std::uint8_t bytes[16];
};
struct uidb_ext_l3_ing_st : uidb_ext_l3_ing_fields {
  std::uint8_t bytes[32];
};
static_assert(sizeof(uidb_ext_l3_ing_part1_st) == 16 && sizeof(uidb_ext_l3_ing_st) == 32);

// L3 ingress fast extension, 8 bytes, asked for by fast_ext_req: NetFlow.
struct uidb_ext_l3_fast_ing_st {
  std::uint8_t bytes[8];
  using nf_sampling_period = be_bits<0, 0, 16>;
  using nf_mapt_timeout = be_bits<2, 0, 16>;
  using nf_ipv4_filter = be_bits<4, 0, 1>;
  using nf_ipv4_nextint = be_bits<4, 1, 1>;
  using nf_mpls_filter = be_bits<4, 2, 1>;
  using nf_mpls_nextint = be_bits<4, 3, 1>;
  using nf_ipv6_filter = be_bits<4, 4, 1>;
  using nf_ipv6_nextint = be_bits<4, 5, 1>;
  using nf_section_dump_enable = be_bits<4, 6, 1>;
  using nf_mapt = be_bits<4, 7, 1>;
};
static_assert(sizeof(uidb_ext_l3_fast_ing_st) == 8);

// L3 egress extension, 32 bytes. Bytes 8 to 27 are read through `bvi`,
// `bng` or `sfi` by the kind of interface (uidb_ext_feat_un).
struct uidb_ext_l3_egr_st {
  std::uint8_t bytes[32];
  using coherency_always_1 = be_bits<0, 0, 1>;
  using bvi_simplified_en = be_bits<0, 1, 1>;
  using ipv4_acl_compression_level3 = be_bits<0, 2, 1>;
  using ipv6_acl_compression_level3 = be_bits<0, 3, 1>;
  using sub_li_en = be_bits<0, 4, 1>;
  using v4_mcast_ttl = be_bits<1, 0, 8>;
  using ipmtu = be_bits<2, 0, 16>;
  using uidb_ifhandle = be_bits<4, 0, 32>;
  struct bvi {
    using xid = be_bits<8, 0, 32>;
    using bd_id = be_bits<13, 0, 24>;
    using smac_ms = be_bits<16, 0, 32>;
    using smac_ls = be_bits<20, 0, 16>;
  };
  struct bng {
    using sub_mac_ms = be_bits<8, 0, 32>;
    using sub_mac_ls = be_bits<12, 0, 16>;
    using bng_smac_ms = be_bits<14, 0, 16>;
    using bng_smac_ls = be_bits<16, 0, 32>;
    using uidb_pppoe_sid = be_bits<20, 0, 16>;
    using sub_li_tap_index = be_bits<22, 0, 16>;
    struct bf {
      using pppoe_session = be_bits<27, 0, 1>;
      using bng_smac_rw = be_bits<27, 1, 1>;
    };
  };
  struct sfi {
    using src = be_bits<8, 0, 32>;
    struct bf {
      using sfi_vxlan = be_bits<12, 0, 1>;
    };
    using smac_ms = be_bits<16, 0, 32>;
    using smac_ls = be_bits<20, 0, 16>;
  };
  using v6_mcast_ttl = be_bits<28, 0, 8>;
  using v4_mcast_bacl = be_bits<29, 0, 1>;
  using v6_mcast_bacl = be_bits<29, 1, 1>;
  using tcp_mss_adjust = be_bits<29, 2, 1>;
  using lmm_en = be_bits<30, 0, 1>;
  using lmm_agg_mode = be_bits<30, 1, 1>;
  using lmm_stats_compress = be_bits<30, 2, 14>;
};
static_assert(sizeof(uidb_ext_l3_egr_st) == 32);

// L3 egress fast extension, 8 bytes: NetFlow.
struct uidb_ext_l3_fast_egr_st {
  std::uint8_t bytes[8];
  using nf_sampling_period = be_bits<0, 0, 16>;
  using nf_ipv4_filter = be_bits<4, 0, 1>;
  using nf_ipv4_nextint = be_bits<4, 1, 1>;
  using nf_mpls_filter = be_bits<4, 2, 1>;
  using nf_mpls_nextint = be_bits<4, 3, 1>;
  using nf_ipv6_filter = be_bits<4, 4, 1>;
  using nf_ipv6_nextint = be_bits<4, 5, 1>;
};
static_assert(sizeof(uidb_ext_l3_fast_egr_st) == 8);

// L2 ingress extension, 32 bytes. Its coherency bit is the last of byte 1.
struct uidb_ext_l2_ing_st {
  std::uint8_t bytes[32];
  using copp_police_bad_actor = be_bits<0, 0, 1>;
  using sub_li_en = be_bits<0, 1, 1>;
  using sdn_en = be_bits<0, 2, 1>;
  using pbr_ft_miss_tcam_lookup = be_bits<0, 4, 1>;
  using pbr_ft_tcam_hash_lookup = be_bits<0, 5, 1>;
  using lmm_en = be_bits<0, 6, 1>;
  using lmm_agg_mode = be_bits<1, 0, 1>;
  using copp_srcmac_bad_actor = be_bits<1, 1, 1>;
  using ipv4_snf_samp_en_bit = be_bits<1, 2, 1>;
  using nf_section_dump_enable = be_bits<1, 3, 1>;
  using coherency_always_1 = be_bits<1, 7, 1>;
  using lmm_stats_compress = be_bits<2, 0, 16>;
  using sub_li_tap_index = be_bits<4, 0, 32>;
  using nf_sampling_period = be_bits<10, 0, 16>;
  using tag1 = uidb_tag_at<12>;
  using tag2 = uidb_tag_at<16>;
  using pbr_id = be_bits<20, 0, 16>;
  using pbr_format = be_bits<22, 0, 8>;
  using hash_policy_id = be_bits<23, 0, 8>;
  using uidb_ifhandle_main = be_bits<24, 0, 32>;
  using uidb_ifhandle = be_bits<28, 0, 32>;
};
static_assert(sizeof(uidb_ext_l2_ing_st) == 32);

// L2 egress extension, 32 bytes. Its coherency bit is the last of byte 3.
struct uidb_ext_l2_egr_st {
  std::uint8_t bytes[32];
  using efp_filtering = be_bits<0, 0, 1>;
  using tag1_valid = be_bits<0, 1, 1>;
  using tag2_valid = be_bits<0, 2, 1>;
  using l2tp_mode = be_bits<0, 3, 1>;
  using ppp_ctrl_cos_ena = be_bits<0, 4, 1>;
  using ppp_ctrl_cos_value = be_bits<0, 5, 3>;
  using sub_li_en = be_bits<1, 0, 1>;
  using edpl_internal = be_bits<1, 1, 1>;
  using macsec_en = be_bits<1, 2, 1>;
  using macsec_secure = be_bits<1, 3, 1>;
  using sat_off_en = be_bits<1, 4, 1>;
  using lmm_en = be_bits<1, 5, 1>;
  using lmm_agg_mode = be_bits<1, 6, 1>;
  using mip_ccm_learn = be_bits<1, 7, 1>;
  using coherency_always_1 = be_bits<3, 7, 1>;
  using lmm_stats_compress = be_bits<4, 0, 16>;
  using pppoe_session_id = be_bits<6, 0, 16>;
  using sub_li_tap_index = be_bits<8, 0, 32>;
  using uidb_ifhandle = be_bits<12, 0, 32>;
  using mac_addr_ms = be_bits<16, 0, 32>;
  using mac_addr_ls = be_bits<20, 0, 16>;
  using source_port = be_bits<22, 0, 16>;
  using tag1 = uidb_tag_at<24>;
  using tag2 = uidb_tag_at<28>;
};
static_assert(sizeof(uidb_ext_l2_egr_st) == 32);

// Subscriber ingress extension, 16 bytes, read when read_bng_uidb_ext is set.
struct uidb_bng_ext_l3_ing_st {
  std::uint8_t bytes[16];
  using match_dscp = be_bits<0, 0, 1>;
  using keepalive_en = be_bits<0, 1, 1>;
  using subscriber_en = be_bits<0, 2, 1>;
  using pppoe_en = be_bits<0, 3, 1>;
  using dns_connector_en = be_bits<0, 4, 1>;
  using coherency_always_1 = be_bits<0, 7, 1>;
  using sub_li_tap_index = be_bits<2, 0, 16>;
  using parent_ifhandle = be_bits<4, 0, 32>;
  using dns_dev_id_hi = be_bits<8, 0, 32>;
  using dns_dev_id_lo = be_bits<12, 0, 32>;
};
static_assert(sizeof(uidb_bng_ext_l3_ing_st) == 16);

// The marks of an interface that the hardware copies into the baf part of
// the distribution header, by UIDB index (UIDB_MARK_BITS_ING): a reserved
// byte, 20 marks (the L3 or the L2 view, by l2_uidb), then 4 port bits.
struct mark_bits_st {
  std::uint8_t bytes[4];
  using rsvd0 = be_bits<0, 0, 8>;
  // The 20 marks as one field, in the order the baf part holds them.
  using marks = be_bits<1, 0, 20>;
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

// The key and the entry of the IFH_2_UIDB hash table: from an interface
// handle to the interface's index. An entry counts only with valid and match.
struct uidb_ifh_2_uidb_key_st {
  be_u32 ifhandle;
};
static_assert(sizeof(uidb_ifh_2_uidb_key_st) == 4);

struct uidb_ifh_2_uidb_st {
  std::uint8_t bytes[8];
  using match = be_bits<0, 3, 1>;
  using valid = be_bits<0, 7, 1>;
  using bvi = be_bits<1, 0, 1>;
  using uidb_index = be_bits<4, 0, 16>;
};
static_assert(sizeof(uidb_ifh_2_uidb_st) == 8);
