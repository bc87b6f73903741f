// The other request forms of a fabric send: v2 with a second encapsulation
// piece, v3 without word 1, both padding a small frame with zero words
// behind the payload; and the count of traced packets sent to the fabric.
#include <cstring>
#include <ostream>
#include <vector>

#include "ctrl/counters.h"
#include "dma_common.h"
#include "npu/zephra/xmit_fab.h"
#include "testkit/param_names.h"
#include "tests/unit/fabric/fabric_fixture.h"

namespace {

using namespace fabric_test;

constexpr std::uint32_t TUNNEL_BYTES = 8;  // the second encapsulation of v2
constexpr std::uint8_t TUNNEL_BYTE = 0x5C;
constexpr std::uint8_t STALE_BYTE = 0xEE;  // left behind the payload before the send
constexpr std::uint32_t GLB_CNT_TRACED_TO_FABRIC = 0x61;

enum class form { v2, v3 };

struct form_case {
  const char* what;
  form f;
  std::uint32_t payload_len;
  std::uint32_t lock_words;         // 1 with word 1, 0 without
  std::uint32_t pieces;             // count in the first piece
  std::uint32_t payload_piece_len;  // the last piece: payload and its pad
  std::uint32_t frame_len;
};
void PrintTo(const form_case& c, std::ostream* os) { *os << c.what; }

// The fabric header at pkt_start - 32; v2's tunnel bytes stand 40 bytes
// ahead of the payload, apart from the header, as a separate piece.
void send_in_form(env_t env, form f, std::vector<std::uint32_t>& words) {
  std::uint8_t* payload = *ps_get_pkt_start(env);
  const std::uint32_t payload_len = pkt_get_rx_packet_length(env);
  std::memset(payload + payload_len, STALE_BYTE, 64);
  std::uint8_t* fab = payload - 2 * FAB_HDR_BYTES;
  write_unicast_header(fab);
  if (f == form::v2) {
    std::uint8_t* tunnel = payload - TUNNEL_BYTES;
    std::memset(tunnel, TUNNEL_BYTE, TUNNEL_BYTES);
    npu_xmit_pkt_fab_prep_v2(env, fab, FAB_HDR_BYTES, tunnel, TUNNEL_BYTES, payload, payload_len, FLB_GATHER_REQ_LOC,
                             FALSE);
  } else {
    npu_xmit_pkt_fab_prep_v3(env, fab, FAB_HDR_BYTES, payload, payload_len, FLB_GATHER_REQ_LOC, FALSE);
  }
  const be_u32* req = dma_cell_words(env, FLB_GATHER_REQ_LOC);
  words.assign(req, req + 6);
  if (f == form::v2) {
    npu_xmit_pkt_v2_fab(env, FLB_GATHER_REQ_LOC, FLB_GATHER_RESP_LOC);
  } else {
    npu_pkt_tx_request_ing(env);
  }
}

class FabricForms : public FabricFixture, public ::testing::WithParamInterface<form_case> {};

TEST_P(FabricForms, RequestFrameAndArrival) {
  const form_case& c = GetParam();
  std::vector<std::uint32_t> words;
  testkit::probe_nph_type(h, NPH_TYPE_IPV4_UNI);
  const auto o = send_through(c.payload_len, [&](env_t env) { send_in_form(env, c.f, words); });
  ASSERT_EQ(words.size(), 6u);
  EXPECT_EQ(words[0], GATHER_CMD_INGRESS);
  if (c.lock_words) {
    EXPECT_EQ(words[1], 0u);
  }
  EXPECT_EQ(words[1 + c.lock_words], (7u << 16) | GATHER_HANDLE_VALID);
  const std::uint32_t first_piece = 2 + c.lock_words;
  EXPECT_EQ(words[first_piece] >> 30, c.pieces);
  EXPECT_EQ((words[first_piece + c.pieces - 1] >> 16) & 0x3FFF, c.payload_piece_len);

  ASSERT_EQ(o.sent.size(), 1u);
  const std::vector<std::uint8_t>& frame = o.sent[0].bytes;
  ASSERT_EQ(frame.size(), c.frame_len);
  EXPECT_EQ(o.sent[0].port, DEST_VQI);
  EXPECT_EQ(dc3_nph_st::dc3_plen::get(header_of(frame)), c.frame_len - 28);
  // Header, then the tunnel bytes of v2, the payload, and zeros up to 64.
  const std::uint32_t tunnel = c.f == form::v2 ? TUNNEL_BYTES : 0;
  EXPECT_EQ(std::count(frame.begin() + FAB_HDR_BYTES, frame.begin() + FAB_HDR_BYTES + tunnel, TUNNEL_BYTE), tunnel);
  const auto payload = payload_of(c.payload_len);
  const auto payload_at = frame.begin() + FAB_HDR_BYTES + tunnel;
  EXPECT_TRUE(std::equal(payload.begin(), payload.end(), payload_at));
  EXPECT_TRUE(std::all_of(payload_at + c.payload_len, frame.end(), [](std::uint8_t b) { return b == 0; }));

  const auto arrived = h.run(1);
  ASSERT_EQ(arrived.size(), 1u);
  EXPECT_EQ(testkit::take_probe_calls(), (testkit::probe_calls{testkit::ran_at_vector(testkit::TEST_VECTOR),
                                                               testkit::ran_at_nph_type(NPH_TYPE_IPV4_UNI)}));
}

INSTANTIATE_TEST_SUITE_P(Forms, FabricForms,
                         ::testing::Values(form_case{"v2 small padded to 64", form::v2, 20, 1, 3, 24, 64},
                                           form_case{"v2 at 64 bytes takes no pad", form::v2, 24, 1, 3, 24, 64},
                                           form_case{"v2 large", form::v2, 100, 1, 3, 100, 140},
                                           form_case{"v3 small padded to 64", form::v3, 20, 0, 2, 32, 64},
                                           form_case{"v3 small payload of no whole words", form::v3, 17, 0, 2, 32, 64},
                                           form_case{"v3 large", form::v3, 100, 0, 2, 100, 132}),
                         testkit::described<form_case>);

// Only a traced packet on the ingress side counts; the egress side's traced
// packets are counted where they arrive.
TEST_F(FabricFixture, TracedIngressSendCountsOnce) {
  for (const bool traced : {false, true}) {
    const auto o = send_through(100, [&](env_t env) {
      common_flags_st::pkt_trace_on::set(*ps_put_mod_common_flags(env), traced ? 1 : 0);
      std::uint8_t* payload = *ps_get_pkt_start(env);
      write_unicast_header(payload - FAB_HDR_BYTES);
      npu_xmit_pkt_fab_prep(env, payload - FAB_HDR_BYTES, FAB_HDR_BYTES, payload, 100, FLB_GATHER_REQ_LOC, FALSE);
      npu_pkt_tx_request_ing(env);
    });
    const auto counted = std::count(o.global_counters.begin(), o.global_counters.end(), GLB_CNT_TRACED_TO_FABRIC);
    EXPECT_EQ(counted, traced ? 1 : 0) << (traced ? "traced" : "not traced");
  }
  EXPECT_EQ(h.tables(0).stats().global(GLB_CNT_TRACED_TO_FABRIC), 1u);
}

}  // namespace
