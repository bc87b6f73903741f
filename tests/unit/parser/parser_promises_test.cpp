// The fuzz target's consistency checks catch a parser that breaks a promise.
// A clean frame's own header keeps them all (the corpus test runs them on
// every kept frame); the same header with a frame
// changed where the parser should then have chosen otherwise, or changed
// where the parser should have filled it otherwise, is named as broken.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <vector>

#include "fuzz/parser_fuzz_setup.h"
#include "fuzz/parser_promises.h"
#include "pktlib/packet_builder.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using L = dist_hdr_line_st;

const pkt::mac_addr PEER = pkt::mac("02:00:00:00:00:99");
constexpr std::size_t IP = 14;  // the L3 header of an untagged frame

bytes ipv4_unicast() {
  return pkt::builder().eth(PEER, fuzz::ROUTER_MAC).ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1")).udp(1, 2).build();
}
bytes ipv6_multicast() {
  return pkt::builder()
      .eth(PEER, pkt::mac("33:33:00:01:00:02"))
      .ipv6(pkt::ip6("2001:db8::1"), pkt::ip6("ff0e::1:2"))
      .udp(1, 2)
      .build();
}
bytes mpls_two_labels() {
  return pkt::builder()
      .eth(PEER, fuzz::ROUTER_MAC)
      .mpls(100)
      .mpls(200)
      .ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1"))
      .udp(1, 2)
      .build();
}

struct fault {
  const char* what;
  std::function<bytes()> frame;
  std::function<void(bytes&, L&)> change;
};
void PrintTo(const fault& f, std::ostream* os) { *os << f.what; }

class ParserPromiseBroken : public testing::TestWithParam<fault> {};

TEST_P(ParserPromiseBroken, IsNamed) {
  fuzz::parser_fixture fixture;
  bytes frame = GetParam().frame();
  L hdr = fixture.parse(0, frame);
  ASSERT_LE(L::rt_result::get(hdr), 4u) << "not a clean vector, so the promises of one are untried";
  ASSERT_EQ(fuzz::broken_promise(0, frame, hdr), nullptr);
  GetParam().change(frame, hdr);
  EXPECT_NE(fuzz::broken_promise(0, frame, hdr), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, ParserPromiseBroken,
    testing::Values(fault{"IPv4 TTL of 1", ipv4_unicast, [](bytes& f, L&) { f[IP + 8] = 1; }},
                    fault{"unicast to another station's MAC", ipv4_unicast, [](bytes& f, L&) { f[5] = 0x99; }},
                    fault{"IPv4 decode bit ttl_gt_1 clear", ipv4_unicast,
                          [](bytes&, L& h) { L::in_baf<baf_hdr_ing_st::v4::ttl_gt_1>::set(h, 0); }},
                    fault{"IPv6 hop limit of 1", ipv6_multicast, [](bytes& f, L&) { f[IP + 7] = 1; }},
                    fault{"IPv6 group MAC of another group", ipv6_multicast, [](bytes& f, L&) { f[5] = 0x03; }},
                    fault{"MPLS top TTL of 1", mpls_two_labels, [](bytes& f, L&) { f[IP + 3] = 1; }},
                    fault{"IPv6 vector on an IPv4 frame", ipv4_unicast, [](bytes&, L& h) { L::rt_result::set(h, 2); }},
                    fault{"interface of another port", ipv4_unicast, [](bytes&, L& h) { L::uidb_index::set(h, 2); }},
                    fault{"L3 offset between tags", ipv4_unicast, [](bytes&, L& h) { L::l3_offset::set(h, 16); }},
                    fault{"packet length off by one", ipv4_unicast,
                          [](bytes& f, L& h) { L::pktlen::set(h, static_cast<std::uint32_t>(f.size() + 1)); }}));

}  // namespace
