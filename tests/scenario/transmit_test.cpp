// Sends across a chassis of four NPUs, with the fabric's and the traffic
// manager's maps written through the control side: a multicast frame from a
// line port of NPU 0 arrives on every NPU of its group; a frame to a line
// port leaves as an Ethernet frame that an independent dissector reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "ctrl/line_queues.h"
#include "dma_common.h"
#include "fab_hdr.h"
#include "line_hdr.h"
#include "npu/zephra/pkt_buf.h"
#include "npu/zephra/pkt_rx.h"
#include "npu/zephra/xmit_fab.h"
#include "pktlib/pcap_file.h"
#include "platform/varn/fab_hdr_write.h"
#include "testkit/dispatch_probe.h"
#include "testkit/fabric_path.h"
#include "testkit/line_card.h"
#include "testkit/tshark.h"
#include "unit/pktlib/scratch_dir.h"

namespace {

using namespace testkit;

constexpr std::uint32_t NPUS = 4;
constexpr std::uint32_t IN_PORT = 1;
constexpr std::uint32_t VQI = 0x2A7;
constexpr std::uint32_t VQI_NPU = 1;
// Two fabric groups that differ only in the FGID bits of ext_fgid.
constexpr std::uint32_t FGID = 0xA5B123;
constexpr std::uint32_t FGID_LOW = FGID & 0xFFF;
const std::vector<std::uint32_t> FGID_NPUS = {1, 3};
const std::vector<std::uint32_t> FGID_LOW_NPUS = {2};
constexpr std::uint32_t MGID = 0x5A5A5;
constexpr std::uint32_t OUT_QUEUE = 0x1234;
constexpr std::uint32_t OUT_PORT = 9;      // where OUT_QUEUE leads
constexpr std::uint32_t QSM_NP_PORT = 17;  // the NPU port of a send from the ingress buffer
constexpr std::uint32_t FAB_HDR_BYTES_MC = nph_length_bytes(NPH_LENGTH_44);
constexpr std::uint32_t IF_HANDLE = 0x101;
constexpr std::uint32_t LINE_GATHER_REQ_LOC = 0x40;
const pkt::mac_addr NEXT_HOP_MAC = {0x02, 0x00, 0x00, 0x00, 0x00, 0x42};

class Transmit : public ::testing::Test {
 protected:
  Transmit() {
    lc.add_port(IN_PORT);
    EXPECT_EQ(lc.ifs().add_physical_port(IN_PORT, line_card::routed(IF_HANDLE, true, false, false)).err,
              ctrl::error::none);
    EXPECT_EQ(lc.harness().chassis_tables().map_vqi(VQI, VQI_NPU), ctrl::error::none);
    EXPECT_EQ(lc.harness().chassis_tables().map_fabric_group(FGID_LOW, FGID_LOW_NPUS), ctrl::error::none);
    EXPECT_EQ(lc.harness().tables(VQI_NPU).queues().map(OUT_QUEUE, OUT_PORT), ctrl::error::none);
  }

  // A UDP frame from IN_PORT, through the parser to the IPv4 fast path,
  // whose place `ingress` takes.
  model::packet_outcome receive(std::function<void(env_t)> ingress) {
    probe_vector(lc.harness(), TEST_VECTOR, std::move(ingress));
    return lc.receive(IN_PORT, udp_frame(8));
  }

  line_card lc{NPUS};
};

// The ingress side's unicast send of the L3 packet to VQI.
void send_to_vqi(env_t env) {
  std::uint8_t* fab = write_ipv4_uni_header(env, IF_HANDLE);
  plat_fab_hdr_write_vqi_voq(fab, VQI);
  prep_uni_send(env, fab, l3_len(env));
  npu_pkt_tx_request_ing(env);
}

// The ingress side's multicast send, with an IPv4 multicast header.
void send_to_group(env_t env, std::uint32_t fgid) {
  std::uint8_t* fab = l3_start(env) - FAB_HDR_BYTES_MC;
  plat_fab_hdr_prep_to_write(env, fab);
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_IPV4_MC, NPH_LENGTH_44);
  plat_fab_hdr_write_mgid_common(fab, MGID);
  plat_fab_hdr_write_fgid_common(fab, fgid);
  npu_xmit_pkt_fab_prep(env, fab, FAB_HDR_BYTES_MC, l3_start(env), l3_len(env), FLB_GATHER_REQ_LOC, TRUE);
  npu_pkt_tx_request_ing(env);
}

