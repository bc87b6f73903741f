// The fields the parser fills besides the vector: the line part, the
// interface's marks and the port bits, the destination class, and the
// decode bits of each protocol.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "pktlib/checksum.h"
#include "pktlib/packet_builder.h"
#include "testkit/line_card.h"
#include "testkit/param_names.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using L = dist_hdr_line_st;
using baf = baf_hdr_ing_st;
using testkit::PEER_MAC;
using testkit::ROUTER_MAC;

constexpr std::uint32_t PORT = 9;
constexpr std::uint32_t QUEUE = 6;

baf baf_of(const dist_hdr_line_st& hdr) {
  baf b;
  std::copy_n(hdr.bytes + DIST_HDR_BAF_OFFSET, sizeof b.bytes, b.bytes);
  return b;
}

class ParserFields : public ::testing::Test {
 protected:
  void SetUp() override {
    card.add_port(PORT, {.gbl_feature = true}, QUEUE);
    card.ifs().add_physical_port(PORT, testkit::line_card::routed(0x90, true, true, true)).uidb_index;
    ctrl::l3_interface vlan = testkit::line_card::routed(0x91, true, false, false);
    vlan.vrf = 7;
    vlan.ingress_ext = uidb_ext_l3_ing_st{};
    vlan_index = card.ifs().add_vlan_subinterface(PORT, {{0x8100, 100}}, vlan).uidb_index;
  }
  baf parse_baf(const bytes& frame) { return baf_of(card.parse(PORT, frame)); }

  testkit::line_card card;
  std::uint16_t vlan_index = 0;
};

TEST_F(ParserFields, LinePartAndInterfaceOfATaggedFrame) {
  const bytes frame = pkt::builder()
                          .eth(PEER_MAC, ROUTER_MAC)
                          .vlan(0x8100, 100, 5, true)
                          .ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1"))
                          .udp(1, 2)
                          .payload(10)
                          .build();
  const dist_hdr_line_st hdr = card.parse(PORT, frame);
  EXPECT_EQ(L::dst_format::get(hdr), DST_FORMAT_LINE);
  EXPECT_EQ(L::pktlen::get(hdr), frame.size());
  EXPECT_EQ(L::igpb_queue::get(hdr), QUEUE);
  EXPECT_EQ(L::frame_type::get(hdr), bufhdr_l3_type_ipv4_e);
  // The interface, its marks and the port's bits steer the handlers the
  // ingress scenario follows; what they do not show stands here.
  const baf b = baf_of(hdr);
  EXPECT_EQ(baf::l3_offset::get(b), 18u);
  EXPECT_EQ(baf::vlan_pbits::get(b), 0xBu);  // priority 5, DEI set
  EXPECT_EQ(baf::uidb_index::get(b), vlan_index);
  EXPECT_EQ(baf::port_bits_gbl_feature::get(b), 1u);
  EXPECT_EQ(baf::mark_l3::ext_req::get(b), 1u);
  EXPECT_EQ(baf::mark_l3::global_vrf::get(b), 0u);
}

TEST_F(ParserFields, EachFrameHasAHandleOfItsOwn) {
  const bytes frame = pkt::builder().eth(PEER_MAC, ROUTER_MAC).ethertype(0x0806).payload(28).build();
  EXPECT_NE(L::gpm_pkt_handle::get(card.parse(PORT, frame)), L::gpm_pkt_handle::get(card.parse(PORT, frame)));
}

struct da_row {
  const char* dst;
  std::uint32_t da_bits;
};

TEST_F(ParserFields, DestinationClassOfEachKindOfMac) {
  const da_row rows[] = {
      {"02:00:00:00:00:01", 1},  // the router's
      {"02:00:00:00:00:02", 0}, {"01:80:c2:00:00:0e", 2}, {"01:00:0c:cc:cc:cd", 2}, {"01:00:0c:cd:cd:d0", 2},
      {"01:00:5e:90:00:01", 2}, {"01:00:5e:90:00:02", 3}, {"ff:ff:ff:ff:ff:ff", 3},
  };
  for (const da_row& r : rows) {
    const bytes frame = pkt::builder().eth(PEER_MAC, pkt::mac(r.dst)).ethertype(0x0806).payload(28).build();
    EXPECT_EQ(baf::da_bits::get(parse_baf(frame)), r.da_bits) << r.dst;
  }
}

