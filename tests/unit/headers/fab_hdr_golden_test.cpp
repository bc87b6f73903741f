// The fabric header families: each header written through its accessors and
// compared with the bytes worked out by hand from the field positions, then
// read back. Byte-reversed fields stand low byte first.
#include <gtest/gtest.h>

#include <array>

#include "header_bytes.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/fab_hdr_write.h"

namespace {

using namespace ht;

template <std::size_t N>
bytes as_bytes(const std::array<std::uint8_t, N>& a) {
  return {a.begin(), a.end()};
}

void set_common(void* fab, std::uint32_t type, std::uint32_t length) {
  dc3_nph_st& h = fab_as<dc3_nph_st>(fab);
  dc3_nph_st::nph_type::set(h, type);
  dc3_nph_st::nph_length::set(h, length);
}

TEST(FabHdrGolden, FixedPartRoundTripAndTheLengthCodeAmongItsFlags) {
  using d = dc3_nph_st;
  const bytes golden =
      (bytes{0xDA, 0x00, 0x84, 0x8D, 0x73, 0x0A, 0xA3, 0x45, 0x61, 0xAC, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
             0x00, 0x00, 0x00, 0x00, 0xAB, 0x38, 0x75, 0xA6, 0x00, 0x00, 0x00, 0x00, 0x00, 0x5D, 0x00, 0xC7});
  expect_round_trip<d, d::dc3_eos, d::dc3_version, d::dc3_pkt_type, d::dc3_hl, d::dc3_plen, d::dc3_de, d::dc3_cos,
                    d::dc3_mgid_15, d::dc3_mgid_18, d::dc3_mgid_17, d::dc3_mgid_16, d::dc3_mgid_14_0, d::ptrace,
                    d::nph_type, d::critical_inject, d::remote_rack, d::nph_length, d::dc3_seq_no, d::dc3_src_port,
                    d::dc3_sfp_valid, d::dc3_fgid_or_sfp, d::dc3_rbh, d::dc3_checksum>(
      golden, {1, 5,    0xA, 2, 0x1235,        1,    0x13,  1, 1,     0,    1,   0x2345,
               1, 0x21, 1,   1, NPH_LENGTH_32, 0x55, 0x9C3, 1, 0x5A6, 0x5D, 0xC7});
  EXPECT_EQ(nph_length_bytes(plat_fab_get_nph_length(golden.data())), 32u);
  EXPECT_EQ(plat_get_fab_hdr_len_l2_uni(golden.data()), 32u);
}

TEST(FabHdrGolden, IpUnicast) {
  std::array<std::uint8_t, 32> h{};
  set_common(h.data(), NPH_TYPE_IPV4_UNI, NPH_LENGTH_32);
  dc3_nph_st::ptrace::set(fab_as<dc3_nph_st>(h.data()), 1);
  dc3_nph_st::critical_inject::set(fab_as<dc3_nph_st>(h.data()), 1);
  plat_set_fab_hdr_ipv4_uni_qos_info(h.data(), 0x1234);
  plat_set_fab_hdr_ipv4_uni_vrf_id(h.data(), 0x0A0B);
  plat_set_fab_hdr_ipv4_uni_lag_id(h.data(), 5);
  plat_set_fab_hdr_ipv4_uni_ts(h.data(), 1);
  plat_set_fab_hdr_ipv4_uni_hop_count(h.data(), 1);
  plat_set_fab_hdr_ipv4_uni_input_if_handle(h.data(), 0x11223344);
  plat_set_fab_hdr_ipv4_uni_raw_hash(h.data(), 0xAABBCCDD);
  plat_set_fab_hdr_ipv4_uni_nrldim(h.data(), 3);
  plat_set_fab_hdr_ipv4_uni_rldim(h.data(), 63);
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x41, 0x8C, 0x34, 0x12, 0x0B, 0x0A, 0x05, 0x41,
                   0x11, 0x22, 0x33, 0x44, 0x00, 0x00, 0x00, 0x00, 0xAA, 0xBB, 0xCC, 0xDD, 0x03, 0x00, 0x3F, 0x00}));
  EXPECT_EQ(plat_get_fab_hdr_ipv4_uni_vrf_id(h.data()), 0x0A0Bu);
  EXPECT_EQ(plat_get_fab_hdr_ipv4_uni_ts_off(h.data()), 0xDDu);
  EXPECT_EQ(plat_get_ipv4_uni_rldi_egr(h.data()), 63u);
  EXPECT_EQ(plat_get_ipv4_uni_nrldi_egr(h.data()), 3u);
  EXPECT_EQ(plat_get_ipv4_uni_lag_egr(h.data()), 5u);
}

