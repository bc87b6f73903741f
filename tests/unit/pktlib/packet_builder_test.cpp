// What the builder does beyond what a dissector can see: next-protocol
// fields it fills in or is told, lengths it is told to falsify, and misuse
// it refuses. The layers and header fields themselves, checksums included,
// are checked by an independent dissector in tshark_test.
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
  };
  for (const next_case& c : cases) {
    EXPECT_EQ(slice(c.frame, c.at, c.expected.size()), c.expected) << c.name << "\n" << hex_dump(c.frame);
  }
}

TEST(PacketBuilder, FalseLengthAndTruncationOnRequest) {
  const bytes long_length = ipv4_frame().total_length(1000).protocol(253).build();
  EXPECT_EQ(be(long_length, eth_size + 2, 2), 1000u);
  EXPECT_EQ(internet_checksum(slice(long_length, eth_size, 20)), 0) << "the checksum covers the false length";
  const bytes cut = ipv4_frame().udp(1, 2).payload(100).truncate(40).build();
  EXPECT_EQ(cut.size(), 40u);
  EXPECT_EQ(be(cut, eth_size + 2, 2), 128u) << "lengths describe the whole packet";
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