// A decode bit by its descriptor, and the value a frame gives it.
struct bit {
  const char* name;
  std::uint32_t (*get)(const baf&);
  std::uint32_t want;
};
#define BIT(F, v) \
  bit { #F, &F::get < baf>, v }

struct decode_row {
  const char* what;
  bytes frame;
  std::vector<bit> bits;
};

void PrintTo(const decode_row& r, std::ostream* os) { *os << r.what; }

pkt::builder eth() { return pkt::builder().eth(PEER_MAC, ROUTER_MAC); }
pkt::builder v4(const char* src = "10.0.0.1", const char* dst = "192.0.2.1") {
  return eth().ipv4(pkt::ip4(src), pkt::ip4(dst));
}
pkt::builder v6(const char* src = "2001:db8::1", const char* dst = "2001:db8::2") {
  return eth().ipv6(pkt::ip6(src), pkt::ip6(dst));
}
bytes with_udp(pkt::builder b) { return b.udp(1, 2).payload(4).build(); }

// The builder puts a host address in place of a source of 0.0.0.0: a DHCP
// client's frame gets its source here, with the header checksum again.
bytes from_unspecified(bytes frame) {
  constexpr std::size_t IP = 14, SRC = IP + 12, CHECKSUM = IP + 10;
  std::fill_n(frame.begin() + SRC, 4, 0);
  std::fill_n(frame.begin() + CHECKSUM, 2, 0);
  const std::uint16_t sum = pkt::internet_checksum({frame.data() + IP, 20});
  frame[CHECKSUM] = static_cast<std::uint8_t>(sum >> 8);
  frame[CHECKSUM + 1] = static_cast<std::uint8_t>(sum);
  return frame;
}

using v4b = baf::v4;
using v6b = baf::v6;
using mb = baf::mpls;

std::vector<decode_row> decode_rows() {
  return {
      {"clean IPv4",
       with_udp(v4()),
       {BIT(v4b::is_mcast, 0), BIT(v4b::no_more_frags, 1), BIT(v4b::frag_offset_0, 1), BIT(v4b::not_gre, 1),
        BIT(v4b::payloadlen_gte_4, 1), BIT(v4b::frame_gte_hdrtotlen, 1), BIT(v4b::frame_gte_hdrlen, 1),
        BIT(v4b::addr_bootp_dhcp, 0), BIT(v4b::hdrlen_vld, 1), BIT(v4b::no_ip_options, 1), BIT(v4b::hdr_chksum_vld, 1),
        BIT(v4b::addr_sane, 1), BIT(v4b::ttl_gt_1, 1)}},
      {"IPv4 later fragment with more to follow",
       v4().more_fragments().fragment_offset(8).protocol(17).payload(8).build(),
       {BIT(v4b::no_more_frags, 0), BIT(v4b::frag_offset_0, 0)}},
      {"IPv4 GRE", v4().protocol(47).payload(8).build(), {BIT(v4b::not_gre, 0)}},
      {"IPv4 with 2 bytes of payload",
       v4().protocol(17).payload(2).build(),
       {BIT(v4b::payloadlen_gte_4, 0), BIT(v4b::hdrlen_vld, 1)}},
      {"IPv4 with options",
       with_udp(v4().ip_option(1)),
       {BIT(v4b::no_ip_options, 0), BIT(v4b::hdr_chksum_vld, 1), BIT(v4b::hdrlen_vld, 1)}},
      {"IPv4 with a bad checksum", with_udp(v4().bad_checksum()), {BIT(v4b::hdr_chksum_vld, 0)}},
      {"IPv4 total length beyond the frame",
       with_udp(v4().total_length(100)),
       {BIT(v4b::frame_gte_hdrtotlen, 0), BIT(v4b::frame_gte_hdrlen, 1)}},
      {"IPv4 total length inside its header", with_udp(v4().total_length(16)), {BIT(v4b::hdrlen_vld, 0)}},
      {"DHCP client",
       from_unspecified(with_udp(v4("10.0.0.1", "255.255.255.255"))),
       {BIT(v4b::addr_bootp_dhcp, 1), BIT(v4b::addr_sane, 1)}},
      {"IPv4 from a group", with_udp(v4("224.0.0.5", "192.0.2.1")), {BIT(v4b::addr_sane, 0)}},
      {"IPv4 to 0.0.0.0", with_udp(v4("10.0.0.1", "0.0.0.0")), {BIT(v4b::addr_sane, 0)}},
      {"IPv4 to a group", with_udp(v4("10.0.0.1", "239.1.1.1")), {BIT(v4b::is_mcast, 1), BIT(v4b::addr_sane, 1)}},
      {"IPv4 TTL 2", with_udp(v4().ttl(2)), {BIT(v4b::ttl_gt_1, 1)}},
      {"IPv4 TTL 1", with_udp(v4().ttl(1)), {BIT(v4b::ttl_gt_1, 0)}},
      {"IPv4 cut inside its header",
       v4().protocol(17).payload(4).truncate(14 + 19).build(),
       {BIT(v4b::frame_gte_hdrlen, 0), BIT(v4b::hdrlen_vld, 0), BIT(v4b::ttl_gt_1, 0)}},
      {"clean IPv6 UDP",
       with_udp(v6()),
       {BIT(v6b::dip_is_multicast, 0), BIT(v6b::sip_is_link_local, 0), BIT(v6b::dip_is_link_local, 0),
        BIT(v6b::nxthdr_is_gre, 0), BIT(v6b::payloadlen_gte_4, 1), BIT(v6b::frame_gte_hdrtotlen, 1),
        BIT(v6b::frame_gte_40, 1), BIT(v6b::nxthdr_is_icmp_v6, 0), BIT(v6b::nxthdr_is_sctp, 0),
        BIT(v6b::nxthdr_is_udp, 1), BIT(v6b::nxthdr_is_tcp, 0), BIT(v6b::addr_sane, 1), BIT(v6b::hop_limit_gt_1, 1)}},
      {"IPv6 TCP", v6().tcp(1, 2).build(), {BIT(v6b::nxthdr_is_tcp, 1), BIT(v6b::nxthdr_is_udp, 0)}},
      {"ICMPv6", v6().icmpv6_echo_request(1, 1).build(), {BIT(v6b::nxthdr_is_icmp_v6, 1)}},
      {"IPv6 SCTP", v6().protocol(132).payload(12).build(), {BIT(v6b::nxthdr_is_sctp, 1)}},
      {"IPv6 GRE", v6().protocol(47).payload(8).build(), {BIT(v6b::nxthdr_is_gre, 1)}},
      {"IPv6 link-local",
       with_udp(v6("fe80::1", "febf::2")),
       {BIT(v6b::sip_is_link_local, 1), BIT(v6b::dip_is_link_local, 1), BIT(v6b::addr_sane, 1)}},
      {"IPv6 to a group",
       with_udp(v6("2001:db8::1", "ff02::1")),
       {BIT(v6b::dip_is_multicast, 1), BIT(v6b::addr_sane, 1)}},
      {"IPv6 from a group", with_udp(v6("ff02::1", "2001:db8::2")), {BIT(v6b::addr_sane, 0)}},
      {"IPv6 to ::", with_udp(v6("2001:db8::1", "::")), {BIT(v6b::addr_sane, 0)}},
      {"IPv6 from :: to ff02::2", with_udp(v6("::", "ff02::2")), {BIT(v6b::addr_sane, 1)}},
      {"IPv6 from :: to ff02::3", with_udp(v6("::", "ff02::3")), {BIT(v6b::addr_sane, 0)}},
      {"IPv6 with 2 bytes of payload", v6().protocol(59).payload(2).build(), {BIT(v6b::payloadlen_gte_4, 0)}},
      {"IPv6 cut inside its payload",
       v6().udp(1, 2).payload(20).truncate(14 + 50).build(),
       {BIT(v6b::frame_gte_hdrtotlen, 0), BIT(v6b::frame_gte_40, 1)}},
      {"IPv6 cut inside its header",
       v6().udp(1, 2).truncate(14 + 39).build(),
       {BIT(v6b::frame_gte_40, 0), BIT(v6b::hop_limit_gt_1, 0)}},
      {"IPv6 hop limit 1", with_udp(v6().ttl(1)), {BIT(v6b::hop_limit_gt_1, 0)}},
      {"one label",
       eth().mpls(100).payload(20).build(),
       {BIT(mb::mpls_is_multicast, 0), BIT(mb::mpls_lt_5_labels, 1), BIT(mb::mpls_num_labels, 1),
        BIT(mb::mpls_gt_1_label, 0), BIT(mb::found_entropy_label, 0), BIT(mb::mpls_inner_label_not_gal, 1),
        BIT(mb::mpls_outer_label_gt_15, 1), BIT(mb::mpls_ttl_gt_1, 1)}},
      {"three labels",
       eth().mpls(100).mpls(200).mpls(300).payload(20).build(),
       {BIT(mb::mpls_num_labels, 3), BIT(mb::mpls_gt_1_label, 1), BIT(mb::mpls_lt_5_labels, 1)}},
      {"GAL at the bottom",
       eth().mpls(100).mpls(13).payload(20).build(),
       {BIT(mb::mpls_num_labels, 2), BIT(mb::mpls_inner_label_not_gal, 0)}},
      {"a reserved top label", eth().mpls(3).payload(20).build(), {BIT(mb::mpls_outer_label_gt_15, 0)}},
      {"label 16 on top", eth().mpls(16).payload(20).build(), {BIT(mb::mpls_outer_label_gt_15, 1)}},
      {"five labels",
       eth().mpls(16).mpls(17).mpls(18).mpls(19).mpls(20).payload(20).build(),
       {BIT(mb::mpls_num_labels, 0), BIT(mb::mpls_lt_5_labels, 0), BIT(mb::mpls_gt_1_label, 1),
        BIT(mb::mpls_inner_label_not_gal, 0)}},
      {"an entropy label indicator below the top",
       eth().mpls(100).mpls(7).mpls(1234).payload(20).build(),
       {BIT(mb::found_entropy_label, 1), BIT(mb::entropy_label_offset, 1)}},
      {"label 7 on top", eth().mpls(7).mpls(1234).payload(20).build(), {BIT(mb::found_entropy_label, 0)}},
      {"top TTL 1", eth().mpls(100, 0, 1).payload(20).build(), {BIT(mb::mpls_ttl_gt_1, 0)}},
      {"multicast labels",
       eth().ethertype(0x8848).raw({0, 0x64, 0x11, 64}).build(),
       {BIT(mb::mpls_is_multicast, 1), BIT(mb::mpls_num_labels, 1)}},
      {"a stack cut before its bottom",
       eth().mpls(100).mpls(200).payload(8).truncate(14 + 6).build(),
       {BIT(mb::mpls_num_labels, 0), BIT(mb::mpls_lt_5_labels, 0), BIT(mb::mpls_gt_1_label, 0)}},
  };
}

class ParserDecodeBits : public ParserFields, public ::testing::WithParamInterface<decode_row> {};

TEST_P(ParserDecodeBits, FrameGivesTheBitsOfItsHeader) {
  const baf b = parse_baf(GetParam().frame);
  for (const bit& want : GetParam().bits) EXPECT_EQ(want.get(b), want.want) << want.name;
}

INSTANTIATE_TEST_SUITE_P(Frames, ParserDecodeBits, ::testing::ValuesIn(decode_rows()), testkit::described<decode_row>);

}  // namespace
