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

// Global counter 0x61 counts a traced packet's fabric send.
constexpr std::uint32_t TRACED_FABRIC_SEND = 0x61;

model::sent_frame frame_to(model::frame_destination to) { return {to, 0x123, std::vector<std::uint8_t>(64, 0xAB)}; }

struct fate_case {
  const char* name;
  model::packet_outcome outcome;
  std::string fate;  // what the report must say, or how it must start
};

model::packet_outcome outcome(model::packet_end end, std::vector<std::uint32_t> counters,
                              std::vector<model::sent_frame> sent, std::optional<std::uint32_t> drop = {}) {
  model::packet_outcome o;
  o.end = end;
  o.global_counters = std::move(counters);
  o.sent = std::move(sent);
  o.drop_counter = drop;
  return o;
}

TEST(LcsimOutcome, APacketEndsSentPuntedOrDroppedWithItsCounter) {
  using model::frame_destination;
  using model::packet_end;
  const fate_case cases[] = {
      {"traced fabric send", outcome(packet_end::sent, {TRACED_FABRIC_SEND}, {frame_to(frame_destination::fabric)}),
       "sent"},
      {"line send", outcome(packet_end::sent, {}, {frame_to(frame_destination::line)}), "sent"},
      {"punt", outcome(packet_end::sent, {}, {frame_to(frame_destination::host)}), "punted"},
      {"counted drop", outcome(packet_end::freed, {0x294}, {}, 0x294), "dropped 0x294"},
      {"traced drop", outcome(packet_end::freed, {0x60, 0x150}, {}, 0x150), "dropped 0x150"},
      {"drop without a counter", outcome(packet_end::freed, {}, {}), "freed"},
  };
  for (const fate_case& c : cases) {
    EXPECT_EQ(lcsim::packet_fate(c.outcome).rfind(c.fate, 0), 0u) << c.name << ": " << lcsim::packet_fate(c.outcome);
  }
}

TEST(LcsimOutcome, FramesSentByAPacketFromTheFabricAreWritten) {
  pkt::scratch_dir dir;
  const model::sent_frame f = frame_to(model::frame_destination::fabric);
  lcsim::write_outputs(dir.file("out"), {{nullptr, outcome(model::packet_end::sent, {}, {f})}});
  const std::vector<pkt::pcap_record> written = pkt::read_pcap(dir.file("out/fabric.pcap"));
  ASSERT_EQ(written.size(), 1u);
  EXPECT_EQ(written[0].frame, f.bytes);
}

}  // namespace
