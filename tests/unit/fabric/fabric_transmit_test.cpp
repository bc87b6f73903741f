// Fabric sends across a chassis of two NPUs: a probe on NPU 0 writes a
// unicast header ahead of a line packet whose payload counts up from 0xA0,
// and sends it to DEST_VQI, which NPU 1 serves.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "ctrl/counters.h"
#include "dma_common.h"
#include "dplane/infra/drop.h"
#include "fab_hdr.h"
#include "npu/zephra/pkt_buf.h"
#include "npu/zephra/xmit_fab.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/fab_hdr_write.h"
#include "testkit/dispatch_probe.h"

namespace {

constexpr std::uint32_t FAB_HDR_BYTES = 32;
constexpr std::uint32_t DEST_VQI = 0x123;
constexpr std::uint32_t TUNNEL_BYTES = 8;  // v2's second encapsulation, of TUNNEL_BYTE
constexpr std::uint8_t TUNNEL_BYTE = 0x5C;
constexpr std::uint8_t STALE_BYTE = 0xEE;  // behind the payload, never sent
constexpr std::uint32_t GLB_CNT_TRACED_TO_FABRIC = 0x61;

std::vector<std::uint8_t> payload_of(std::uint32_t len) {
  std::vector<std::uint8_t> p(len);
  for (std::uint32_t i = 0; i < len; ++i) p[i] = static_cast<std::uint8_t>(0xA0 + i);
  return p;
}

// A cleared IPv4 unicast fabric header at fab, to DEST_VQI.
void write_unicast_header(std::uint8_t* fab) {
  std::memset(fab, 0, FAB_HDR_BYTES);
  dc3_nph_st::nph_type::set(fab_as<dc3_nph_st>(fab), NPH_TYPE_IPV4_UNI);
  plat_fab_hdr_write_vqi_voq(fab, DEST_VQI);
}

// The header just ahead of the packet and the request at the usual place.
std::uint8_t* prep_unicast(env_t env) {
  std::uint8_t* payload = *ps_get_pkt_start(env);
  std::uint8_t* fab = payload - FAB_HDR_BYTES;
  write_unicast_header(fab);
  npu_xmit_pkt_fab_prep(env, fab, FAB_HDR_BYTES, payload, pkt_get_rx_packet_length(env), FLB_GATHER_REQ_LOC, FALSE);
  return fab;
}

class FabricTransmit : public ::testing::Test {
 protected:
  FabricTransmit() { EXPECT_EQ(h.chassis_tables().map_vqi(DEST_VQI, 1), ctrl::error::none); }

  // Sends one line packet with a payload of len bytes through body on NPU 0.
  model::packet_outcome send_through(std::uint32_t len, std::function<void(env_t)> body) {
    testkit::probe_vector(h, testkit::TEST_VECTOR, std::move(body));
    h.send(testkit::line_packet(7).set<dist_hdr_line_st::pktlen>(len), payload_of(len));
    const auto out = h.run(0);
    EXPECT_EQ(out.size(), 1u);
    return out.empty() ? model::packet_outcome{} : out[0];
  }