TEST(FabHdrGolden, MplsUnicastAndItsOddInputHandle) {
  std::array<std::uint8_t, 32> h{};
  plat_set_fab_hdr_mpls_qos_info(h.data(), 0x0001);
  plat_set_fab_hdr_mpls_lag_id(h.data(), 63);
  plat_set_fab_hdr_mpls_no_impos(h.data(), 1);
  plat_set_fab_hdr_mpls_q_pri(h.data(), 1);
  plat_set_fab_hdr_mpls_md(h.data(), 1);
  plat_set_fab_hdr_mpls_hop_count(h.data(), 1);
  plat_set_fab_hdr_mpls_input_if_handle(h.data(), 0x00000011);
  plat_set_fab_hdr_mpls_raw_hash(h.data(), 0x01020304);
  plat_set_fab_hdr_mpls_nrldim(h.data(), 1);
  plat_set_fab_hdr_mpls_rldim(h.data(), 2);
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x3F, 0x0F,
                   0x00, 0x00, 0x00, 0x11, 0x00, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03, 0x04, 0x01, 0x00, 0x02, 0x00}));
  EXPECT_EQ(plat_get_fab_hdr_mpls_input_if_handle(h.data()), 0u);
  plat_set_fab_hdr_mpls_input_if_handle(h.data(), 0x00000010);
  EXPECT_EQ(plat_get_fab_hdr_mpls_input_if_handle(h.data()), 0x10u);
}

TEST(FabHdrGolden, NextHopIndexForms) {
  std::array<std::uint8_t, 32> ip{};
  set_common(ip.data(), NPH_TYPE_IP_NHINDEX, NPH_LENGTH_32);
  varn_dc3_nph_ip_nhindex_st::nhid_hash::fields::nhindex::set(fab_as<varn_dc3_nph_ip_nhindex_st>(ip.data()), 0x123456);
  varn_dc3_nph_ip_nhindex_st::nhid_hash::fields::raw_hash::set(fab_as<varn_dc3_nph_ip_nhindex_st>(ip.data()), 0x9A);
  varn_dc3_nph_ip_nhindex_st::flags::v6::set(fab_as<varn_dc3_nph_ip_nhindex_st>(ip.data()), 1);
  EXPECT_EQ(as_bytes(ip),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x23, 0x0C, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x56, 0x34, 0x12, 0x9A, 0x00, 0x00, 0x00, 0x00}));
  EXPECT_EQ(plat_get_fab_hdr_ipv6_nhindex(ip.data()), 0x123456u);
  EXPECT_TRUE(plat_is_fab_hdr_ipv6_nhindex(ip.data()));
  EXPECT_TRUE(plat_fab_is_nph_type_ip_nhindex(ip.data()));

  std::array<std::uint8_t, 32> mpls{};
  plat_fab_hdr_adjust_pw_imposition(mpls.data(), 0x7FF, 0xF8000001, TRUE);
  varn_dc3_nph_mpls_nhindex_st::nhindex::set(fab_as<varn_dc3_nph_mpls_nhindex_st>(mpls.data()), 0xABCDEF);
  varn_dc3_nph_mpls_nhindex_st::out_label_msb::set(fab_as<varn_dc3_nph_mpls_nhindex_st>(mpls.data()), 0x1234);
  varn_dc3_nph_mpls_nhindex_st::out_label_lsb::set(fab_as<varn_dc3_nph_mpls_nhindex_st>(mpls.data()), 0x51);
  // Hash bits 29..22 of 0xF8000001 are 0xE0; its low byte goes to dc3_rbh.
  EXPECT_EQ(as_bytes(mpls),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x17, 0xFF, 0xEF, 0xCD, 0xAB, 0x12, 0x34, 0x01, 0x51, 0x00}));
  EXPECT_EQ(plat_get_fab_hdr_mpls_nhindex(mpls.data()), 0xABCDEFu);
  EXPECT_EQ(plat_get_fab_hdr_mpls_nhindex_label(mpls.data()), 0x12345u);
  EXPECT_TRUE(plat_get_fab_hdr_mpls_nhindex_label_valid(mpls.data()));
}

