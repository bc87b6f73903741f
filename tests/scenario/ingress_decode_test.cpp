// Frames from the packet builder through the model's parser into the
// program: on interfaces set up through the control side, each frame takes
// the vector its rules give, and from there reaches its handler or its drop
// counter.
#include <gtest/gtest.h>

#include <ostream>
#include <vector>

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
  BRIDGE = 3,
  XCONNECT = 4,  // VLAN 10
  INJECT = 5,    // input queue 81
  CHANGING = 6,  // routed, its record under change
  BRIDGE_CHANGING = 7,
};

// Where a frame ends: at the ingress table's row of its vector, or in a
// handler that the built code calls by name, or neither.
struct reach {
  std::int32_t vector = -1;
  const char* handler = nullptr;
};
reach row_of(std::uint32_t vector) { return {static_cast<std::int32_t>(vector), nullptr}; }
reach called(const char* handler) { return {-1, handler}; }

// The vectors whose rows the probe takes; the exception vectors keep their
// handlers, which pick the body that the frame reaches.
constexpr std::uint32_t PROBED_VECTORS[] = {VECTOR_IPV4_UNICAST,   VECTOR_IPV4_MULTICAST, VECTOR_IPV6_UNICAST,
                                            VECTOR_IPV6_MULTICAST, VECTOR_MPLS,           VECTOR_VPWS,
                                            VECTOR_VPLS,           VECTOR_L2_CONTROL};

struct row {
  const char* what;
  std::uint32_t port;
  bytes frame;
  reach where;
  std::vector<std::uint32_t> counters = {};  // global counters bumped
};
void PrintTo(const row& r, std::ostream* os) { *os << r.what; }

pkt::builder eth(pkt::mac_addr dst = ROUTER_MAC) { return pkt::builder().eth(PEER_MAC, dst); }
pkt::builder v4(pkt::builder b = eth(), const char* dst = "192.0.2.1") {
  return b.ipv4(pkt::ip4("10.0.0.1"), pkt::ip4(dst));
}
pkt::builder v6(pkt::builder b = eth(), const char* dst = "2001:db8::2") {
  return b.ipv6(pkt::ip6("2001:db8::1"), pkt::ip6(dst));
}
bytes udp(pkt::builder b) { return b.udp(1000, 53).payload(8).build(); }

const pkt::mac_addr MC4 = pkt::mac("01:00:5e:01:01:01");
bytes of_type(std::uint16_t ethertype) { return eth().ethertype(ethertype).payload(46).build(); }

const std::vector<row>& rows() {
  static const std::vector<row> r = {
      {"clean IPv4: fast path", ROUTED, udp(v4()), row_of(VECTOR_IPV4_UNICAST)},
      {"IPv4 bad checksum: exception body", ROUTED, udp(v4().bad_checksum()), called("ipv4_ing_nonperf")},
      {"IPv4 to another station: exception body", ROUTED, udp(v4(eth(PEER_MAC))), called("ipv4_ing_nonperf")},
      {"clean IPv4 multicast: fast path", ROUTED, udp(v4(eth(MC4), "239.1.1.1")), row_of(VECTOR_IPV4_MULTICAST)},
      {"IPv4 where IPv4 is off: dropped", V6_ONLY, udp(v4()), {}, {0x589}},
      {"clean IPv6: fast path", ROUTED, udp(v6()), row_of(VECTOR_IPV6_UNICAST)},
      {"IPv6 hop limit 1: exception body", ROUTED, udp(v6().ttl(1)), called("ipv6_ing_nonperf")},
      {"IPv6 where IPv6 is off: dropped", ROUTED, udp(v6(eth().vlan(0x8100, 100))), {}, {0x596}},
      {"clean MPLS: fast path", ROUTED, udp(v4(eth().mpls(100))), row_of(VECTOR_MPLS)},
      {"MPLS TTL 1: exception body", ROUTED, udp(v4(eth().mpls(100, 0, 1))), called("mpls_ing_nonperf")},
      {"MPLS to another station: dropped", ROUTED, udp(v4(eth(PEER_MAC).mpls(100))), {}, {0x190}},
      {"MPLS where MPLS is off: dropped", V6_ONLY, udp(v4(eth().mpls(100))), {}, {0x5A8}},
      {"IPv4 on an interface under change: dropped", CHANGING, udp(v4()), {}, {0x5D2}},
      {"runt: unknown vector", ROUTED, bytes(12, 0x55), {}, {0x295}},
      {"VLAN without an interface: unknown vector", ROUTED, udp(v4(eth().vlan(0x8100, 555))), {}, {0x295}},
      {"unknown type on a routed port: L2 control", ROUTED, of_type(0x1234), called("l2_ctrl_ing")},
      {"ARP: L2 control path", ROUTED, of_type(0x0806), row_of(VECTOR_L2_CONTROL)},
      {"bridge port: bridged", BRIDGE, udp(v4()), row_of(VECTOR_VPLS)},
      {"bridge port under change: dropped", BRIDGE_CHANGING, udp(v4()), {}, {0x5D2}},
      {"cross-connect VLAN: cross-connected", XCONNECT, udp(v4(eth().vlan(0x8100, 10))), row_of(VECTOR_VPWS)},
      {"IPv4 from an inject port: injected", INJECT, udp(v4()), called("process_inject_ipv4")},
      {"no L3 type from an inject port: injected", INJECT, of_type(0x0806), called("plat_process_inject")},
  };
  return r;
}

