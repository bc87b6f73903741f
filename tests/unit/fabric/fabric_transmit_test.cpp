// What else a fabric send does on a chassis of two NPUs: a send without a
// header, a send that keeps the packet, the multicast header's checksum, a
// VQI that no NPU serves, and the count of traced packets sent.
#include <vector>

#include "ctrl/counters.h"
#include "dma_common.h"
#include "dplane/infra/drop.h"
#include "npu/zephra/pkt_buf.h"
#include "npu/zephra/xmit_fab.h"
#include "platform/varn/fab_hdr_access.h"
#include "tests/unit/fabric/fabric_fixture.h"

namespace {

using namespace fabric_test;

constexpr std::uint32_t GLB_CNT_TRACED_TO_FABRIC = 0x61;

// Writes a unicast IPv4 fabric header ahead of the packet, prepares the
// request at the usual place and returns the header.
std::uint8_t* prep_unicast(env_t env, boolean_t multicast_hdr = FALSE) {
  std::uint8_t* payload = *ps_get_pkt_start(env);
  std::uint8_t* fab = payload - FAB_HDR_BYTES;
  write_unicast_header(fab);
  if (multicast_hdr) plat_fab_hdr_write_fgid_common(fab, 0x45);
  npu_xmit_pkt_fab_prep(env, fab, FAB_HDR_BYTES, payload, pkt_get_rx_packet_length(env), FLB_GATHER_REQ_LOC, FALSE);
  return fab;
}

using FabricTransmit = FabricFixture;

TEST_F(FabricTransmit, NullHeaderSendsThePayloadAloneAndLeavesNoHeaderAddress) {
  std::uint32_t pieces = 0;
  std::uint8_t* kept_encap = reinterpret_cast<std::uint8_t*>(1);
  const auto o = send_through(100, [&](env_t env) {
    npu_xmit_pkt_fab_prep(env, nullptr, 0, *ps_get_pkt_start(env), 100, FLB_GATHER_REQ_LOC, FALSE);
    pieces = dma_cell_words(env, FLB_GATHER_REQ_LOC)[3] >> 30;
    kept_encap = *ps_get_xmit_fab_encap_start(env);
    drop_packet_no_counter(env);
  });
  EXPECT_EQ(pieces, 1u);
  EXPECT_EQ(kept_encap, nullptr);
  EXPECT_EQ(o.end, model::packet_end::freed);
}

TEST_F(FabricTransmit, KeepSendLeavesACopyAndKeepsThePacket) {
  const auto o = send_through(100, [](env_t env) {
    common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
    *ps_put_mod_next_flowlock_id(env) = 0x77;
    prep_unicast(env);
    npu_pkt_tx_request_ing(env);
    const be_u32* req = dma_cell_words(env, FLB_GATHER_REQ_LOC);
    EXPECT_EQ(req[1].get(), 0x77u);
    EXPECT_NE(req[2].get() & GATHER_KEEP, 0u);
    // Still ours: a second copy, then the end.
    common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
    prep_unicast(env);
    npu_pkt_tx_request_ing(env);
  });
  EXPECT_EQ(o.end, model::packet_end::sent);
  ASSERT_EQ(o.sent.size(), 2u);
  EXPECT_EQ(o.sent[0].bytes, o.sent[1].bytes);
  EXPECT_EQ(h.run(1).size(), 2u);
}

TEST_F(FabricTransmit, MulticastHeaderGetsItsChecksumAndUnicastDoesNot) {
  std::uint32_t sums[2] = {0xFFFF, 0};
  send_through(100, [&](env_t env) {
    for (const boolean_t multicast : {FALSE, TRUE}) {
      std::uint8_t* fab = prep_unicast(env, multicast);
      plat_final_fab_prep2(env);
      sums[multicast] = dc3_nph_st::dc3_checksum::get(fab_as<dc3_nph_st>(fab));
    }
    drop_packet_no_counter(env);
  });
  EXPECT_EQ(sums[FALSE], 0u);
  EXPECT_NE(sums[TRUE], 0u);
}

TEST_F(FabricTransmit, UnmappedVqiLeavesTheFrameOnTheSenderWithANote) {
  EXPECT_EQ(h.chassis_tables().map_vqi(2048, 1), ctrl::error::out_of_range);
  EXPECT_EQ(h.chassis_tables().map_vqi(5, 2), ctrl::error::out_of_range);
  const auto o = send_through(100, [](env_t env) {
    plat_fab_hdr_write_vqi_voq(prep_unicast(env), 0x200);
    npu_pkt_tx_request_ing(env);
  });
  ASSERT_EQ(o.sent.size(), 1u);
  EXPECT_EQ(o.sent[0].port, 0x200u);
  EXPECT_NE(o.note.find("VQI 512 maps to no NPU"), std::string::npos) << o.note;
  EXPECT_TRUE(h.run(1).empty());
}

// Only a traced packet on the ingress side counts; the egress side's traced
// packets are counted where they arrive.
TEST_F(FabricTransmit, TracedIngressSendCountsOnce) {
  for (const bool traced : {false, true}) {
    const auto o = send_through(100, [&](env_t env) {
      common_flags_st::pkt_trace_on::set(*ps_put_mod_common_flags(env), traced ? 1 : 0);
      prep_unicast(env);
      npu_pkt_tx_request_ing(env);
    });
    const auto counted = std::count(o.global_counters.begin(), o.global_counters.end(), GLB_CNT_TRACED_TO_FABRIC);
    EXPECT_EQ(counted, traced ? 1 : 0) << (traced ? "traced" : "not traced");
  }
  EXPECT_EQ(h.tables(0).stats().global(GLB_CNT_TRACED_TO_FABRIC), 1u);
}

}  // namespace