TEST(FabHdrGolden, IpMulticast) {
  std::array<std::uint8_t, 44> h{};
  set_common(h.data(), NPH_TYPE_IPV4_MC, NPH_LENGTH_44);
  plat_set_fab_hdr_ipv4_mc_vrf_id(h.data(), 0x0102);
  plat_set_fab_hdr_ipv4_mc_ext_fgid_b23_14(h.data(), 0x3FF);
  plat_set_fab_hdr_ipv4_mc_ext_fgid_b13_12(h.data(), 3);
  plat_set_fab_hdr_ipv4_mc_input_if_handle(h.data(), 0x0A0B0C0D);
  plat_set_fab_hdr_ipv4_mc_vrf_id_2(h.data(), 0xBEEF);
  plat_set_fab_hdr_ipv4_mc_encap_id(h.data(), 0x0A0B0C);
  plat_set_fab_hdr_ipv4_mc_local_receivers(h.data(), 1);
  plat_set_fab_hdr_ipv4_mc_encap(h.data(), 1);
  plat_set_fab_hdr_ipv4_mc_seg_mc(h.data(), 1);
  plat_set_fab_hdr_ipv4_mc_raw_hash(h.data(), 0x01020304);
  plat_set_fab_hdr_ipv4_mc_tunnel_ifh(h.data(), 0x05060708);
  plat_set_fab_hdr_ipv4_mc_rpf_id(h.data(), 0xC0FFEE);
  plat_set_fab_hdr_ipv4_mc_tunnel_qos(h.data(), 0x77);
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0x12, 0x00, 0x00, 0x02, 0x01, 0xFF,
                   0xCC, 0x0A, 0x0B, 0x0C, 0x0D, 0x00, 0x00, 0x00, 0x00, 0xEF, 0xBE, 0x0A, 0x0B, 0x0C, 0x00,
                   0x25, 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0xC0, 0xFF, 0xEE, 0x77}));
  EXPECT_TRUE(plat_get_fab_hdr_special_ipmc_flag(h.data()));
  EXPECT_EQ(plat_get_fab_hdr_len_ipv4_mc(h.data()), 44u);
}

TEST(FabHdrGolden, MulticastGroupBit18StandsTwiceAndLeavesTheLength) {
  std::array<std::uint8_t, 44> h{};
  set_common(h.data(), NPH_TYPE_IPV4_MC, NPH_LENGTH_44);
  plat_fab_hdr_write_mgid_common(h.data(), 0x48005);  // bits 18, 15, 2 and 0
  EXPECT_EQ(h[9], 82);
  EXPECT_EQ(h[5], 0x0A);  // dc3_mgid_15, dc3_mgid_18
  EXPECT_EQ(h[6], 0x00);
  EXPECT_EQ(h[7], 0x05);
  EXPECT_EQ(plat_get_fab_hdr_len_ipmc(h.data()), 44u);
  plat_fab_hdr_write_mgid_common(h.data(), 0x30000);  // bits 17 and 16
  EXPECT_EQ(h[5], 0x01);
  EXPECT_EQ(h[6], 0x80);
  EXPECT_EQ(h[9], 18);
  plat_fab_hdr_clear_mgid_common(h.data());
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0x12, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}));
}

TEST(FabHdrGolden, FabricGroupSpreadsOverTheFixedPartAndTheExtension) {
  std::array<std::uint8_t, 44> h{};
  plat_fab_hdr_write_vqi_voq(h.data(), 0xFFFF);
  EXPECT_EQ(as_bytes(h), (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x17, 0xFF,
                                0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}));  // 11 bits and sfp_valid
  plat_fab_hdr_write_fgid_common(h.data(), 0xABCDEF);
  // Low 12 bits 0xDEF; bits 13..12 = 0; bits 23..14 = 0x2AF.
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xAB,
                   0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0D, 0xEF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}));
}

