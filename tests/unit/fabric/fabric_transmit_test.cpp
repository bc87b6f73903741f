// Fabric transmit across a chassis of two NPUs: a test handler on NPU 0
// writes a fabric header ahead of its packet and sends it; the frame must
// leave with the pieces and header the gather list gives and arrive on the
// NPU that serves its VQI, where the egress dispatch runs on it.
#include <vector>

#include "dma_common.h"
#include "dplane/infra/drop.h"
#include "npu/zephra/pkt_buf.h"
#include "npu/zephra/xmit_fab.h"
#include "platform/varn/fab_hdr_access.h"
#include "tests/unit/fabric/fabric_fixture.h"

namespace {

using namespace fabric_test;

struct sent_record {
  std::vector<std::uint32_t> gather;  // words 0..5 of the request
  std::uint8_t* fab = nullptr;
};

// Writes a unicast IPv4 fabric header ahead of the packet and prepares the
// request at the usual place.
void prep_unicast(env_t env, sent_record& rec, boolean_t multicast_hdr = FALSE) {
  std::uint8_t* payload = *ps_get_pkt_start(env);
  std::uint8_t* fab = payload - FAB_HDR_BYTES;
  write_unicast_header(fab);
  if (multicast_hdr) plat_fab_hdr_write_fgid_common(fab, 0x45);
  npu_xmit_pkt_fab_prep(env, fab, FAB_HDR_BYTES, payload, pkt_get_rx_packet_length(env), FLB_GATHER_REQ_LOC, FALSE);
  const be_u32* req = dma_cell_words(env, FLB_GATHER_REQ_LOC);
  rec.gather.assign(req, req + 6);
  rec.fab = fab;
}

using FabricTransmit = FabricFixture;

TEST_F(FabricTransmit, SmallFrameTakesThreePiecesAndPlen36) {
  sent_record rec;
  const auto o = send_through(20, [&](env_t env) {
    prep_unicast(env, rec);
    npu_pkt_tx_request_ing(env);
  });
  ASSERT_EQ(rec.gather.size(), 6u);
  EXPECT_EQ(rec.gather[0], GATHER_CMD_INGRESS);
  EXPECT_EQ(rec.gather[1], 0u);
  EXPECT_EQ(rec.gather[2], (7u << 16) | 1u);
  EXPECT_EQ(rec.gather[3] >> 30, 3u);
  EXPECT_EQ((rec.gather[3] >> 16) & 0x3FFF, FAB_HDR_BYTES);
  EXPECT_EQ((rec.gather[4] >> 16) & 0x3FFF, 20u);
  EXPECT_EQ((rec.gather[5] >> 16) & 0x3FFF, 12u);
  EXPECT_EQ(o.end, model::packet_end::sent);
  ASSERT_EQ(o.sent.size(), 1u);
  const auto& frame = o.sent[0];
  EXPECT_EQ(frame.to, model::frame_destination::fabric);
  EXPECT_EQ(frame.port, DEST_VQI);
  ASSERT_EQ(frame.bytes.size(), 64u);
  const auto& hdr = *reinterpret_cast<const dc3_nph_st*>(frame.bytes.data());
  EXPECT_EQ(dc3_nph_st::dc3_plen::get(hdr), 36u);
  EXPECT_EQ(dc3_nph_st::nph_type::get(hdr), NPH_TYPE_IPV4_UNI);
  const auto payload = payload_of(20);
  EXPECT_TRUE(std::equal(payload.begin(), payload.end(), frame.bytes.begin() + FAB_HDR_BYTES));
  // The pad is read from pkt_start again.
  EXPECT_TRUE(std::equal(payload.begin(), payload.begin() + 12, frame.bytes.begin() + 52));
}

TEST_F(FabricTransmit, FrameArrivesOnTheNpuOfItsVqiWithAFabricDistributionHeader) {
  testkit::probe_nph_type(h, NPH_TYPE_IPV4_UNI);
  send_through(20, [](env_t env) {
    sent_record rec;
    prep_unicast(env, rec);
    npu_pkt_tx_request_ing(env);
  });
  const auto out = h.run(1);
  ASSERT_EQ(out.size(), 1u);
  const auto& hdr = *reinterpret_cast<const dist_hdr_fabric_st*>(out[0].dist_hdr.data());
  EXPECT_EQ(dist_hdr_fabric_st::dst_format::get(hdr), DST_FORMAT_FABRIC);
  EXPECT_EQ(dist_hdr_fabric_st::pktlen::get(hdr), 64u);
  // The egress dispatch ran on the header type: IPv4 unicast egress.
  EXPECT_EQ(testkit::take_probe_calls(), (testkit::probe_calls{testkit::ran_at_vector(testkit::TEST_VECTOR),
                                                               testkit::ran_at_nph_type(NPH_TYPE_IPV4_UNI)}));
}

TEST_F(FabricTransmit, LargeFrameTakesTwoPiecesAndItsOwnLength) {
  sent_record rec;
  const auto o = send_through(100, [&](env_t env) {
    prep_unicast(env, rec);
    npu_pkt_tx_request_ing(env);
  });
  EXPECT_EQ(rec.gather[3] >> 30, 2u);
  ASSERT_EQ(o.sent.size(), 1u);
  ASSERT_EQ(o.sent[0].bytes.size(), 132u);
  const auto& hdr = *reinterpret_cast<const dc3_nph_st*>(o.sent[0].bytes.data());
  EXPECT_EQ(dc3_nph_st::dc3_plen::get(hdr), 132u - 28u);
}

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
    sent_record rec;
    common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
    *ps_put_mod_next_flowlock_id(env) = 0x77;
    prep_unicast(env, rec);
    npu_pkt_tx_request_ing(env);
    const be_u32* req = dma_cell_words(env, FLB_GATHER_REQ_LOC);
    EXPECT_EQ(req[1].get(), 0x77u);
    EXPECT_NE(req[2].get() & GATHER_KEEP, 0u);
    // Still ours: a second copy, then the end.
    common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
    prep_unicast(env, rec);
    npu_pkt_tx_request_ing(env);
  });
  EXPECT_EQ(o.end, model::packet_end::sent);
  ASSERT_EQ(o.sent.size(), 2u);
  EXPECT_EQ(o.sent[0].bytes, o.sent[1].bytes);
  EXPECT_EQ(h.run(1).size(), 2u);
}