// A send to a line port: the headers ahead of the frame as one piece, the
// L3 packet as the other. From the ingress buffer the request says so, and
// the headers start with the QSM header.
void send_to_line(env_t env, std::uint8_t* headers, std::uint32_t headers_len, bool in_ingress_buffer) {
  be_u32* req = dma_cell_words(env, LINE_GATHER_REQ_LOC);
  req[0] = in_ingress_buffer ? 0x00000F13 : 0x00000F12;
  req[1] = 0;
  req[2] = (pkt_rx_gpm_pkt_handle(env) << 16) | 0x0001 | (in_ingress_buffer ? 0x40000000 : 0);
  req[3] = npu_gather_piece(env, 2, headers_len, headers);
  req[4] = npu_gather_piece(env, 0, l3_len(env), l3_start(env));
  dma_flush_initiate_and_wait(env, FLB_SEND_CMD | (LINE_GATHER_REQ_LOC / 16) | ((FLB_GATHER_RESP_LOC / 16) << 12));
}

// The line header for `queue` and the Ethernet header to the next hop, in
// the 28 bytes ahead of the L3 packet.
std::uint8_t* write_line_and_ethernet(env_t env, std::uint32_t queue) {
  std::uint8_t* line = l3_start(env) - ETH_BYTES - LINE_HDR_BYTES;
  std::memset(line, 0, LINE_HDR_BYTES);
  auto& hdr = *reinterpret_cast<line_hdr_st*>(line);
  line_hdr_st::queue_id::set(hdr, queue);
  line_hdr_st::stored_length::set(hdr, l3_len(env) + ETH_BYTES + LINE_HDR_BYTES);
  std::uint8_t* eth = line + LINE_HDR_BYTES;
  std::copy(NEXT_HOP_MAC.begin(), NEXT_HOP_MAC.end(), eth);
  std::copy(ROUTER_MAC.begin(), ROUTER_MAC.end(), eth + 6);
  eth[12] = 0x08;
  eth[13] = 0x00;
  return line;
}

// The egress side takes the fabric header's 32 bytes as room for the line
// and Ethernet headers, and sends to queue.
void send_to_queue(env_t env, std::uint32_t queue) {
  *ps_put_mod_pkt_start(env) += FAB_HDR_BYTES_UNI - ETH_BYTES;
  *ps_put_mod_curr_pkt_len(env) -= FAB_HDR_BYTES_UNI - ETH_BYTES;
  send_to_line(env, write_line_and_ethernet(env, queue), LINE_HDR_BYTES + ETH_BYTES, false);
}

TEST_F(Transmit, MulticastFrameReachesEveryNpuOfItsGroupAsLastMappedAndNoOther) {
  const model::packet_outcome unmapped = receive([](env_t env) { send_to_group(env, FGID + 1); });
  EXPECT_NE(unmapped.note.find("fabric group " + std::to_string(FGID + 1) + " maps to no NPU"), std::string::npos)
      << unmapped.note;

  // The map's writer replaces a group's NPUs, and its refusals change nothing.
  ctrl::chassis_tables& chassis = lc.harness().chassis_tables();
  ASSERT_EQ(chassis.map_fabric_group(FGID, {0}), ctrl::error::none);
  ASSERT_EQ(chassis.map_fabric_group(FGID, FGID_NPUS), ctrl::error::none);
  EXPECT_EQ(chassis.map_fabric_group(0xFFFFFF, {1}), ctrl::error::none);  // the highest group
  EXPECT_EQ(chassis.map_fabric_group(0x1000000, {1}), ctrl::error::out_of_range);
  EXPECT_EQ(chassis.map_fabric_group(FGID, {1, NPUS}), ctrl::error::out_of_range);
  EXPECT_EQ(chassis.map_fabric_group(FGID, {}), ctrl::error::bad_size);
  EXPECT_EQ(chassis.map_fabric_group(FGID, {1, 2, 1}), ctrl::error::exists);

  probe_nph_type(lc.harness(), NPH_TYPE_IPV4_MC);
  const model::packet_outcome o = receive([](env_t env) { send_to_group(env, FGID); });
  ASSERT_EQ(o.sent.size(), 1u);
  EXPECT_EQ(o.sent[0].port, FGID);
  EXPECT_EQ(o.note, "");
  for (std::uint32_t n = 0; n < NPUS; ++n) {
    const bool member = std::count(FGID_NPUS.begin(), FGID_NPUS.end(), n) != 0;
    const std::vector<model::packet_outcome> arrived = lc.harness().run(n);
    ASSERT_EQ(arrived.size(), member ? 1u : 0u) << "NPU " << n;
    for (const model::packet_outcome& a : arrived) EXPECT_EQ(dist_hdr_fabric_st::mcast::get_raw(a.dist_hdr.data()), 1u);
  }
  // Each member's copy ran the egress row of IPv4 multicast.
  const probe_calls calls = take_probe_calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), ran_at_nph_type(NPH_TYPE_IPV4_MC)),
            static_cast<std::ptrdiff_t>(FGID_NPUS.size()));
}