TEST(FabHdrGolden, L2UnicastWithTheBridgeDomainInTheFixedPart) {
  std::array<std::uint8_t, 32> h{};
  set_common(h.data(), NPH_TYPE_L2_UNI, NPH_LENGTH_32);
  plat_set_fab_hdr_l2_uni_bd_id(h.data(), 0x9234);
  plat_set_fab_hdr_l2_uni_lag_id(h.data(), 7);
  plat_set_fab_hdr_l2_uni_l2_encaps_sz(h.data(), 18);
  plat_set_fab_hdr_l2_uni_xid_learn_key(h.data(), 255);
  plat_set_fab_hdr_l2_uni_control_word_from_my_bmac(h.data(), 1);
  plat_set_fab_hdr_l2_uni_etree_leaf(h.data(), 1);
  plat_set_fab_hdr_l2_uni_sxid(h.data(), 0x01020304);
  plat_set_fab_hdr_l2_uni_dxid(h.data(), 0xA1B2C3D4);
  plat_set_fab_hdr_l2_uni_rack_id(h.data(), 0xA);
  plat_set_fab_hdr_l2_uni_shg(h.data(), 5);
  plat_set_fab_hdr_l2_uni_cfm(h.data(), 1);
  plat_set_fab_hdr_l2_uni_igmp(h.data(), 1);
  plat_set_fab_hdr_l2_uni_cfm_ltm_remote_rack(h.data(), 1);
  plat_set_fab_hdr_l2_uni_prot_flags_0_1(h.data(), 3);
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x34, 0x12, 0x07, 0x0C, 0x00, 0x00, 0x07, 0x12, 0xFF, 0x42,
                   0x04, 0x03, 0x02, 0x01, 0x00, 0x00, 0x00, 0x00, 0xD4, 0xC3, 0xB2, 0xA1, 0xA5, 0x00, 0xA7, 0x00}));
  EXPECT_EQ(plat_get_fab_hdr_l2_uni_bd_id(h.data()), 0x9234u);
  EXPECT_EQ(plat_get_fab_hdr_l2_uni_dxid(h.data()), 0xA1B2C3D4u);
}

TEST(FabHdrGolden, L2UnicastPlusCarriesAWideBridgeDomainBehindTheBase) {
  std::array<std::uint8_t, 38> h{};
  set_common(h.data(), NPH_TYPE_L2_UNI_PLUS, NPH_LENGTH_38);
  plat_set_fab_hdr_l2_uni_subtype(h.data(), L2_UNI_PLUS_WIDE_BD);
  plat_set_fab_hdr_l2_uni_egr_np_port(h.data(), 0x0102);
  plat_set_fab_hdr_l2_uni_bd_id(h.data(), 0x123456);
  EXPECT_EQ(as_bytes(h), (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x25, 0x0F, 0x00, 0x00, 0x00,
                                0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0x01, 0x02, 0x56, 0x34, 0x12}));
  EXPECT_EQ(plat_get_fab_hdr_l2_uni_bd_id(h.data()), 0x123456u);
  EXPECT_EQ(plat_get_fab_hdr_len_l2_uni(h.data()), 38u);
}

TEST(FabHdrGolden, L2FloodAdvancedForm) {
  std::array<std::uint8_t, 40> h{};
  set_common(h.data(), NPH_TYPE_L2_FLD, NPH_LENGTH_40);
  plat_set_fab_hdr_l2_fld_mrouter(h.data(), 1);
  plat_set_fab_hdr_l2_fld_evpn_e2c(h.data(), 1);
  plat_set_fab_hdr_l2_fld_l2_encaps_sz(h.data(), 22);
  plat_set_fab_hdr_l2_fld_sxid(h.data(), 0x11223344);
  plat_set_fab_hdr_l2_fld_raw_hash(h.data(), 0xDEADBEEF);
  plat_set_fab_hdr_l2_fld_prot_flags(h.data(), 0x1F);
  plat_set_fab_hdr_l2_fld_bd_id(h.data(), 0x010203);
  plat_set_fab_hdr_l2_fld_subtype(h.data(), L2_FLD_SUBTYPE_EVPN);
  plat_set_fab_hdr_l2_fld_evpn_esi(h.data(), 0x0A0B0C);
  plat_set_fab_hdr_l2_fld_native_evpn(h.data(), 1);
  plat_set_fab_hdr_l2_fld_from_bvi(h.data(), 1);
  plat_set_fab_hdr_l2_fld_etree_leaf(h.data(), 1);
  EXPECT_EQ(as_bytes(h), (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x10, 0x00, 0x00, 0x41, 0x16,
                                0x00, 0x00, 0x44, 0x33, 0x22, 0x11, 0x00, 0x00, 0x00, 0x00, 0xDE, 0xAD, 0xBE, 0xEF,
                                0x00, 0x00, 0x1F, 0x00, 0x03, 0x02, 0x01, 0x04, 0x0C, 0x0B, 0x0A, 0xE0}));
  EXPECT_TRUE(plat_fab_nph_is_l2flood_mc(h.data()));
  EXPECT_EQ(plat_get_l2_flood_hash_egr(h.data()), 0xDEADBEEFu);
}