TEST_F(FabricTransmit, MulticastHeaderGetsItsChecksumAndUnicastDoesNot) {
  std::uint32_t uni_sum = 0xFFFF;
  std::uint32_t multi_sum = 0;
  auto checksum_after_prep2 = [](env_t env, boolean_t multicast, std::uint32_t* out) {
    sent_record rec;
    prep_unicast(env, rec, multicast);
    plat_final_fab_prep2(env);
    *out = dc3_nph_st::dc3_checksum::get(fab_as<dc3_nph_st>(rec.fab));
  };
  send_through(100, [&](env_t env) {
    checksum_after_prep2(env, FALSE, &uni_sum);
    checksum_after_prep2(env, TRUE, &multi_sum);
    drop_packet_no_counter(env);
  });
  EXPECT_EQ(uni_sum, 0u);
  EXPECT_NE(multi_sum, 0u);
}

TEST_F(FabricTransmit, UnmappedVqiLeavesTheFrameOnTheSenderWithANote) {
  EXPECT_EQ(h.chassis_tables().map_vqi(2048, 1), ctrl::error::out_of_range);
  EXPECT_EQ(h.chassis_tables().map_vqi(5, 2), ctrl::error::out_of_range);
  const auto o = send_through(100, [](env_t env) {
    sent_record rec;
    prep_unicast(env, rec);
    plat_fab_hdr_write_vqi_voq(rec.fab, 0x200);
    npu_pkt_tx_request_ing(env);
  });
  ASSERT_EQ(o.sent.size(), 1u);
  EXPECT_EQ(o.sent[0].port, 0x200u);
  EXPECT_NE(o.note.find("VQI 512 maps to no NPU"), std::string::npos) << o.note;
  EXPECT_TRUE(h.run(1).empty());
}

}  // namespace
