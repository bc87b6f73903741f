// Frames from the packet builder through the model's parser into the
// program: on interfaces set up through the control side, each frame takes
// the vector its rules give, and from there reaches its handler or its drop
// counter.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "ctrl/uidb_records.h"
#include "npu/zephra/pkt_rx.h"
#include "pktlib/packet_builder.h"
#include "platform/shared/placeholder.h"
#include "testkit/dispatch_probe.h"
#include "testkit/line_card.h"
#include "testkit/param_names.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using testkit::line_card;
using testkit::PEER_MAC;
using testkit::ROUTER_MAC;

enum port_no : std::uint32_t {
  ROUTED = 1,  // IPv4, IPv6, MPLS; VLAN 100 routes IPv4 alone
  V6_ONLY = 2,
  INJECT = 5,    // input queue 81
  CHANGING = 6,  // routed, its record under change
};

// The vectors whose rows the probe takes; the exception vectors keep their
// handlers, which pick the body that the frame reaches.
constexpr std::uint32_t PROBED_VECTORS[] = {VECTOR_IPV4_UNICAST,   VECTOR_IPV4_MULTICAST, VECTOR_IPV6_UNICAST,
                                            VECTOR_IPV6_MULTICAST, VECTOR_MPLS,           VECTOR_VPWS,
                                            VECTOR_VPLS,           VECTOR_L2_CONTROL};

// Where a frame ends, one mark per place: a probed row, a handler that the
// built code calls by name, a global counter.
std::string row(std::uint32_t vector) { return "row " + std::to_string(vector) + "; "; }
std::string drop(std::uint32_t counter) {
  char text[24];
  std::snprintf(text, sizeof text, "counter 0x%X; ", counter);
  return text;
}

struct frame_case {
  const char* what;
  std::uint32_t port;
  bytes frame;
  std::string end;
};
void PrintTo(const frame_case& c, std::ostream* os) { *os << c.what; }

pkt::builder eth(pkt::mac_addr dst = ROUTER_MAC) { return pkt::builder().eth(PEER_MAC, dst); }
pkt::builder v4(pkt::builder b = eth(), const char* dst = "192.0.2.1") {
  return b.ipv4(pkt::ip4("10.0.0.1"), pkt::ip4(dst));
}
pkt::builder v6(pkt::builder b = eth(), const char* dst = "2001:db8::2") {
  return b.ipv6(pkt::ip6("2001:db8::1"), pkt::ip6(dst));
}
bytes udp(pkt::builder b) { return b.udp(1000, 53).payload(8).build(); }

const std::vector<frame_case>& cases() {
  static const std::vector<frame_case> c = {
      {"clean IPv4 takes the fast path", ROUTED, udp(v4()), row(VECTOR_IPV4_UNICAST)},
      {"IPv4 with a bad checksum takes the exception body", ROUTED, udp(v4().bad_checksum()), "ipv4_ing_nonperf"},
      {"a bad header to 239.1.1.1 takes the multicast body", ROUTED,
       udp(v4(eth(pkt::mac("01:00:5e:01:01:01")), "239.1.1.1").ttl(1)), "ipm4_ing_nonperf"},
      {"IPv4 where IPv4 is off is dropped", V6_ONLY, udp(v4()), drop(0x589)},
      {"IPv6 with hop limit 1 takes the exception body", ROUTED, udp(v6().ttl(1)), "ipv6_ing_nonperf"},
      {"IPv6 where IPv6 is off is dropped", ROUTED, udp(v6(eth().vlan(0x8100, 100))), drop(0x596)},
      {"MPLS with TTL 1 takes the exception body", ROUTED, udp(v4(eth().mpls(100, 0, 1))), "mpls_ing_nonperf"},
      {"IPv4 on an interface under change is dropped", CHANGING, udp(v4()), drop(0x5D2)},
      {"a runt is dropped as an unknown vector", ROUTED, bytes(12, 0x55), drop(0x295)},
      {"an unknown type on a routed port misses the decode: L2 control", ROUTED,
       eth().ethertype(0x1234).payload(46).build(), "l2_ctrl_ing"},
      {"IPv4 from an inject port is injected", INJECT, udp(v4()), "process_inject_ipv4"},
  };
  return c;
}

class IngressDecode : public ::testing::TestWithParam<frame_case> {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite() { card_.reset(); }
  static std::unique_ptr<line_card> card_;
};
std::unique_ptr<line_card> IngressDecode::card_;

void IngressDecode::SetUpTestSuite() {
  card_ = std::make_unique<line_card>();
  line_card& c = *card_;
  for (std::uint32_t p : {ROUTED, V6_ONLY, CHANGING}) c.add_port(p);
  c.add_port(INJECT, {}, 81);
  ctrl::interfaces& ifs = c.ifs();
  ifs.add_physical_port(ROUTED, line_card::routed(0x11, true, true, true));
  ifs.add_vlan_subinterface(ROUTED, {{0x8100, 100}}, line_card::routed(0x12, true, false, false));
  ifs.add_physical_port(V6_ONLY, line_card::routed(0x21, false, true, false));
  // An interface whose record stands under change: its marks say so.
  const ctrl::l3_interface changing = line_card::routed(0x61, true, true, true);
  const std::uint16_t l3_index = ifs.add_physical_port(CHANGING, changing).uidb_index;
  ctrl::write_marks(c.npu(), l3_index, ctrl::marks_of(changing, true));
}

TEST_P(IngressDecode, FrameReachesItsHandlerOrItsCounter) {
  const frame_case& c = GetParam();
  for (std::uint32_t vector : PROBED_VECTORS) testkit::probe_vector(card_->harness(), vector);
  const model::packet_outcome o = card_->receive(c.port, c.frame);
  std::string end;
  for (const testkit::probe_call& call : testkit::take_probe_calls()) end += row(call.row);
  if (o.placeholder >= 0) end += unbuilt_handler_name(static_cast<std::uint32_t>(o.placeholder));
  for (std::uint32_t counter : o.global_counters) end += drop(counter);
  EXPECT_EQ(end, c.end);
  EXPECT_EQ(o.end, model::packet_end::freed);
}

INSTANTIATE_TEST_SUITE_P(Frames, IngressDecode, ::testing::ValuesIn(cases()), testkit::described<frame_case>);

}  // namespace