// Both line sends leave the same Ethernet frame to the next hop: from the
// ingress buffer by the QSM header's port, from the egress buffer by the
// port of its queue, once the queue is mapped. tshark reads the frame.
TEST_F(Transmit, LineSendsLeaveByTheQsmHeadersPortOrTheirQueuesPort) {
  const model::packet_outcome from_ingress = receive([](env_t env) {
    std::uint8_t* qsm = write_line_and_ethernet(env, OUT_QUEUE + 1) - 2;
    qsm[0] = 2;
    qsm[1] = QSM_NP_PORT;
    send_to_line(env, qsm, 2 + LINE_HDR_BYTES + ETH_BYTES, true);
  });
  EXPECT_EQ(from_ingress.end, model::packet_end::sent);

  EXPECT_EQ(lc.harness().tables(VQI_NPU).queues().map(0x10000, OUT_PORT), ctrl::error::out_of_range);
  EXPECT_EQ(lc.harness().tables(VQI_NPU).queues().map(OUT_QUEUE, 0x1000), ctrl::error::out_of_range);
  std::uint32_t queue = OUT_QUEUE + 1;  // not mapped
  probe_nph_type(lc.harness(), NPH_TYPE_IPV4_UNI, [&](env_t env) { send_to_queue(env, queue); });
  receive(send_to_vqi);
  queue = OUT_QUEUE;
  receive(send_to_vqi);
  const std::vector<model::packet_outcome> egress = lc.harness().run(VQI_NPU);
  ASSERT_EQ(egress.size(), 2u);
  EXPECT_TRUE(egress[0].sent.empty());
  EXPECT_NE(egress[0].note.find("queue " + std::to_string(OUT_QUEUE + 1) + " maps to no line port"), std::string::npos)
      << egress[0].note;

  std::vector<std::uint8_t> frame = udp_frame(8);
  std::copy(NEXT_HOP_MAC.begin(), NEXT_HOP_MAC.end(), frame.begin());
  std::copy(ROUTER_MAC.begin(), ROUTER_MAC.end(), frame.begin() + 6);
  for (const auto& [o, port] : {std::pair{from_ingress, QSM_NP_PORT}, std::pair{egress[1], OUT_PORT}}) {
    ASSERT_EQ(o.sent.size(), 1u) << port;
    EXPECT_EQ(o.sent[0].to, model::frame_destination::line);
    EXPECT_EQ(o.sent[0].port, port);
    EXPECT_EQ(o.sent[0].bytes, frame);
  }

  if (!tshark_available()) GTEST_SKIP() << "tshark not installed";
  pkt::scratch_dir dir;
  pkt::write_pcap(dir.file("line.pcap"), std::vector<pkt::pcap_record>{{std::chrono::seconds(1), frame}});
  const field_values expected = {{"eth.dst", "02:00:00:00:00:42"}, {"eth.src", "02:00:00:00:00:01"},
                                 {"ip.dst", "192.0.2.1"},          {"udp.dstport", "53"},
                                 {"ip.checksum.status", "1"},      {"udp.checksum.status", "1"}};
  std::vector<std::string> fields;
  for (const auto& [field, value] : expected) fields.push_back(field);
  const auto frames = dissect(dir.file("line.pcap"), fields, dir.file("stderr"));
  ASSERT_EQ(frames.size(), 1u) << read_file(dir.file("stderr"));
  EXPECT_EQ(frames[0], expected);
}

}  // namespace
