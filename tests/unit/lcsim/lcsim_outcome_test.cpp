// How the tool tells a packet's end: from the packet's own end (frames it
// sent, the counter its drop named), never from the counters that moved
// while its thread held it; and frames that came from the fabric, which have
// no scenario packet behind them, are written like any other.
#include <gtest/gtest.h>

#include "pcap_output.h"
#include "pktlib/pcap_file.h"
#include "report.h"
#include "unit/pktlib/scratch_dir.h"

namespace {

using model::frame_destination;
using model::packet_end;

// Global counter 0x61 counts a traced packet's fabric send.
constexpr std::uint32_t TRACED_FABRIC_SEND = 0x61;

model::packet_outcome outcome(packet_end end, std::vector<std::uint32_t> counters,
                              std::optional<frame_destination> to = {}, std::optional<std::uint32_t> drop = {}) {
  model::packet_outcome o;
  o.end = end;
  o.global_counters = std::move(counters);
  if (to) o.sent.push_back({*to, 0x123, std::vector<std::uint8_t>(64, 0xAB)});
  o.drop_counter = drop;
  return o;
}

TEST(LcsimOutcome, APacketEndsSentPuntedOrDroppedWithItsCounter) {
  const std::pair<model::packet_outcome, std::string> cases[] = {
      {outcome(packet_end::sent, {TRACED_FABRIC_SEND}, frame_destination::fabric), "sent"},
      {outcome(packet_end::sent, {}, frame_destination::host), "punted"},
      {outcome(packet_end::freed, {0x60, 0x150}, {}, 0x150), "dropped 0x150"},
      {outcome(packet_end::freed, {}), "freed"},
  };
  for (const auto& [o, fate] : cases) {
    EXPECT_EQ(lcsim::packet_fate(o).rfind(fate, 0), 0u) << fate << ": " << lcsim::packet_fate(o);
  }
}

TEST(LcsimOutcome, FramesSentByAPacketFromTheFabricAreWritten) {
  pkt::scratch_dir dir;
  const model::packet_outcome o = outcome(packet_end::sent, {}, frame_destination::fabric);
  lcsim::write_outputs(dir.file("out"), {{nullptr, o}});
  const std::vector<pkt::pcap_record> written = pkt::read_pcap(dir.file("out/fabric.pcap"));
  ASSERT_EQ(written.size(), 1u);
  EXPECT_EQ(written[0].frame, o.sent[0].bytes);
}

}  // namespace