  testkit::npu_harness h{2, 1};
};

// ---- the request forms: v1 (header, payload, a pad read again from the
// packet's start), v2 with a second encapsulation piece, v3 without word 1;
// small frames are padded to 64 bytes ----

enum class form { v1, v2, v3 };

struct form_case {
  form f;
  std::uint32_t payload_len;
  std::uint32_t frame_len;
};

// The header at pkt_start - 64; v2's tunnel bytes just ahead of the payload.
void send_in_form(env_t env, form f, std::vector<std::uint32_t>& words) {
  std::uint8_t* payload = *ps_get_pkt_start(env);
  const std::uint32_t len = pkt_get_rx_packet_length(env);
  std::memset(payload + len, STALE_BYTE, 64);
  std::uint8_t* fab = payload - 2 * FAB_HDR_BYTES;
  write_unicast_header(fab);
  std::uint8_t* tunnel = payload - TUNNEL_BYTES;
  std::memset(tunnel, TUNNEL_BYTE, TUNNEL_BYTES);
  if (f == form::v1) npu_xmit_pkt_fab_prep(env, fab, FAB_HDR_BYTES, payload, len, FLB_GATHER_REQ_LOC, FALSE);
  if (f == form::v2) {
    npu_xmit_pkt_fab_prep_v2(env, fab, FAB_HDR_BYTES, tunnel, TUNNEL_BYTES, payload, len, FLB_GATHER_REQ_LOC, FALSE);
  }
  if (f == form::v3) npu_xmit_pkt_fab_prep_v3(env, fab, FAB_HDR_BYTES, payload, len, FLB_GATHER_REQ_LOC, FALSE);
  const be_u32* req = dma_cell_words(env, FLB_GATHER_REQ_LOC);
  words.assign(req, req + 6);
  f == form::v2 ? npu_xmit_pkt_v2_fab(env, FLB_GATHER_REQ_LOC, FLB_GATHER_RESP_LOC) : npu_pkt_tx_request_ing(env);
}

TEST_F(FabricTransmit, EachFormSendsItsFrameToTheNpuOfItsVqi) {
  const form_case cases[] = {{form::v1, 20, 64},   {form::v1, 100, 132}, {form::v2, 20, 64},  {form::v2, 24, 64},
                             {form::v2, 100, 140}, {form::v3, 17, 64},   {form::v3, 100, 132}};
  for (const form_case& c : cases) {
    SCOPED_TRACE("form v" + std::to_string(static_cast<int>(c.f) + 1) + ", payload " + std::to_string(c.payload_len));
    std::vector<std::uint32_t> words;
    const auto o = send_through(c.payload_len, [&](env_t env) { send_in_form(env, c.f, words); });
    // Word 1, the flow lock, is v3's to leave out.
    const std::uint32_t lock_words = c.f == form::v3 ? 0 : 1;
    EXPECT_EQ(words[0], GATHER_CMD_INGRESS);
    EXPECT_EQ(lock_words ? words[1] : 0u, 0u);
    EXPECT_EQ(words[1 + lock_words], (7u << 16) | GATHER_HANDLE_VALID);

    ASSERT_EQ(o.sent.size(), 1u);
    const std::vector<std::uint8_t>& frame = o.sent[0].bytes;
    ASSERT_EQ(frame.size(), c.frame_len);
    EXPECT_EQ(o.sent[0].to, model::frame_destination::fabric);
    EXPECT_EQ(o.sent[0].port, DEST_VQI);
    EXPECT_EQ(dc3_nph_fields::nph_type::get_raw(frame.data()), NPH_TYPE_IPV4_UNI);
    EXPECT_EQ(dc3_nph_fields::dc3_plen::get_raw(frame.data()), c.frame_len - 28);
    // Behind the header: v2's tunnel bytes, the payload, then v1's pad from
    // the packet's start or the others' zeros up to 64.
    std::vector<std::uint8_t> tail(c.f == form::v2 ? TUNNEL_BYTES : 0, TUNNEL_BYTE);
    const auto payload = payload_of(c.payload_len);
    tail.insert(tail.end(), payload.begin(), payload.end());
    for (std::size_t i = 0; tail.size() < c.frame_len - FAB_HDR_BYTES; ++i)
      tail.push_back(c.f == form::v1 ? payload[i] : 0);
    EXPECT_EQ(std::vector<std::uint8_t>(frame.begin() + FAB_HDR_BYTES, frame.end()), tail);

    const auto arrived = h.run(1);
    ASSERT_EQ(arrived.size(), 1u);
    EXPECT_EQ(dist_hdr_fabric_st::pktlen::get_raw(arrived[0].dist_hdr.data()), c.frame_len);
  }
}

// ---- what else a send does ----

// A kept packet sends a copy and stays the handler's, which sends again.
// Only a traced send counts; the egress side counts its traced packets where
// they arrive.
TEST_F(FabricTransmit, AKeptPacketSendsCopiesAndATracedSendCountsOnce) {
  const auto o = send_through(100, [](env_t env) {
    common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
    common_flags_st::pkt_trace_on::set(*ps_put_mod_common_flags(env), 1);
    *ps_put_mod_next_flowlock_id(env) = 0x77;
    prep_unicast(env);
    npu_pkt_tx_request_ing(env);
    const be_u32* req = dma_cell_words(env, FLB_GATHER_REQ_LOC);
    EXPECT_EQ(req[1].get(), 0x77u);
    EXPECT_NE(req[2].get() & GATHER_KEEP, 0u);
    common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
    common_flags_st::pkt_trace_on::set(*ps_put_mod_common_flags(env), 0);
    prep_unicast(env);
    npu_pkt_tx_request_ing(env);
  });
  EXPECT_EQ(o.end, model::packet_end::sent);
  ASSERT_EQ(o.sent.size(), 2u);
  EXPECT_EQ(o.sent[0].bytes, o.sent[1].bytes);
  EXPECT_EQ(h.run(1).size(), 2u);
  EXPECT_EQ(std::count(o.global_counters.begin(), o.global_counters.end(), GLB_CNT_TRACED_TO_FABRIC), 1);
  EXPECT_EQ(h.tables(0).stats().global(GLB_CNT_TRACED_TO_FABRIC), 1u);
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

}  // namespace
