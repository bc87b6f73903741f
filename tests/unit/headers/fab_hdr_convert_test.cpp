// The compressed header and the dc3 form, both ways; the fixed-field and
// unicast writers; the backup of an L3 unicast header.
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "dist_hdr.h"
#include "dplane/infra/ps.h"
#include "header_bytes.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/fab_hdr_backup.h"
#include "platform/varn/fab_hdr_convert.h"
#include "platform/varn/fab_hdr_write.h"
#include "testkit/npu_harness.h"

namespace {

using namespace ht;

// A multicast compressed header: version 4, FGID 0x123, group 0x8005 with
// MGID bits 17 (di_extra) and 18 (mgid_b18), DE, class 3, hash 0x5A, type 2,
// length 18, and extension bytes that tell their place.
const bytes compressed_mc = {0x91, 0x23, 0x80, 0x05, 0xA3, 0x5A, 0x02, 0x52, 0x10, 0x11, 0x12, 0x13,
                             0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x20, 0x21, 0x22, 0x23, 0x24, 0x30};
// Its dc3 form for a 100-byte packet: dc3_plen 80.
const bytes dc3_mc = {0xC0, 0x00, 0x40, 0x14, 0x23, 0x0B, 0x00, 0x05, 0x02, 0x52, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15,
                      0x16, 0x17, 0x18, 0x19, 0x00, 0x00, 0x01, 0x23, 0x20, 0x21, 0x22, 0x23, 0x24, 0x5A, 0x30, 0x00};

TEST(FabHdrConvert, UnicastDestinationSetsSfpValidAndThePacketBehindStaysPut) {
  bytes buf(8, 0);
  buf.insert(buf.end(), compressed_mc.begin(), compressed_mc.end());
  buf.insert(buf.end(), {0xAB, 0xCD});
  buf[8] = 0x81;  // multicast_flag clear
  EXPECT_EQ(plat_fab_convert_compressed_location_to_dc3(nullptr, buf.data() + 8, 100), 8u);
  EXPECT_EQ(bytes(buf.begin() + 22, buf.begin() + 24), (bytes{0x11, 0x23}));  // sfp_valid and the FGID
  EXPECT_EQ(bytes(buf.begin() + 32, buf.end()), (bytes{0xAB, 0xCD}));
}

class FabHdrOnThread : public ::testing::Test {
 protected:
  testkit::npu_harness h;
  // A packet buffer region of the thread, from pkt_mem_start.
  std::uint8_t* pkt_mem(env_t env) { return *ps_get_pkt_mem_start(env); }
};

TEST_F(FabHdrOnThread, CompressedRoundTripAtPktStartMovesHeadAndLength) {
  h.on_thread([&](env_t env) {
    std::uint8_t* start = pkt_mem(env) + 160;
    std::memcpy(start, compressed_mc.data(), compressed_mc.size());
    *ps_put_mod_pkt_start(env) = start;
    *ps_put_mod_curr_pkt_len(env) = 100;
    plat_fab_convert_compressed_to_dc3(env);
    EXPECT_EQ(*ps_get_pkt_start(env), start - 8);
    EXPECT_EQ(*ps_get_curr_pkt_len(env), 108);
    EXPECT_EQ(bytes(start - 8, start + 24), dc3_mc);
    plat_fab_convert_dc3_to_compressed(env);
    EXPECT_EQ(*ps_get_pkt_start(env), start);
    EXPECT_EQ(*ps_get_curr_pkt_len(env), 100);
    EXPECT_EQ(bytes(start, start + 24), compressed_mc);
  });
}

TEST_F(FabHdrOnThread, Ipv4UnicastHeaderOfTheIngressPath) {
  h.on_thread([&](env_t env) {
    std::array<std::uint8_t, 32> fab;
    fab.fill(0xFF);
    *ps_put_mod_common_flags(env) = common_flags_st{};
    common_flags_st::pkt_trace_on::set(*ps_put_mod_common_flags(env), 1);  // ptrace, 8.1
    inject_flags_st::critical_inject::set(*ps_put_mod_inject_flags(env), 1);
    internal_qos_info_st& qos = *ps_put_mod_internal_qos_info(env);
    internal_qos_info_st::fab_cos::set(qos, 3);
    internal_qos_info_st::info16::set(qos, 0xA5C3);
    plat_fab_hdr_prep_to_write(env, fab.data());
    plat_fab_hdr_write_ipv4_uni_part_1(env, fab.data(), 0x0102, 0x11223344);
    plat_fab_hdr_write_qos_info(env, fab.data());
    EXPECT_EQ(bytes(fab.begin(), fab.end()),
              (bytes{0xC0, 0x00, 0x40, 0x00, 0x03, 0x00, 0x00, 0x00, 0x41, 0x8C, 0xC3, 0xA5, 0x02, 0x01, 0x00, 0x00,
                     0x11, 0x22, 0x33, 0x44, 0x00, 0x00, 0x10, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0xFF}));
    *ps_put_mod_internal_qos_info(env) = internal_qos_info_st{};
    plat_fab_hdr_init_internal_qos_egr(env, fab.data());
    EXPECT_EQ(internal_qos_info_st::fab_cos::get(*ps_get_internal_qos_info(env)), 3u);
    EXPECT_EQ(internal_qos_info_st::info16::get(*ps_get_internal_qos_info(env)), 0xA5C3u);
    inject_flags_st::critical_inject::set(*ps_put_mod_inject_flags(env), 0);
    *ps_put_mod_common_flags(env) = common_flags_st{};
  });
}

TEST_F(FabHdrOnThread, UnicastBackupRebuildsTheHeaderAheadOfTheL3Header) {
  struct row {
    std::uint32_t type;
    std::uint32_t l3_type;
    std::uint8_t byte12, byte13, byte15;
  };
  const row rows[] = {
      {NPH_TYPE_IPV4_UNI, bufhdr_l3_type_ipv4_e, 0x0B, 0x0A, 0x00},
      {NPH_TYPE_MPLS_UNI, bufhdr_l3_type_mpls_e, 0x00, 0x00, 0x06},
      {NPH_TYPE_L2_UNI, bufhdr_l3_type_other_e, 0x0B, 0x0A, 0x00},
  };
  h.on_thread([&](env_t env) {
    *ps_put_mod_common_flags(env) = common_flags_st{};
    *ps_put_mod_inject_flags(env) = inject_flags_st{};
    internal_qos_info_st::fab_cos::set(*ps_put_mod_internal_qos_info(env), 1);
    for (const row& r : rows) {
      SCOPED_TRACE(r.type);
      std::array<std::uint8_t, 32> fab{};
      fab[8] = static_cast<std::uint8_t>(r.type);
      fab[15] = r.byte15;
      if (r.type != NPH_TYPE_MPLS_UNI) plat_set_fab_hdr_ipv4_uni_vrf_id(fab.data(), 0x0A0B);
      plat_set_fab_hdr_ipv4_uni_input_if_handle(fab.data(), 0x01020304);
      fab[28] = 0x05;
      fab[30] = 0x3F;
      l3_ucst_nph_bkup_st bkup{};
      plat_store_l3_ucast_nph(fab.data(), &bkup);
      std::uint8_t* l3 = pkt_mem(env) + 160;
      EXPECT_EQ(plat_restore_l3_ucast_nph(env, &bkup, l3), r.l3_type);
      EXPECT_EQ(*ps_get_pkt_start(env), l3 - 32);
      EXPECT_EQ(bytes(l3 - 32, l3),
                (bytes{0xC0, 0x00, 0x40, 0x00,     0x01,     0x00, 0x00,     0x00, static_cast<std::uint8_t>(r.type),
                       0x0C, 0x00, 0x00, r.byte12, r.byte13, 0x00, r.byte15, 0x01, 0x02,
                       0x03, 0x04, 0x00, 0x00,     0x10,     0x00, 0x00,     0x00, 0x00,
                       0x00, 0x05, 0x00, 0x3F,     0x00}));
    }
  });
}

}  // namespace