class IngressDecode : public ::testing::TestWithParam<row> {
 protected:
  static void SetUpTestSuite() {
    card_ = new line_card();
    set_up(*card_);
  }
  static void TearDownTestSuite() {
    delete card_;
    card_ = nullptr;
  }
  static void set_up(line_card& c);
  static line_card* card_;
};
line_card* IngressDecode::card_ = nullptr;

void IngressDecode::set_up(line_card& c) {
  for (std::uint32_t p : {ROUTED, V6_ONLY, BRIDGE, XCONNECT, CHANGING, BRIDGE_CHANGING}) c.add_port(p);
  c.add_port(INJECT, {}, 81);
  ctrl::interfaces& ifs = c.ifs();
  ifs.add_physical_port(ROUTED, line_card::routed(0x11, true, true, true));
  ifs.add_vlan_subinterface(ROUTED, {{0x8100, 100}}, line_card::routed(0x12, true, false, false));
  ifs.add_physical_port(V6_ONLY, line_card::routed(0x21, false, true, false));
  ctrl::l2_interface bridge;
  bridge.if_handle = 0x31;
  ifs.add_l2_port(BRIDGE, {}, bridge);
  ctrl::l2_interface xc;
  xc.if_handle = 0x41;
  xc.service = ctrl::l2_service::cross_connect;
  ifs.add_l2_port(XCONNECT, {{0x8100, 10}}, xc);
  // Two interfaces held in maintenance mode, as while their records change.
  const ctrl::l3_interface changing = line_card::routed(0x61, true, true, true);
  const std::uint16_t l3_index = ifs.add_physical_port(CHANGING, changing).uidb_index;
  ifs.set_maintenance(l3_index, true);
  bridge.if_handle = 0x71;
  const std::uint16_t l2_index = ifs.add_l2_port(BRIDGE_CHANGING, {}, bridge).uidb_index;
  ifs.set_maintenance(l2_index, true);
}

TEST_P(IngressDecode, FrameReachesItsHandlerOrItsCounter) {
  const row& r = GetParam();
  for (std::uint32_t vector : PROBED_VECTORS) testkit::probe_vector(card_->harness(), vector);
  const model::packet_outcome o = card_->receive(r.port, r.frame);
  const char* reached = o.placeholder >= 0 ? unbuilt_handler_name(static_cast<std::uint32_t>(o.placeholder)) : nullptr;
  EXPECT_STREQ(reached, r.where.handler);
  const testkit::probe_calls at_row =
      r.where.vector < 0 ? testkit::probe_calls{} : testkit::probe_calls{testkit::ran_at_vector(r.where.vector)};
  EXPECT_EQ(testkit::take_probe_calls(), at_row);
  EXPECT_EQ(o.global_counters, r.counters);
  EXPECT_EQ(o.end, model::packet_end::freed);
}

INSTANTIATE_TEST_SUITE_P(Frames, IngressDecode, ::testing::ValuesIn(rows()), testkit::described<row>);

}  // namespace
