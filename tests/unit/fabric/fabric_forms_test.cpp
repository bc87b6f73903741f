// The request forms of a fabric send: v1 (header, payload, a pad read again
// from the packet's start), v2 with a second encapsulation piece, v3 without
// word 1; each frame leaves with its length and arrives on the NPU of its VQI.
#include <cstring>
#include <ostream>
#include <vector>

#include "dma_common.h"
#include "npu/zephra/xmit_fab.h"
#include "testkit/param_names.h"
#include "tests/unit/fabric/fabric_fixture.h"

namespace {

using namespace fabric_test;

constexpr std::uint32_t TUNNEL_BYTES = 8;  // the second encapsulation of v2
constexpr std::uint8_t TUNNEL_BYTE = 0x5C;
constexpr std::uint8_t STALE_BYTE = 0xEE;  // left behind the payload before the send

enum class form { v1, v2, v3 };

struct form_case {
  const char* what;
  form f;
  std::uint32_t payload_len;
  std::uint32_t lock_words;      // 1 with word 1, 0 without
  std::uint32_t pieces;          // count in the first piece
  std::uint32_t last_piece_len;  // v1: the pad; v2, v3: payload and its zeros
  std::uint32_t frame_len;
};
void PrintTo(const form_case& c, std::ostream* os) { *os << c.what; }

// The fabric header at pkt_start - 64; v2's tunnel bytes stand just ahead of
// the payload, apart from the header, as a separate piece.
void send_in_form(env_t env, form f, std::vector<std::uint32_t>& words) {
  std::uint8_t* payload = *ps_get_pkt_start(env);
  const std::uint32_t len = pkt_get_rx_packet_length(env);
  std::memset(payload + len, STALE_BYTE, 64);
  std::uint8_t* fab = payload - 2 * FAB_HDR_BYTES;
  write_unicast_header(fab);
  std::uint8_t* tunnel = payload - TUNNEL_BYTES;
  std::memset(tunnel, TUNNEL_BYTE, TUNNEL_BYTES);
  switch (f) {
    case form::v1:
      npu_xmit_pkt_fab_prep(env, fab, FAB_HDR_BYTES, payload, len, FLB_GATHER_REQ_LOC, FALSE);
      break;
    case form::v2:
      npu_xmit_pkt_fab_prep_v2(env, fab, FAB_HDR_BYTES, tunnel, TUNNEL_BYTES, payload, len, FLB_GATHER_REQ_LOC, FALSE);
      break;
    case form::v3:
      npu_xmit_pkt_fab_prep_v3(env, fab, FAB_HDR_BYTES, payload, len, FLB_GATHER_REQ_LOC, FALSE);
      break;
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
  EXPECT_EQ(c.lock_words ? words[1] : 0u, 0u);  // word 1: no flow lock
  EXPECT_EQ(words[1 + c.lock_words], (7u << 16) | GATHER_HANDLE_VALID);
  const std::uint32_t first_piece = 2 + c.lock_words;
  EXPECT_EQ(words[first_piece] >> 30, c.pieces);
  EXPECT_EQ((words[first_piece] >> 16) & 0x3FFF, FAB_HDR_BYTES);
  EXPECT_EQ((words[first_piece + c.pieces - 1] >> 16) & 0x3FFF, c.last_piece_len);

  ASSERT_EQ(o.sent.size(), 1u);
  const std::vector<std::uint8_t>& frame = o.sent[0].bytes;
  ASSERT_EQ(frame.size(), c.frame_len);
  EXPECT_EQ(o.sent[0].to, model::frame_destination::fabric);
  EXPECT_EQ(o.sent[0].port, DEST_VQI);
  EXPECT_EQ(dc3_nph_st::nph_type::get(header_of(frame)), NPH_TYPE_IPV4_UNI);
  EXPECT_EQ(dc3_nph_st::dc3_plen::get(header_of(frame)), c.frame_len - 28);
  // Header, the tunnel bytes of v2, the payload, then v1's pad from the
  // packet's start again or the others' zeros up to 64.
  const std::uint32_t tunnel = c.f == form::v2 ? TUNNEL_BYTES : 0;
  EXPECT_EQ(std::count(frame.begin() + FAB_HDR_BYTES, frame.begin() + FAB_HDR_BYTES + tunnel, TUNNEL_BYTE), tunnel);
  const auto payload = payload_of(c.payload_len);
  const auto payload_at = frame.begin() + FAB_HDR_BYTES + tunnel;
  EXPECT_TRUE(std::equal(payload.begin(), payload.end(), payload_at));
  if (c.f == form::v1) {
    EXPECT_TRUE(std::equal(payload_at + c.payload_len, frame.end(), payload.begin()));
  } else {
    EXPECT_TRUE(std::all_of(payload_at + c.payload_len, frame.end(), [](std::uint8_t b) { return b == 0; }));
  }

  const auto arrived = h.run(1);
  ASSERT_EQ(arrived.size(), 1u);
  const auto& dist = *reinterpret_cast<const dist_hdr_fabric_st*>(arrived[0].dist_hdr.data());
  EXPECT_EQ(dist_hdr_fabric_st::dst_format::get(dist), DST_FORMAT_FABRIC);
  EXPECT_EQ(dist_hdr_fabric_st::pktlen::get(dist), c.frame_len);
  EXPECT_EQ(testkit::take_probe_calls(), (testkit::probe_calls{testkit::ran_at_vector(testkit::TEST_VECTOR),
                                                               testkit::ran_at_nph_type(NPH_TYPE_IPV4_UNI)}));
}

INSTANTIATE_TEST_SUITE_P(Forms, FabricForms,
                         ::testing::Values(form_case{"v1 small padded from the start", form::v1, 20, 1, 3, 12, 64},
                                           form_case{"v1 large", form::v1, 100, 1, 2, 100, 132},
                                           form_case{"v2 small padded to 64", form::v2, 20, 1, 3, 24, 64},
                                           form_case{"v2 at 64 bytes takes no pad", form::v2, 24, 1, 3, 24, 64},
                                           form_case{"v2 large", form::v2, 100, 1, 3, 100, 140},
                                           form_case{"v3 small payload of no whole words", form::v3, 17, 0, 2, 32, 64},
                                           form_case{"v3 large", form::v3, 100, 0, 2, 100, 132}),
                         testkit::described<form_case>);

}  // namespace
