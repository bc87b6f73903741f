// The fabric header families: each header written through its accessors and
// compared with the bytes worked out by hand from the field positions, then
// read back. Byte-reversed fields stand low byte first.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "header_bytes.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/fab_hdr_write.h"

namespace {

using namespace ht;

using setter = void (*)(void*, std::uint32_t);
template <class F, class R = dc3_nph_st>
void field(void* fab, std::uint32_t value) {
  F::set(fab_as<R>(fab), value);
}
constexpr setter TYPE = field<dc3_nph_st::nph_type>, LENGTH = field<dc3_nph_st::nph_length>;

// A zeroed header of `size` bytes with each setter's value written in turn.
bytes written(std::size_t size, const std::vector<setter>& setters, const std::vector<std::uint32_t>& values) {
  bytes h(size, 0);
  for (std::size_t i = 0; i < setters.size(); ++i) setters[i](h.data(), values.at(i));
  return h;
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
  const bytes h = written(
      32,
      {TYPE, LENGTH, field<dc3_nph_st::ptrace>, field<dc3_nph_st::critical_inject>, plat_set_fab_hdr_ipv4_uni_qos_info,
       plat_set_fab_hdr_ipv4_uni_vrf_id, plat_set_fab_hdr_ipv4_uni_lag_id, plat_set_fab_hdr_ipv4_uni_ts,
       plat_set_fab_hdr_ipv4_uni_hop_count, plat_set_fab_hdr_ipv4_uni_input_if_handle,
       plat_set_fab_hdr_ipv4_uni_raw_hash, plat_set_fab_hdr_ipv4_uni_nrldim, plat_set_fab_hdr_ipv4_uni_rldim},
      {NPH_TYPE_IPV4_UNI, NPH_LENGTH_32, 1, 1, 0x1234, 0x0A0B, 5, 1, 1, 0x11223344, 0xAABBCCDD, 3, 63});
  const byte_map h_golden = {{8, 0x41},  {9, 0x8C},  {10, 0x34}, {11, 0x12}, {12, 0x0B}, {13, 0x0A},
                             {14, 0x05}, {15, 0x41}, {16, 0x11}, {17, 0x22}, {18, 0x33}, {19, 0x44},
                             {24, 0xAA}, {25, 0xBB}, {26, 0xCC}, {27, 0xDD}, {28, 0x03}, {30, 0x3F}};
  EXPECT_EQ(h, with(32, h_golden));
  EXPECT_EQ(plat_get_fab_hdr_ipv4_uni_ts_off(h.data()), 0xDDu);
  EXPECT_EQ(plat_get_ipv4_uni_rldi_egr(h.data()), 63u);
  EXPECT_EQ(plat_get_ipv4_uni_nrldi_egr(h.data()), 3u);
  EXPECT_EQ(plat_get_ipv4_uni_lag_egr(h.data()), 5u);
}

TEST(FabHdrGolden, MplsUnicastAndItsOddInputHandle) {
  bytes h = written(32,
                    {plat_set_fab_hdr_mpls_qos_info, plat_set_fab_hdr_mpls_lag_id, plat_set_fab_hdr_mpls_no_impos,
                     plat_set_fab_hdr_mpls_q_pri, plat_set_fab_hdr_mpls_md, plat_set_fab_hdr_mpls_hop_count,
                     plat_set_fab_hdr_mpls_input_if_handle, plat_set_fab_hdr_mpls_raw_hash,
                     plat_set_fab_hdr_mpls_nrldim, plat_set_fab_hdr_mpls_rldim},
                    {0x0001, 63, 1, 1, 1, 1, 0x00000011, 0x01020304, 1, 2});
  const byte_map h_golden = {{10, 0x01}, {14, 0x3F}, {15, 0x0F}, {19, 0x11}, {24, 0x01},
                             {25, 0x02}, {26, 0x03}, {27, 0x04}, {28, 0x01}, {30, 0x02}};
  EXPECT_EQ(h, with(32, h_golden));
  EXPECT_EQ(plat_get_fab_hdr_mpls_input_if_handle(h.data()), 0u);
  plat_set_fab_hdr_mpls_input_if_handle(h.data(), 0x00000010);
  EXPECT_EQ(plat_get_fab_hdr_mpls_input_if_handle(h.data()), 0x10u);
}

TEST(FabHdrGolden, NextHopIndexForms) {
  using ipnh = varn_dc3_nph_ip_nhindex_st;
  const bytes ip = written(32,
                           {TYPE, LENGTH, field<ipnh::nhid_hash::fields::nhindex, ipnh>,
                            field<ipnh::nhid_hash::fields::raw_hash, ipnh>, field<ipnh::flags::v6, ipnh>},
                           {NPH_TYPE_IP_NHINDEX, NPH_LENGTH_32, 0x123456, 0x9A, 1});
  const byte_map ip_golden = {{8, 0x23}, {9, 0x0C}, {15, 0x80}, {24, 0x56}, {25, 0x34}, {26, 0x12}, {27, 0x9A}};
  EXPECT_EQ(ip, with(32, ip_golden));
  EXPECT_EQ(plat_get_fab_hdr_ipv6_nhindex(ip.data()), 0x123456u);
  EXPECT_TRUE(plat_is_fab_hdr_ipv6_nhindex(ip.data()));
  EXPECT_TRUE(plat_fab_is_nph_type_ip_nhindex(ip.data()));

  using mplsnh = varn_dc3_nph_mpls_nhindex_st;
  bytes mpls = written(
      32, {field<mplsnh::nhindex, mplsnh>, field<mplsnh::out_label_msb, mplsnh>, field<mplsnh::out_label_lsb, mplsnh>},
      {0xABCDEF, 0x1234, 0x51});
  plat_fab_hdr_adjust_pw_imposition(mpls.data(), 0x7FF, 0xF8000001, TRUE);
  // Hash bits 29..22 of 0xF8000001 are 0xE0; its low byte goes to dc3_rbh.
  const byte_map mpls_golden = {{12, 0xE0}, {22, 0x17}, {23, 0xFF}, {24, 0xEF}, {25, 0xCD},
                                {26, 0xAB}, {27, 0x12}, {28, 0x34}, {29, 0x01}, {30, 0x51}};
  EXPECT_EQ(mpls, with(32, mpls_golden));
  EXPECT_EQ(plat_get_fab_hdr_mpls_nhindex_label(mpls.data()), 0x12345u);
  EXPECT_TRUE(plat_get_fab_hdr_mpls_nhindex_label_valid(mpls.data()));
}

TEST(FabHdrGolden, IpMulticast) {
  bytes h = written(
      44,
      {TYPE, LENGTH, plat_set_fab_hdr_ipv4_mc_vrf_id, plat_set_fab_hdr_ipv4_mc_ext_fgid_b23_14,
       plat_set_fab_hdr_ipv4_mc_ext_fgid_b13_12, plat_set_fab_hdr_ipv4_mc_input_if_handle,
       plat_set_fab_hdr_ipv4_mc_vrf_id_2, plat_set_fab_hdr_ipv4_mc_encap_id, plat_set_fab_hdr_ipv4_mc_local_receivers,
       plat_set_fab_hdr_ipv4_mc_encap, plat_set_fab_hdr_ipv4_mc_seg_mc, plat_set_fab_hdr_ipv4_mc_raw_hash,
       plat_set_fab_hdr_ipv4_mc_tunnel_ifh, plat_set_fab_hdr_ipv4_mc_rpf_id, plat_set_fab_hdr_ipv4_mc_tunnel_qos},
      {NPH_TYPE_IPV4_MC, NPH_LENGTH_44, 0x0102, 0x3FF, 3, 0x0A0B0C0D, 0xBEEF, 0x0A0B0C, 1, 1, 1, 0x01020304, 0x05060708,
       0xC0FFEE, 0x77});
  const byte_map h_golden = {{8, 0x02},  {9, 0x12},  {12, 0x02}, {13, 0x01}, {14, 0xFF}, {15, 0xCC}, {16, 0x0A},
                             {17, 0x0B}, {18, 0x0C}, {19, 0x0D}, {24, 0xEF}, {25, 0xBE}, {26, 0x0A}, {27, 0x0B},
                             {28, 0x0C}, {30, 0x25}, {32, 0x01}, {33, 0x02}, {34, 0x03}, {35, 0x04}, {36, 0x05},
                             {37, 0x06}, {38, 0x07}, {39, 0x08}, {40, 0xC0}, {41, 0xFF}, {42, 0xEE}, {43, 0x77}};
  EXPECT_EQ(h, with(44, h_golden));
  EXPECT_TRUE(plat_get_fab_hdr_special_ipmc_flag(h.data()));
  EXPECT_EQ(plat_get_fab_hdr_len_ipv4_mc(h.data()), 44u);
}

TEST(FabHdrGolden, MulticastGroupBit18StandsTwiceAndLeavesTheLength) {
  bytes h = written(44, {TYPE, LENGTH}, {NPH_TYPE_IPV4_MC, NPH_LENGTH_44});
  plat_fab_hdr_write_mgid_common(h.data(), 0x48005);                   // bits 18, 15, 2 and 0
  EXPECT_EQ(h, with(44, {{5, 0x0A}, {7, 0x05}, {8, 0x02}, {9, 82}}));  // dc3_mgid_15, dc3_mgid_18
  EXPECT_EQ(plat_get_fab_hdr_len_ipmc(h.data()), 44u);
  plat_fab_hdr_write_mgid_common(h.data(), 0x30000);  // bits 17 and 16
  EXPECT_EQ(h, with(44, {{5, 0x01}, {6, 0x80}, {8, 0x02}, {9, 18}}));
  plat_fab_hdr_clear_mgid_common(h.data());
  EXPECT_EQ(h, with(44, {{8, 0x02}, {9, 0x12}}));
}

TEST(FabHdrGolden, FabricGroupSpreadsOverTheFixedPartAndTheExtension) {
  bytes h = written(44, {plat_fab_hdr_write_vqi_voq}, {0xFFFF});
  EXPECT_EQ(h, with(44, {{22, 0x17}, {23, 0xFF}}));  // 11 bits and sfp_valid
  plat_fab_hdr_write_fgid_common(h.data(), 0xABCDEF);
  // Low 12 bits 0xDEF; bits 13..12 = 0; bits 23..14 = 0x2AF.
  EXPECT_EQ(h, with(44, {{14, 0xAB}, {15, 0xC0}, {22, 0x0D}, {23, 0xEF}}));
}

TEST(FabHdrGolden, L2UnicastWithTheBridgeDomainInTheFixedPart) {
  bytes h =
      written(32,
              {TYPE, LENGTH, plat_set_fab_hdr_l2_uni_bd_id, plat_set_fab_hdr_l2_uni_lag_id,
               plat_set_fab_hdr_l2_uni_l2_encaps_sz, plat_set_fab_hdr_l2_uni_xid_learn_key,
               plat_set_fab_hdr_l2_uni_control_word_from_my_bmac, plat_set_fab_hdr_l2_uni_etree_leaf,
               plat_set_fab_hdr_l2_uni_sxid, plat_set_fab_hdr_l2_uni_dxid, plat_set_fab_hdr_l2_uni_rack_id,
               plat_set_fab_hdr_l2_uni_shg, plat_set_fab_hdr_l2_uni_cfm, plat_set_fab_hdr_l2_uni_igmp,
               plat_set_fab_hdr_l2_uni_cfm_ltm_remote_rack, plat_set_fab_hdr_l2_uni_prot_flags_0_1},
              {NPH_TYPE_L2_UNI, NPH_LENGTH_32, 0x9234, 7, 18, 255, 1, 1, 0x01020304, 0xA1B2C3D4, 0xA, 5, 1, 1, 1, 3});
  const byte_map h_golden = {{5, 0x08},  {6, 0x34},  {7, 0x12},  {8, 0x07},  {9, 0x0C},  {12, 0x07}, {13, 0x12},
                             {14, 0xFF}, {15, 0x42}, {16, 0x04}, {17, 0x03}, {18, 0x02}, {19, 0x01}, {24, 0xD4},
                             {25, 0xC3}, {26, 0xB2}, {27, 0xA1}, {28, 0xA5}, {30, 0xA7}};
  EXPECT_EQ(h, with(32, h_golden));
  EXPECT_EQ(plat_get_fab_hdr_l2_uni_bd_id(h.data()), 0x9234u);
}

TEST(FabHdrGolden, L2UnicastPlusCarriesAWideBridgeDomainBehindTheBase) {
  bytes h = written(38,
                    {TYPE, LENGTH, plat_set_fab_hdr_l2_uni_subtype, plat_set_fab_hdr_l2_uni_egr_np_port,
                     plat_set_fab_hdr_l2_uni_bd_id},
                    {NPH_TYPE_L2_UNI_PLUS, NPH_LENGTH_38, L2_UNI_PLUS_WIDE_BD, 0x0102, 0x123456});
  EXPECT_EQ(h,
            with(38, {{8, 0x25}, {9, 0x0F}, {32, 0x02}, {33, 0x01}, {34, 0x02}, {35, 0x56}, {36, 0x34}, {37, 0x12}}));
  EXPECT_EQ(plat_get_fab_hdr_l2_uni_bd_id(h.data()), 0x123456u);
  EXPECT_EQ(plat_get_fab_hdr_len_l2_uni(h.data()), 38u);
}

TEST(FabHdrGolden, L2FloodAdvancedForm) {
  bytes h =
      written(40,
              {TYPE, LENGTH, plat_set_fab_hdr_l2_fld_mrouter, plat_set_fab_hdr_l2_fld_evpn_e2c,
               plat_set_fab_hdr_l2_fld_l2_encaps_sz, plat_set_fab_hdr_l2_fld_sxid, plat_set_fab_hdr_l2_fld_raw_hash,
               plat_set_fab_hdr_l2_fld_prot_flags, plat_set_fab_hdr_l2_fld_bd_id, plat_set_fab_hdr_l2_fld_subtype,
               plat_set_fab_hdr_l2_fld_evpn_esi, plat_set_fab_hdr_l2_fld_native_evpn, plat_set_fab_hdr_l2_fld_from_bvi,
               plat_set_fab_hdr_l2_fld_etree_leaf},
              {NPH_TYPE_L2_FLD, NPH_LENGTH_40, 1, 1, 22, 0x11223344, 0xDEADBEEF, 0x1F, 0x010203, L2_FLD_SUBTYPE_EVPN,
               0x0A0B0C, 1, 1, 1});
  const byte_map h_golden = {{8, 0x08},  {9, 0x10},  {12, 0x41}, {13, 0x16}, {16, 0x44}, {17, 0x33}, {18, 0x22},
                             {19, 0x11}, {24, 0xDE}, {25, 0xAD}, {26, 0xBE}, {27, 0xEF}, {30, 0x1F}, {32, 0x03},
                             {33, 0x02}, {34, 0x01}, {35, 0x04}, {36, 0x0C}, {37, 0x0B}, {38, 0x0A}, {39, 0xE0}};
  EXPECT_EQ(h, with(40, h_golden));
  EXPECT_TRUE(plat_fab_nph_is_l2flood_mc(h.data()));
  EXPECT_EQ(plat_get_l2_flood_hash_egr(h.data()), 0xDEADBEEFu);
}

TEST(FabHdrGolden, MacNotification) {
  bytes h = written(50,
                    {TYPE, LENGTH, plat_set_fab_hdr_mn_ipc_type, plat_set_fab_hdr_mn_learn_key,
                     plat_set_fab_hdr_mn_source_np, plat_set_fab_hdr_mn_bd_id, plat_set_fab_hdr_mn_mac_secure_actions,
                     plat_set_fab_hdr_mn_mac_delete, plat_set_fab_hdr_mn_mbx_learn_retry,
                     plat_set_fab_hdr_mn_thresh_mac_secure, plat_set_fab_hdr_mn_rack_id, plat_set_fab_hdr_mn_mac1_ms,
                     plat_set_fab_hdr_mn_mac1_ls, plat_set_fab_hdr_mn_mac2_ms, plat_set_fab_hdr_mn_mac2_ls},
                    {NPH_TYPE_MAC_NOTIFY, NPH_LENGTH_50, MAC_NOTIFY_IPC_TYPE, 9, 0x0102, 0x0A0B0C, 2, 1, 1, 1, 3,
                     0x00112233, 0x4455, 0x66778899, 0xAABB});
  const byte_map h_golden = {{8, 0x0A},  {9, 0x15},  {10, 0x01}, {11, 0x09}, {12, 0x01}, {13, 0x02},
                             {24, 0x0C}, {25, 0x0B}, {26, 0x0A}, {27, 0x12}, {28, 0x05}, {30, 0x03},
                             {35, 0x11}, {36, 0x22}, {37, 0x33}, {38, 0x44}, {39, 0x55}, {40, 0x66},
                             {41, 0x77}, {42, 0x88}, {43, 0x99}, {44, 0xAA}, {45, 0xBB}};
  EXPECT_EQ(h, with(50, h_golden));
  EXPECT_TRUE(plat_is_fab_hdr_mn(h.data()));
  EXPECT_EQ(nph_length_bytes(plat_fab_get_nph_length(h.data())), 50u);
}

TEST(FabHdrGolden, MofrrMessage) {
  bytes h = written(44,
                    {plat_set_fab_hdr_mofrr_src_ip, plat_set_fab_hdr_mofrr_vrf_id, plat_set_fab_hdr_mofrr_dst_ip_B0_B1,
                     plat_set_fab_hdr_mofrr_dst_ip_B2_B3, plat_set_fab_hdr_mofrr_np_id, plat_set_fab_hdr_mofrr_drop,
                     plat_set_fab_hdr_mofrr_active_mofrr, plat_set_fab_hdr_mofrr_seq_num, plat_set_fab_hdr_mofrr_rpf_id,
                     plat_set_fab_hdr_mofrr_wdi},
                    {0x0A000001, 5, 0xE001, 0x0203, 2, 1, 1, 0x01020304, 0x05060708, 0x090A0B});
  const byte_map h_golden = {{10, 0x0A}, {13, 0x01}, {17, 0x05}, {18, 0xE0}, {19, 0x01}, {24, 0x02}, {25, 0x03},
                             {26, 0x02}, {30, 0x03}, {32, 0x01}, {33, 0x02}, {34, 0x03}, {35, 0x04}, {36, 0x05},
                             {37, 0x06}, {38, 0x07}, {39, 0x08}, {40, 0x09}, {41, 0x0A}, {42, 0x0B}};
  EXPECT_EQ(h, with(44, h_golden));
}

TEST(FabHdrGolden, AbfExtensions) {
  bytes v4 = written(40,
                     {plat_set_fab_hdr_ipv4_abf_uni_next_hop, plat_set_fab_hdr_ipv4_abf_uni_abf_vrf_id,
                      plat_set_fab_hdr_ipv4_abf_uni_svi_uidb_index, plat_set_fab_hdr_ipv4_abf_uni_cgn_service,
                      plat_set_fab_hdr_ipv4_abf_uni_ipsec},
                     {0xC0000201, 0x1234, 9, 1, 1});
  const byte_map v4_golden = {{32, 0xC0}, {34, 0x02}, {35, 0x01}, {36, 0x34}, {37, 0x12}, {38, 0x09}, {39, 0xA0}};
  EXPECT_EQ(v4, with(40, v4_golden));

  bytes v6(52, 0);
  std::array<std::uint8_t, 16> addr{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  plat_set_fab_hdr_ipv6_abf_uni_next_hop(v6.data(), addr.data());
  plat_set_fab_hdr_ipv6_abf_uni_abf_vrf_id(v6.data(), 0x0001);
  plat_set_fab_hdr_ipv6_abf_uni_svi_uidb_index(v6.data(), 7);
  plat_set_fab_hdr_ipv6_abf_uni_skip_abf_nh(v6.data(), 1);
  EXPECT_EQ(v6,
            with(52, {{32, 0x20}, {33, 0x01}, {34, 0x0D}, {35, 0xB8}, {47, 0x01}, {48, 0x01}, {50, 0x07}, {51, 0x40}}));
}

TEST(FabHdrGolden, UnicastExtensionForms) {
  bytes gre = written(44, {TYPE, LENGTH, plat_set_fab_hdr_ip_uni_ext_nph_subtype, plat_set_fab_hdr_ip_uni_ext_gre_key},
                      {NPH_TYPE_IPV4_UNI_EXT, NPH_LENGTH_40, L3_UNI_EXT_MULTIKEY, 0x11223344});
  const byte_map gre_golden = {{8, 0x20}, {9, 0x10}, {32, 0x01}, {36, 0x44}, {37, 0x33}, {38, 0x22}, {39, 0x11}};
  EXPECT_EQ(gre, with(44, gre_golden));
  EXPECT_FALSE(plat_is_fab_hdr_ipv4_pwhe_uni(gre.data()));

  bytes vpath =
      written(PWHE_VPATH_HDR_BYTES,
              {TYPE, LENGTH, plat_set_fab_hdr_ip_uni_ext_SDN_proc, plat_set_fab_hdr_ip_uni_ext_resp_new_flow_inj,
               plat_set_fab_hdr_ip_uni_ext_egr_np_port, plat_set_fab_hdr_ip_uni_ext_pwhe_lag_id},
              {NPH_TYPE_IPV6_UNI_EXT, NPH_LENGTH_40, 1, 1, 0x0304, 2});
  EXPECT_FALSE(plat_is_fab_hdr_pwhe_vpath_uni(vpath.data()));
  plat_set_fab_hdr_ip_uni_ext_reinject_or_output(vpath.data(), 1);
  vpath[52] = 0x86;
  vpath[53] = 0xDD;
  EXPECT_EQ(vpath, with(PWHE_VPATH_HDR_BYTES,
                        {{8, 34}, {9, 16}, {33, 0x03}, {34, 0x04}, {37, 0x02}, {38, 0x8A}, {52, 0x86}, {53, 0xDD}}));
  EXPECT_TRUE(plat_is_fab_hdr_pwhe_ipv6_vpath(vpath.data()));
  EXPECT_FALSE(plat_is_fab_hdr_pwhe_ipv4_vpath(vpath.data()));
  EXPECT_TRUE(plat_is_fab_hdr_pwhe_uni(vpath.data()));
  EXPECT_EQ(plat_get_pwhe_encap_uni_lag_egr(vpath.data()), 2u);
}

TEST(FabHdrGolden, Loopback) {
  bytes h = written(32,
                    {plat_set_fab_hdr_loopback_qos_info, plat_set_fab_hdr_loopback_pkt_len,
                     plat_set_fab_hdr_loopback_input_if_handle, plat_set_fab_hdr_loopback_parent_if_handle},
                    {0xE000, 1500, 0x01020304, 0x0A0B0C0D});
  const byte_map h_golden = {{11, 0xE0}, {12, 0x05}, {13, 0xDC}, {16, 0x01}, {17, 0x02}, {18, 0x03},
                             {19, 0x04}, {24, 0x0A}, {25, 0x0B}, {26, 0x0C}, {27, 0x0D}};
  EXPECT_EQ(h, with(32, h_golden));
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
    const bytes h = written(32, {TYPE, LENGTH}, {r.type, NPH_LENGTH_32});
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
    bytes header;
    std::uint8_t checksum;
  };
  bytes ones(32, 0xFF);
  ones[31] = 0;
  const row rows[] = {
      // 0xC000 + 0x4000 + 0x0200 + 0x0212 + 0x0005 + 0x10 = 0x10427 -> 0x27 + 0x04 + 1 = 0x2C
      {"multicast header", with(32, {{0, 0xC0}, {2, 0x40}, {4, 0x02}, {8, 0x02}, {9, 0x12}, {23, 0x05}, {30, 0x10}}),
       0xD3},
      {"all ones", ones, 0x00},  // fifteen 0xFFFF and 0xFF = 0xF00F0 -> 0xF0 + 0x00 + 0xF = 0xFF
      // 3 x 0xFFFF + 0x0002 = 0x2FFFF -> 0xFF + 0xFF + 2 = 0x200 -> 0x00 + 2 = 2
      {"second fold carries", with(32, {{0, 0xFF}, {1, 0xFF}, {2, 0xFF}, {3, 0xFF}, {4, 0xFF}, {5, 0xFF}, {7, 0x02}}),
       0xFD},
      {"checksum byte left out", with(32, {{31, 0x77}}), 0xFF},
  };
  for (row r : rows) {
    SCOPED_TRACE(r.name);
    dc3_set_checksum(r.header.data());
    EXPECT_EQ(r.header[31], r.checksum);
  }
}

}  // namespace