TEST(FabHdrGolden, MacNotification) {
  std::array<std::uint8_t, 50> h{};
  set_common(h.data(), NPH_TYPE_MAC_NOTIFY, NPH_LENGTH_50);
  plat_set_fab_hdr_mn_ipc_type(h.data(), MAC_NOTIFY_IPC_TYPE);
  plat_set_fab_hdr_mn_learn_key(h.data(), 9);
  plat_set_fab_hdr_mn_source_np(h.data(), 0x0102);
  plat_set_fab_hdr_mn_bd_id(h.data(), 0x0A0B0C);
  plat_set_fab_hdr_mn_mac_secure_actions(h.data(), 2);
  plat_set_fab_hdr_mn_mac_delete(h.data(), 1);
  plat_set_fab_hdr_mn_mbx_learn_retry(h.data(), 1);
  plat_set_fab_hdr_mn_thresh_mac_secure(h.data(), 1);
  plat_set_fab_hdr_mn_rack_id(h.data(), 3);
  plat_set_fab_hdr_mn_mac1_ms(h.data(), 0x00112233);
  plat_set_fab_hdr_mn_mac1_ls(h.data(), 0x4455);
  plat_set_fab_hdr_mn_mac2_ms(h.data(), 0x66778899);
  plat_set_fab_hdr_mn_mac2_ls(h.data(), 0xAABB);
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0A, 0x15, 0x01, 0x09, 0x01, 0x02, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0C, 0x0B, 0x0A, 0x12, 0x05, 0x00, 0x03, 0x00, 0x00, 0x00,
                   0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0x00, 0x00, 0x00, 0x00}));
  EXPECT_TRUE(plat_is_fab_hdr_mn(h.data()));
  EXPECT_EQ(nph_length_bytes(plat_fab_get_nph_length(h.data())), 50u);
}

TEST(FabHdrGolden, MofrrMessage) {
  std::array<std::uint8_t, 44> h{};
  plat_set_fab_hdr_mofrr_src_ip(h.data(), 0x0A000001);
  plat_set_fab_hdr_mofrr_vrf_id(h.data(), 5);
  plat_set_fab_hdr_mofrr_dst_ip_B0_B1(h.data(), 0xE001);
  plat_set_fab_hdr_mofrr_dst_ip_B2_B3(h.data(), 0x0203);
  plat_set_fab_hdr_mofrr_np_id(h.data(), 2);
  plat_set_fab_hdr_mofrr_drop(h.data(), 1);
  plat_set_fab_hdr_mofrr_active_mofrr(h.data(), 1);
  plat_set_fab_hdr_mofrr_seq_num(h.data(), 0x01020304);
  plat_set_fab_hdr_mofrr_rpf_id(h.data(), 0x05060708);
  plat_set_fab_hdr_mofrr_wdi(h.data(), 0x090A0B);
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0A, 0x00, 0x00, 0x01, 0x00,
                   0x00, 0x00, 0x05, 0xE0, 0x01, 0x00, 0x00, 0x00, 0x00, 0x02, 0x03, 0x02, 0x00, 0x00, 0x00,
                   0x03, 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x00}));
}

