// The parser's vector rules, one frame each from the packet builder, on a
// line card whose ports and interfaces the control side set up. The clean
// frame of each kind, the first exception of each protocol and the frames
// that miss every interface stand in the ingress scenario, which follows them
// on to their handler or counter; a header that fails a decode bit stands in
// the decode-bit table, and the fuzz target's checks hold every clean vector
// to a header that passes.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "model/parser_vector.h"
#include "pktlib/packet_builder.h"
#include "testkit/line_card.h"
#include "testkit/param_names.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using L = dist_hdr_line_st;
using testkit::PEER_MAC;
using testkit::ROUTER_MAC;
using namespace model;

enum port_no : std::uint32_t {
  ROUTED = 1,    // IPv4, IPv6, MPLS; VLAN 100 (IPv4 only); 0x88A8 200 / 0x8100 300
  BRIDGE = 3,    // L2 bridge port on the whole port
  XCONNECT = 4,  // L2 cross-connect on VLAN 10
  FORCE_L2 = 6,  // force_l2_ctrl_vector, with a routed interface
  UNSET = 7,     // no settings
};

pkt::builder to_router(pkt::mac_addr dst = ROUTER_MAC) { return pkt::builder().eth(PEER_MAC, dst); }
pkt::builder ipv4(pkt::builder b = to_router(), const char* dst = "192.0.2.1") {
  return b.ipv4(pkt::ip4("10.0.0.1"), pkt::ip4(dst));
}
pkt::builder ipv6(pkt::builder b = to_router(), const char* dst = "2001:db8::2", const char* src = "2001:db8::1") {
  return b.ipv6(pkt::ip6(src), pkt::ip6(dst));
}
bytes udp(pkt::builder b) { return b.udp(1000, 2000).payload(8).build(); }
pkt::builder labelled(pkt::builder b = to_router()) { return b.mpls(100).mpls(200); }

struct row {
  const char* what;
  std::uint32_t port;
  bytes frame;
  std::uint32_t vector;
};

void PrintTo(const row& r, std::ostream* os) { *os << r.what; }

const std::vector<row>& rows() {
  static const std::vector<row> r = {
      {"IPv4 unicast to the broadcast MAC", ROUTED, udp(ipv4(to_router(pkt::mac("ff:ff:ff:ff:ff:ff")))),
       VECTOR_IPV4_EXCEPTION},
      {"IPv4 multicast to its group's MAC", ROUTED, udp(ipv4(to_router(pkt::mac("01:00:5e:01:02:03")), "239.129.2.3")),
       VECTOR_IPV4_MULTICAST},
      {"IPv4 multicast to another group's MAC", ROUTED,
       udp(ipv4(to_router(pkt::mac("01:00:5e:01:02:04")), "239.1.2.3")), VECTOR_IPV4_EXCEPTION},
      {"IPv4 with options", ROUTED, udp(ipv4().ip_option(1)), VECTOR_IPV4_EXCEPTION},
      {"IPv4 from a loopback source", ROUTED, udp(to_router().ipv4(pkt::ip4("127.0.0.1"), pkt::ip4("192.0.2.1"))),
       VECTOR_IPV4_EXCEPTION},
      {"IPv6 multicast to its group's MAC", ROUTED, udp(ipv6(to_router(pkt::mac("33:33:00:01:00:03")), "ff05::1:3")),
       VECTOR_IPV6_MULTICAST},
      {"IPv6 from :: to a solicited-node group", ROUTED,
       udp(ipv6(to_router(pkt::mac("33:33:ff:00:00:05")), "ff02::1:ff00:5", "::")), VECTOR_IPV6_MULTICAST},
      {"IPv6 from :: to a unicast address", ROUTED, udp(ipv6(to_router(), "2001:db8::2", "::")), VECTOR_IPV6_EXCEPTION},
      {"IPv6 from ::1", ROUTED, udp(ipv6(to_router(), "2001:db8::2", "::1")), VECTOR_IPV6_EXCEPTION},
      {"MPLS stack cut before its bottom", ROUTED, labelled().payload(4).truncate(14 + 6).build(),
       VECTOR_MPLS_EXCEPTION},
      {"multicast MPLS", ROUTED, to_router().ethertype(0x8848).raw({0, 0x64, 0x11, 64}).build(), VECTOR_MPLS_EXCEPTION},
      {"IPv4 on VLAN 100", ROUTED, udp(ipv4(to_router().vlan(0x8100, 100))), VECTOR_IPV4_UNICAST},
      {"IPv4 on 0x88A8 200 / 300", ROUTED, udp(ipv4(to_router().vlan(0x88a8, 200).vlan(0x8100, 300))),
       VECTOR_IPV4_UNICAST},
      {"a third tag on the 200 / 300 interface", ROUTED,
       udp(ipv4(to_router().vlan(0x88a8, 200).vlan(0x8100, 300).vlan(0x8100, 1))), VECTOR_UNPLACED},
      {"an unknown type on a bridge port", BRIDGE, to_router().ethertype(0x1234).payload(46).build(), VECTOR_VPLS},
      {"a bridge group frame on a bridge port", BRIDGE,
       to_router(pkt::mac("01:80:c2:00:00:00")).ethertype(0x0026).payload(38).build(), VECTOR_L2_CONTROL},
      {"VLAN 10 with a customer tag", XCONNECT, udp(ipv4(to_router().vlan(0x8100, 10).vlan(0x8100, 5))), VECTOR_VPWS},
      {"untagged beside the cross-connect", XCONNECT, udp(ipv4()), VECTOR_UNPLACED},
      {"LLDP on a routed port", ROUTED, to_router(pkt::mac("01:80:c2:00:00:0e")).ethertype(0x88cc).payload(40).build(),
       VECTOR_L2_CONTROL},
      {"an 802.3 length on a routed port", ROUTED, to_router().ethertype(0x0026).payload(38).build(),
       VECTOR_L2_CONTROL},
      {"a tag cut short", ROUTED, ipv4(to_router().vlan(0x8100, 100)).udp(1, 2).truncate(16).build(), VECTOR_UNPLACED},
      {"a port without settings", UNSET, udp(ipv4()), VECTOR_UNPLACED},
      {"a port that forces the control vector", FORCE_L2, udp(ipv4()), VECTOR_L2_CONTROL},
  };
  return r;
}

