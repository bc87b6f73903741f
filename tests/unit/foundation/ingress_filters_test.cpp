// The tests a line packet meets before its vector handler: the satellite port
// filter and the packet-trace filter.
#include <gtest/gtest.h>

#include <array>

#include "foundation_test_util.h"

namespace {

using namespace ft;

constexpr std::uint64_t PORT_RECORD_BASE = 0x81540C00;
constexpr std::uint64_t PKT_TRACE_ENTRY = 0x40342040;
constexpr std::uint32_t PORT = 5;

void write_port_record(testkit::npu_harness& h, std::uint32_t port, bool unicast) {
  std::array<std::uint8_t, 16> rec{};
  rec[6] = unicast ? 0x10 : 0xEF;  // sat_port_unicast_state, or every other bit of the byte
  h.npu().memory().write(PORT_RECORD_BASE + port * 16, rec);
}

std::vector<std::uint8_t> numbered_frame() {
  std::vector<std::uint8_t> f(96);
  for (std::size_t i = 0; i < f.size(); ++i) f[i] = static_cast<std::uint8_t>(i);
  return f;
}

dist_hdr sat_line(std::uint32_t vector) {
  return dist_hdr::line(vector).set<dh::port_bits_sat>(1).set<dh::logical_port>(PORT);
}

// A port not in unicast state drops the wire vectors; the others skip the
// port lookup and keep the tag.
TEST(SatellitePort, PortNotInUnicastStateDropsWireVectorsOnly) {
  testkit::npu_harness h;
  write_port_record(h, PORT, false);
  write_port_record(h, PORT + 1, true);  // the neighbour's record must not be read
  const std::pair<std::uint32_t, expect_end> rows[] = {
      {0, {"", {0x2C7}}}, {12, {"", {0x2C7}}}, {13, {"plat_process_inject", {}}}, {14, {"punt_ptp_followup", {}}}};
  for (const auto& [vector, e] : rows) {
    SCOPED_TRACE("vector " + std::to_string(vector));
    expect_outcome(h.one(sat_line(vector).set<dh::igpb_queue>(80), numbered_frame()), e);
    if (vector < 13) continue;
    h.on_thread([&](env_t env) {
      EXPECT_EQ(*ps_get_pkt_start(env), *ps_get_pkt_mem_start(env) + 160);
      EXPECT_EQ(cf2::is_sat_intf::get(*ps_get_common_flags2(env)), 0u);
    });
  }
}

TEST(SatellitePort, UnicastPortLosesItsTagAndGoesOn) {
  struct row {
    std::uint32_t l3_offset;
    std::uint32_t expected_l3_offset;
  };
  const row rows[] = {{18, 14}, {0, 0}, {2, 126}};
  testkit::npu_harness h;
  write_port_record(h, PORT, true);
  testkit::probe_vector(h, 0);
  const auto frame = numbered_frame();
  for (const row& r : rows) {
    SCOPED_TRACE("l3_offset " + std::to_string(r.l3_offset));
    const auto hdr = sat_line(0).set<dh::l3_offset>(r.l3_offset).set<dh::pktlen>(96).set<dh::igpb_queue>(45);
    h.one(hdr, frame);
    EXPECT_EQ(testkit::take_probe_calls(), testkit::probe_calls{testkit::ran_at_vector(0)});
    h.on_thread([&](env_t env) {
      const std::uint8_t* start = *ps_get_pkt_start(env);
      EXPECT_EQ(start, *ps_get_pkt_mem_start(env) + 160 + 4);
      // The MAC addresses now stand right in front of the bytes behind the tag.
      EXPECT_TRUE(std::equal(frame.begin(), frame.begin() + 12, start));
      EXPECT_TRUE(std::equal(frame.begin() + 16, frame.end(), start + 12));
      EXPECT_EQ(*ps_get_curr_pkt_len(env), 92);
      EXPECT_EQ(dh::l3_offset::get(*reinterpret_cast<const dist_hdr_line_st*>(env->dist_hdr)), r.expected_l3_offset);
      EXPECT_EQ(*ps_get_hw_np_port(env), 22);
      EXPECT_EQ(cf2::is_sat_intf::get(*ps_get_common_flags2(env)), 1u);
    });
  }
}

// ---- packet trace ----

struct trace_word {
  std::uint8_t offset;
  std::uint32_t value;
  std::uint32_t mask;
};

void write_trace_entry(testkit::npu_harness& h, std::array<std::uint8_t, 4> ports, std::array<trace_word, 3> words) {
  std::array<std::uint8_t, 32> e{};
  std::copy(ports.begin(), ports.end(), e.begin());
  for (std::size_t i = 0; i < 3; ++i) {
    e[4 + i] = words[i].offset;
    for (std::size_t b = 0; b < 4; ++b) {
      e[8 + i * 8 + b] = static_cast<std::uint8_t>(words[i].value >> (24 - 8 * b));
      e[12 + i * 8 + b] = static_cast<std::uint8_t>(words[i].mask >> (24 - 8 * b));
    }
  }
  h.npu().memory().write(PKT_TRACE_ENTRY, e);
}

// Words of numbered_frame(): bytes 0..3, the low half of bytes 12..15, byte 41.
constexpr trace_word W1{0, 0x00010203, 0xFFFFFFFF};
constexpr trace_word W2{12, 0x00000E0F, 0x0000FFFF};
constexpr trace_word W3{40, 0x00290000, 0x00FF0000};
constexpr trace_word MISS{0, 0x00010204, 0xFFFFFFFF};

TEST(PacketTrace, EntrySelectsPortsAndMatchWords) {
  struct row {
    const char* name;
    std::array<std::uint8_t, 4> ports;
    std::array<trace_word, 3> words;
    std::uint32_t port;
    bool traced;
  };
  const row rows[] = {
      {"all slots empty", {0xFF, 0xFF, 0xFF, 0xFF}, {W1, W2, W3}, PORT, false},
      {"first slot", {PORT, 0xFF, 0xFF, 0xFF}, {W1, W2, W3}, PORT, true},
      {"other ports only", {1, 2, 3, 0xFF}, {W1, W2, W3}, PORT, false},
      {"fourth slot used: words alone", {0xFF, 0xFF, 0xFF, 9}, {W1, W2, W3}, PORT, true},
      {"first word differs", {PORT, 0xFF, 0xFF, 0xFF}, {MISS, W2, W3}, PORT, false},
      {"third word differs", {PORT, 0xFF, 0xFF, 0xFF}, {W1, W2, MISS}, PORT, false},
  };
  testkit::npu_harness h;
  apply_global_config(h, 1u << 14);
  testkit::probe_vector(h, 0);
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    write_trace_entry(h, r.ports, r.words);
    const auto o = h.one(dist_hdr::line(0).set<dh::logical_port>(r.port), numbered_frame());
    EXPECT_EQ(testkit::take_probe_calls(), testkit::probe_calls{testkit::ran_at_vector(0)});
    EXPECT_EQ(has_counter(o, r.port + 16), r.traced);
    EXPECT_EQ(cf::pkt_trace_on::get(flags_after(h)), r.traced ? 1u : 0u);
  }
  // A matching entry is ignored while trace is off.
  write_trace_entry(h, {PORT, 0xFF, 0xFF, 0xFF}, {W1, W2, W3});
  apply_global_config(h, 0);
  EXPECT_TRUE(h.one(dist_hdr::line(0).set<dh::logical_port>(PORT), numbered_frame()).global_counters.empty());
}

}  // namespace