TEST(FabHdrGolden, AbfExtensions) {
  std::array<std::uint8_t, 40> v4{};
  plat_set_fab_hdr_ipv4_abf_uni_next_hop(v4.data(), 0xC0000201);
  plat_set_fab_hdr_ipv4_abf_uni_abf_vrf_id(v4.data(), 0x1234);
  plat_set_fab_hdr_ipv4_abf_uni_svi_uidb_index(v4.data(), 9);
  plat_set_fab_hdr_ipv4_abf_uni_cgn_service(v4.data(), 1);
  plat_set_fab_hdr_ipv4_abf_uni_ipsec(v4.data(), 1);
  EXPECT_EQ(as_bytes(v4), (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                 0x00, 0x00, 0x00, 0x00, 0xC0, 0x00, 0x02, 0x01, 0x34, 0x12, 0x09, 0xA0}));

  std::array<std::uint8_t, 52> v6{};
  std::array<std::uint8_t, 16> addr{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  plat_set_fab_hdr_ipv6_abf_uni_next_hop(v6.data(), addr.data());
  plat_set_fab_hdr_ipv6_abf_uni_abf_vrf_id(v6.data(), 0x0001);
  plat_set_fab_hdr_ipv6_abf_uni_svi_uidb_index(v6.data(), 7);
  plat_set_fab_hdr_ipv6_abf_uni_skip_abf_nh(v6.data(), 1);
  EXPECT_EQ(as_bytes(v6), (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x20, 0x01, 0x0D, 0xB8, 0x00, 0x00, 0x00,
                                 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x00, 0x07, 0x40}));
}

TEST(FabHdrGolden, UnicastExtensionForms) {
  std::array<std::uint8_t, 44> gre{};
  set_common(gre.data(), NPH_TYPE_IPV4_UNI_EXT, NPH_LENGTH_40);
  plat_set_fab_hdr_ip_uni_ext_nph_subtype(gre.data(), L3_UNI_EXT_MULTIKEY);
  plat_set_fab_hdr_ip_uni_ext_gre_key(gre.data(), 0x11223344);
  EXPECT_EQ(as_bytes(gre),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x20, 0x10, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x44, 0x33, 0x22, 0x11, 0x00, 0x00, 0x00, 0x00}));
  EXPECT_FALSE(plat_is_fab_hdr_ipv4_pwhe_uni(gre.data()));

  std::array<std::uint8_t, PWHE_VPATH_HDR_BYTES> vpath{};
  set_common(vpath.data(), NPH_TYPE_IPV6_UNI_EXT, NPH_LENGTH_40);
  plat_set_fab_hdr_ip_uni_ext_SDN_proc(vpath.data(), 1);
  plat_set_fab_hdr_ip_uni_ext_resp_new_flow_inj(vpath.data(), 1);
  plat_set_fab_hdr_ip_uni_ext_egr_np_port(vpath.data(), 0x0304);
  plat_set_fab_hdr_ip_uni_ext_pwhe_lag_id(vpath.data(), 2);
  EXPECT_FALSE(plat_is_fab_hdr_pwhe_vpath_uni(vpath.data()));
  plat_set_fab_hdr_ip_uni_ext_reinject_or_output(vpath.data(), 1);
  vpath[52] = 0x86;
  vpath[53] = 0xDD;
  EXPECT_EQ(nonzero(vpath),
            (byte_map{{8, 34}, {9, 16}, {33, 0x03}, {34, 0x04}, {37, 0x02}, {38, 0x8A}, {52, 0x86}, {53, 0xDD}}));
  EXPECT_TRUE(plat_is_fab_hdr_pwhe_ipv6_vpath(vpath.data()));
  EXPECT_FALSE(plat_is_fab_hdr_pwhe_ipv4_vpath(vpath.data()));
  EXPECT_TRUE(plat_is_fab_hdr_pwhe_uni(vpath.data()));
  EXPECT_EQ(plat_get_pwhe_encap_uni_lag_egr(vpath.data()), 2u);
}

TEST(FabHdrGolden, Loopback) {
  std::array<std::uint8_t, 32> h{};
  plat_set_fab_hdr_loopback_qos_info(h.data(), 0xE000);
  plat_set_fab_hdr_loopback_pkt_len(h.data(), 1500);
  plat_set_fab_hdr_loopback_input_if_handle(h.data(), 0x01020304);
  plat_set_fab_hdr_loopback_parent_if_handle(h.data(), 0x0A0B0C0D);
  EXPECT_EQ(as_bytes(h),
            (bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0x05, 0xDC, 0x00, 0x00,
                   0x01, 0x02, 0x03, 0x04, 0x00, 0x00, 0x00, 0x00, 0x0A, 0x0B, 0x0C, 0x0D, 0x00, 0x00, 0x00, 0x00}));
}