class ParserVector : public ::testing::TestWithParam<row> {
 protected:
  void SetUp() override { set_up(card); }
  static void set_up(testkit::line_card& c);
  testkit::line_card card;
};

void ParserVector::set_up(testkit::line_card& c) {
  using testkit::line_card;
  for (std::uint32_t p : {ROUTED, BRIDGE, XCONNECT}) c.add_port(p);
  c.add_port(FORCE_L2, {.force_l2_ctrl_vector = true});
  ctrl::interfaces& ifs = c.ifs();
  ASSERT_EQ(ifs.add_physical_port(ROUTED, line_card::routed(0x11, true, true, true)).err, ctrl::error::none);
  ASSERT_EQ(ifs.add_vlan_subinterface(ROUTED, {{0x8100, 100}}, line_card::routed(0x12, true, false, false)).err,
            ctrl::error::none);
  ASSERT_EQ(
      ifs.add_vlan_subinterface(ROUTED, {{0x88a8, 200}, {0x8100, 300}}, line_card::routed(0x13, true, false, false))
          .err,
      ctrl::error::none);
  ctrl::l2_interface bridge;
  bridge.if_handle = 0x31;
  ASSERT_EQ(ifs.add_l2_port(BRIDGE, {}, bridge).err, ctrl::error::none);
  ctrl::l2_interface xc;
  xc.if_handle = 0x41;
  xc.service = ctrl::l2_service::cross_connect;
  ASSERT_EQ(ifs.add_l2_port(XCONNECT, {{0x8100, 10}}, xc).err, ctrl::error::none);
  ASSERT_EQ(ifs.add_physical_port(FORCE_L2, line_card::routed(0x61, true, true, true)).err, ctrl::error::none);
}

TEST_P(ParserVector, FrameTakesTheVectorOfItsRule) {
  const row& r = GetParam();
  const dist_hdr_line_st hdr = card.parse(r.port, r.frame);
  EXPECT_EQ(L::rt_result::get(hdr), r.vector);
}

INSTANTIATE_TEST_SUITE_P(Rules, ParserVector, ::testing::ValuesIn(rows()), testkit::described<row>);

}  // namespace
