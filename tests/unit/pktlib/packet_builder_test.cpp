// Byte-level checks of the fields the forwarding plane reads. Checksums,
// GRE options and broken checksums are checked by an independent dissector
// in tshark_test.
#include "pktlib/packet_builder.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "pktlib/checksum.h"
#include "pktlib/hex_dump.h"

namespace pkt {
namespace {

using bytes = std::vector<std::uint8_t>;

constexpr std::size_t eth_size = 14;

std::uint32_t be(const bytes& f, std::size_t at, std::size_t width) {
  std::uint32_t v = 0;
  for (std::size_t i = 0; i < width; ++i) v = v << 8 | f.at(at + i);
  return v;
}

bytes slice(const bytes& f, std::size_t at, std::size_t size) { return bytes(f.begin() + at, f.begin() + at + size); }

builder eth_frame() { return builder().eth(mac("02:00:00:00:00:01"), mac("02:00:00:00:00:02")); }
builder ipv4_frame() { return eth_frame().ipv4(ip4("10.0.0.1"), ip4("192.0.2.1")); }
builder ipv6_frame() { return eth_frame().ipv6(ip6("2001:db8::1"), ip6("2001:db8::2")); }

TEST(PacketBuilder, VlanTagsCarryTheirTpidsInStackOrder) {
  const bytes f = eth_frame()
                      .vlan(0x88a8, 100, 5, true)
                      .vlan(0x8100, 200)
                      .vlan(0x9100, 4095, 7)
                      .vlan(0x9200, 1)
                      .ipv6({}, {})
                      .build();
  const bytes expected{0x02, 0,    0,    0,    0,    0x02, 0x02, 0,    0,    0,    0,    0x01,  // dst, src
                       0x88, 0xa8, 0xb0, 0x64,                                                  // PCP 5, DEI, VID 100
                       0x81, 0x00, 0x00, 0xc8, 0x91, 0x00, 0xef, 0xff, 0x92, 0x00, 0x00, 0x01, 0x86, 0xdd};
  EXPECT_EQ(slice(f, 0, expected.size()), expected) << hex_dump(f);
}

TEST(PacketBuilder, MplsSetsBottomOfStackOnTheLastLabelOnly) {
  const bytes f = eth_frame().mpls(100).mpls(0xfffff, 3, 9).ipv6({}, {}).build();
  EXPECT_EQ(be(f, 12, 2), 0x8847u);
  EXPECT_EQ(be(f, 14, 4), 0x00064040u);  // label 100, TTL 64, S clear
  EXPECT_EQ(be(f, 18, 4), 0xfffff709u);  // TC 3, S set, TTL 9
  EXPECT_EQ(f.at(22) >> 4, 6);
}

// The chains a dissector follows on its own (Ethernet to IPv6 or MPLS, IPv4
// to GRE to Ethernet, VXLAN) are checked in tshark_test.
TEST(PacketBuilder, NextProtocolFieldsFollowTheNextLayerUnlessOverridden) {
  struct next_case {
    const char* name;
    bytes frame;
    std::size_t at;
    bytes expected;
  };
  const std::size_t v4_proto = eth_size + 9, v6_next = eth_size + 6, gre_at = eth_size + 20;
  const next_case cases[] = {
      {"ethertype override", eth_frame().ethertype(0x8848).mpls(1).build(), 12, {0x88, 0x48}},
      {"ethertype before raw", eth_frame().ethertype(0x88b5).payload(4).build(), 12, {0x88, 0xb5}},
      {"gre then mpls", ipv4_frame().gre().mpls(1).build(), gre_at + 2, {0x88, 0x47}},
      {"ipv4 then ipv6", ipv4_frame().ipv6({}, {}).build(), v4_proto, {41}},
      {"ipv4 then mpls", ipv4_frame().mpls(1).build(), v4_proto, {137}},
      {"ipv6 then ipv4", ipv6_frame().ipv4({}, {}).udp(1, 2).build(), v6_next, {4}},
      {"ipv6 then nothing", ipv6_frame().build(), v6_next, {59}},
      {"ipv6 then eth", ipv6_frame().eth({}, {}).ipv6({}, {}).build(), v6_next, {143}},
      {"protocol override", ipv4_frame().protocol(200).udp(1, 2).build(), v4_proto, {200}},
      {"override after ext", ipv6_frame().destination_options().protocol(99).udp(1, 2).build(), eth_size + 40, {99}},
      {"vxlan ports", ipv4_frame().vxlan(7).eth({}, {}).ipv6({}, {}).build(), eth_size + 20, {0xc0, 0x00, 0x12, 0xb5}},
  };
  for (const next_case& c : cases) {
    EXPECT_EQ(slice(c.frame, c.at, c.expected.size()), c.expected) << c.name << "\n" << hex_dump(c.frame);
  }
}

TEST(PacketBuilder, Ipv4HeaderFieldsOptionsAndChecksum) {
  const bytes f = ipv4_frame()
                      .tos(0x03)
                      .dscp(46)
                      .ttl(7)
                      .id(0xbeef)
                      .dont_fragment()
                      .more_fragments()
                      .fragment_offset(1480)
                      .ip_option(0x94, {0, 0})
                      .ip_option(1)
                      .udp(1, 2)
                      .payload(10)
                      .build();
  const bytes ip = slice(f, eth_size, f.size() - eth_size);
  EXPECT_EQ(ip[0], 0x47) << hex_dump(f);  // 28-byte header
  EXPECT_EQ(ip[1], 0xbb);                 // DSCP 46, ECN kept
  EXPECT_EQ(be(ip, 2, 2), ip.size());
  EXPECT_EQ(be(ip, 4, 2), 0xbeefu);
  EXPECT_EQ(be(ip, 6, 2), 0x6000u | 1480 / 8);
  EXPECT_EQ(ip[8], 7);
  EXPECT_EQ(ip[9], 17);
  EXPECT_EQ(slice(ip, 20, 8), (bytes{0x94, 0x04, 0, 0, 0x01, 0, 0, 0}));
  EXPECT_EQ(be(ip, 28, 2), 1u) << "options must not overwrite the UDP header";
  EXPECT_EQ(internet_checksum(slice(ip, 0, 28)), 0);
}

TEST(PacketBuilder, FalseLengthAndTruncationOnRequest) {
  const bytes long_length = ipv4_frame().total_length(1000).protocol(253).build();
  EXPECT_EQ(be(long_length, eth_size + 2, 2), 1000u);
  EXPECT_EQ(internet_checksum(slice(long_length, eth_size, 20)), 0) << "the checksum covers the false length";
  const bytes cut = ipv4_frame().udp(1, 2).payload(100).truncate(40).build();
  EXPECT_EQ(cut.size(), 40u);
  EXPECT_EQ(be(cut, eth_size + 2, 2), 128u) << "lengths describe the whole packet";
}

TEST(PacketBuilder, Ipv6ExtensionHeadersChainInOrder) {
  const ip6_addr a = ip6("2001:db8::a"), b = ip6("2001:db8::b"), c = ip6("2001:db8::c");
  const bytes f = ipv6_frame()
                      .tos(0xb8)
                      .flow_label(0xabcde)
                      .ttl(9)
                      .hop_by_hop({5, 2, 0, 0})
                      .segment_routing({a, b, c}, 2)
                      .fragment(1480, true, 0xdeadbeef)
                      .auth_header(0x100, 7)
                      .udp(1, 2)
                      .payload(8)
                      .build();
  const bytes ip = slice(f, eth_size, f.size() - eth_size);
  EXPECT_EQ(be(ip, 0, 4), 0x6b8abcdeu) << hex_dump(f);
  EXPECT_EQ(be(ip, 4, 2), ip.size() - 40);
  EXPECT_EQ(ip[6], 0);  // hop-by-hop first
  EXPECT_EQ(ip[7], 9);
  const ip6_addr dst = ip6("2001:db8::2");
  EXPECT_EQ(slice(ip, 24, 16), bytes(dst.begin(), dst.end())) << "the header keeps the current destination";

  EXPECT_EQ(slice(ip, 40, 8), (bytes{43, 0, 5, 2, 0, 0, 1, 0}));  // router alert, then PadN
  EXPECT_EQ(slice(ip, 48, 8), (bytes{44, 6, 4, 2, 2, 0, 0, 0}));  // SRH: 3 segments, 2 left
  EXPECT_EQ(slice(ip, 56, 16), bytes(a.begin(), a.end()));
  EXPECT_EQ(slice(ip, 88, 16), bytes(c.begin(), c.end()));
  EXPECT_EQ(slice(ip, 104, 8), (bytes{51, 0, 0x05, 0xc9, 0xde, 0xad, 0xbe, 0xef}));  // offset 1480, M
  EXPECT_EQ(slice(ip, 112, 12), (bytes{17, 4, 0, 0, 0, 0, 1, 0, 0, 0, 0, 7}));       // AH: 24 bytes
  EXPECT_EQ(be(ip, 136, 4), 0x00010002u);
}

TEST(PacketBuilder, VxlanHeaderCarriesTheVni) {
  const bytes f = ipv4_frame().udp(1234, 8472).vxlan(0xabcdef).eth({}, {}).ethertype(0x88b5).build();
  const std::size_t vxlan_at = eth_size + 20 + 8;
  EXPECT_EQ(be(f, eth_size + 22, 2), 8472u);
  EXPECT_EQ(be(f, vxlan_at, 4), 0x08000000u);
  EXPECT_EQ(be(f, vxlan_at + 4, 4), 0xabcdef00u);
  EXPECT_EQ(f.size(), vxlan_at + 8 + eth_size);
}

TEST(PacketBuilder, MisuseIsReportedNotEncoded) {
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"udp after eth", [] { eth_frame().udp(1, 2); }},
      {"icmpv6 after ipv4", [] { ipv4_frame().icmpv6_echo_request(1, 2); }},
      {"ttl after udp", [] { ipv4_frame().udp(1, 2).ttl(3); }},
      {"ext header after ipv4", [] { ipv4_frame().fragment(0, false, 1); }},
      {"vid too wide", [] { eth_frame().vlan(0x8100, 4096); }},
      {"label too wide", [] { eth_frame().mpls(1 << 20); }},
      {"vni too wide", [] { ipv4_frame().vxlan(1 << 24); }},
      {"unaligned fragment", [] { ipv4_frame().fragment_offset(100); }},
      {"no checksum field", [] { ipv6_frame().bad_checksum(); }},
      {"gre without checksum", [] { ipv4_frame().gre().bad_checksum(); }},
      {"options over 40 bytes", [] { ipv4_frame().ip_option(7, bytes(37)).ip_option(1).ip_option(1); }},
      {"unknown ethertype", [] { eth_frame().payload(4).build(); }},
      {"unknown IP protocol", [] { ipv4_frame().payload(4).build(); }},
      {"truncate does not shorten", [] { eth_frame().mpls(1).truncate(18).build(); }},
  };
  for (const auto& [name, misuse] : cases) {
    EXPECT_THROW(misuse(), std::invalid_argument) << name;
  }
}

}  // namespace
}  // namespace pkt