TEST(FabHdrGolden, KindTestsByType) {
  struct row {
    std::uint32_t type;
    bool l2flood_mc, ip_uni_ext, ipv4_abf, ipv6_abf, mpls_pwhe, inj_pwhe;
  };
  const row rows[] = {
      {NPH_TYPE_L2_FLD, true, false, false, false, false, false},
      {NPH_TYPE_L2M4, true, false, false, false, false, false},
      {NPH_TYPE_L2M6, false, false, false, false, false, false},
      {NPH_TYPE_IPV4_UNI_EXT, false, true, false, false, false, false},
      {NPH_TYPE_IPV6_UNI_EXT, false, true, false, false, false, false},
      {NPH_TYPE_IPV4_ABF_UNI, false, false, true, false, false, false},
      {NPH_TYPE_IPV6_ABF_UNI, false, false, false, true, false, false},
      {NPH_TYPE_MPLS_UNI_EXT, false, false, false, false, true, false},
      {NPH_TYPE_PUNT_INJECT, false, false, false, false, false, true},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(r.type);
    std::array<std::uint8_t, 32> h{};
    set_common(h.data(), r.type, NPH_LENGTH_32);
    EXPECT_EQ(plat_fab_nph_is_l2flood_mc(h.data()) != 0, r.l2flood_mc);
    EXPECT_EQ(plat_is_fab_hdr_ip_uni_ext(h.data()) != 0, r.ip_uni_ext);
    EXPECT_EQ(plat_is_fab_hdr_ipv4_abf_uni(h.data()) != 0, r.ipv4_abf);
    EXPECT_EQ(plat_is_fab_hdr_ipv6_abf_uni(h.data()) != 0, r.ipv6_abf);
    EXPECT_EQ(plat_is_fab_hdr_mpls_pwhe_uni(h.data()) != 0, r.mpls_pwhe);
    EXPECT_EQ(plat_is_fab_hdr_inj_pwhe_uni(h.data()) != 0, r.inj_pwhe);
  }
}

// Checksum vectors summed by hand: fifteen words of bytes 0..29, byte 30,
// the three folds, the complement.
TEST(FabHdrChecksum, KnownVectors) {
  struct row {
    const char* name;
    byte_map set;
    std::uint8_t checksum;
  };
  const row rows[] = {
      // 0xC000 + 0x4000 + 0x0200 + 0x0212 + 0x0005 + 0x10 = 0x10427 -> 0x27 + 0x04 + 1 = 0x2C
      {"multicast header", {{0, 0xC0}, {2, 0x40}, {4, 0x02}, {8, 0x02}, {9, 0x12}, {23, 0x05}, {30, 0x10}}, 0xD3},
      // fifteen 0xFFFF and 0xFF = 0xF00F0 -> 0xF0 + 0x00 + 0xF = 0xFF
      {"all ones",
       {{0, 0xFF},  {1, 0xFF},  {2, 0xFF},  {3, 0xFF},  {4, 0xFF},  {5, 0xFF},  {6, 0xFF},  {7, 0xFF},
        {8, 0xFF},  {9, 0xFF},  {10, 0xFF}, {11, 0xFF}, {12, 0xFF}, {13, 0xFF}, {14, 0xFF}, {15, 0xFF},
        {16, 0xFF}, {17, 0xFF}, {18, 0xFF}, {19, 0xFF}, {20, 0xFF}, {21, 0xFF}, {22, 0xFF}, {23, 0xFF},
        {24, 0xFF}, {25, 0xFF}, {26, 0xFF}, {27, 0xFF}, {28, 0xFF}, {29, 0xFF}, {30, 0xFF}},
       0x00},
      // 3 x 0xFFFF + 0x0002 = 0x2FFFF -> 0xFF + 0xFF + 2 = 0x200 -> 0x00 + 2 = 2
      {"second fold carries", {{0, 0xFF}, {1, 0xFF}, {2, 0xFF}, {3, 0xFF}, {4, 0xFF}, {5, 0xFF}, {7, 0x02}}, 0xFD},
      // byte 31 is not summed
      {"checksum byte left out", {{31, 0x77}}, 0xFF},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    bytes h = with(32, r.set);
    dc3_set_checksum(h.data());
    EXPECT_EQ(h[31], r.checksum);
  }
}

}  // namespace
