// Built frames checked by tshark, a dissector written independently of this
// builder: every layer decodes as intended and every checksum verifies,
// except the ones broken on purpose.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pktlib/hex_dump.h"
#include "pktlib/packet_builder.h"
#include "pktlib/pcap_file.h"
#include "scratch_dir.h"
#include "testkit/tshark.h"

namespace pkt {
namespace {

using bytes = std::vector<std::uint8_t>;
using testkit::dissect;
using testkit::field_values;
using testkit::read_file;
using testkit::tshark_available;

const std::vector<std::string> checksum_statuses = {"ip.checksum.status",     "udp.checksum.status",
                                                    "tcp.checksum.status",    "icmp.checksum.status",
                                                    "icmpv6.checksum.status", "gre.checksum.status"};

struct dissected_case {
  const char* name;
  bytes frame;
  const char* protocols;
  field_values fields;  // a checksum status listed here replaces "all good"
};

builder eth() { return builder().eth(mac("02:00:00:00:00:01"), mac("02:00:00:00:00:02")); }
builder eth_ipv4() { return eth().ipv4(ip4("10.0.0.1"), ip4("192.0.2.1")); }
builder eth_ipv6() { return eth().ipv6(ip6("2001:db8::1"), ip6("2001:db8::2")); }

std::vector<dissected_case> cases() {
  const ip6_addr final_dst = ip6("2001:db8:f::1"), active = ip6("2001:db8:a::1");
  return {
      {"four tags",
       eth()
           .vlan(0x88a8, 10, 3, true)
           .vlan(0x8100, 20)
           .vlan(0x9200, 30)
           .vlan(0x8100, 40)
           .ipv4(ip4("10.0.0.1"), ip4("10.0.0.2"))
           .udp(1000, 2000)
           .payload(20)
           .build(),
       "eth:ethertype:ieee8021ad:ethertype:vlan:ethertype:vlan:ethertype:vlan:ethertype:ip:udp:data",
       {{"ieee8021ad.id", "10"}, {"ieee8021ad.priority", "3"}, {"ieee8021ad.dei", "1"}, {"vlan.id", "20,30,40"}}},
      {"mpls stack",
       eth().mpls(100).mpls(200, 5, 9).ipv4(ip4("10.0.0.1"), ip4("10.0.0.2")).tcp(1, 2).build(),
       "eth:ethertype:mpls:ip:tcp",
       {{"mpls.label", "100,200"}, {"mpls.bottom", "0,1"}, {"mpls.exp", "0,5"}, {"mpls.ttl", "64,9"}}},
      {"ipv4 header fields",
       eth_ipv4().tos(0x03).dscp(46).ttl(7).id(0xbeef).dont_fragment().ip_option(1).udp(1, 2).payload(10).build(),
       "eth:ethertype:ip:udp:data",
       {{"ip.hdr_len", "24"},
        {"ip.dsfield.dscp", "46"},
        {"ip.dsfield.ecn", "3"},
        {"ip.ttl", "7"},
        {"ip.id", "0xbeef"},
        {"ip.flags.df", "1"},
        {"ip.len", "42"},
        {"udp.srcport", "1"}}},
      {"ipv4 later fragment",
       eth_ipv4().more_fragments().fragment_offset(1480).protocol(253).payload(8).build(),
       "eth:ethertype:ip:data",
       {{"ip.flags.mf", "1"}, {"ip.frag_offset", "185"}}},  // 1480 bytes in 8-byte units
      {"ipv6 header fields and a fragment header",
       eth_ipv6().tos(0xb8).flow_label(0xabcde).ttl(9).fragment(1480, true, 0xdeadbeef).udp(1, 2).payload(8).build(),
       "eth:ethertype:ipv6:ipv6.fraghdr:data",
       {{"ipv6.tclass", "0x000000b8"},
        {"ipv6.flow", "0x0abcde"},
        {"ipv6.hlim", "9"},
        {"ipv6.plen", "24"},
        {"ipv6.fraghdr.offset", "185"},
        {"ipv6.fraghdr.more", "1"},
        {"ipv6.fraghdr.ident", "0xdeadbeef"}}},
      {"ipv4 options and echo",
       eth_ipv4().ip_option(0x94, {0, 0}).ip_option(1).icmp_echo_request(7, 9).payload(56).build(),
       "eth:ethertype:ip:icmp:data",
       {{"ip.opt.type", "148,1,0"}, {"icmp.ident", "7"}, {"icmp.seq", "9"}}},
      {"srh with segments left",
       eth()
           .ipv6(ip6("2001:db8::1"), active)
           .segment_routing({final_dst, active}, 1)
           .tcp(1, 2, tcp_flags::syn, 5)
           .build(),
       "eth:ethertype:ipv6:ipv6.routing:tcp",
       {{"ipv6.routing.segleft", "1"},
        {"ipv6.routing.srh.addr", "2001:db8:f::1,2001:db8:a::1"},
        {"ipv6.dst", "2001:db8:a::1"}}},
      {"type 0 routing",
       eth_ipv6().routing(0, 1, {final_dst}).icmpv6_echo_request(1, 2).build(),
       "eth:ethertype:ipv6:ipv6.routing:icmpv6",
       {{"icmpv6.type", "128"}}},
      {"options and AH",
       eth_ipv6().hop_by_hop({5, 2, 0, 0}).destination_options().auth_header(9, 1).udp(1, 2).payload(3).build(),
       "eth:ethertype:ipv6:ipv6.hopopts:ipv6.dstopts:ah:udp:data",
       {{"ah.spi", "0x00000009"}}},
      {"gre with all options",
       eth_ipv4()
           .gre({.checksum = true, .key = 42, .seq = 3})
           .eth({}, {})
           .ipv6(ip6("2001:db8::1"), ip6("2001:db8::2"))
           .udp(1, 2)
           .build(),
       "eth:ethertype:ip:gre:eth:ethertype:ipv6:udp",
       {{"gre.key", "0x0000002a"}, {"gre.sequence_number", "3"}}},
      {"vxlan over ipv6",
       eth_ipv6()
           .tos(0xb8)
           .flow_label(0x12345)
           .vxlan(5000)
           .eth({}, {})
           .ipv4(ip4("1.1.1.1"), ip4("2.2.2.2"))
           .tcp(80, 443, tcp_flags::ack, 1, 2)
           .payload(10)
           .build(),
       "eth:ethertype:ipv6:udp:vxlan:eth:ethertype:ip:tcp",
       {{"vxlan.vni", "5000"}, {"ipv6.flow", "0x012345"}}},
      {"broken on request",
       eth_ipv4().bad_checksum().udp(1, 2).bad_checksum().payload(8).build(),
       "eth:ethertype:ip:udp:data",
       {{"ip.checksum.status", "0"}, {"udp.checksum.status", "0"}}},
      {"only inner broken",
       eth_ipv4().vxlan(1).eth({}, {}).ipv4(ip4("1.1.1.1"), ip4("2.2.2.2")).tcp(1, 2).bad_checksum().build(),
       "eth:ethertype:ip:udp:vxlan:eth:ethertype:ip:tcp",
       {{"tcp.checksum.status", "0"}}},
  };
}

TEST(Tshark, LayersDecodeAndChecksumsVerify) {
  if (!tshark_available()) GTEST_SKIP() << "tshark not installed";
  const std::vector<dissected_case> all = cases();
  std::vector<std::string> fields = {"frame.protocols"};
  fields.insert(fields.end(), checksum_statuses.begin(), checksum_statuses.end());
  std::vector<pcap_record> records;
  for (const dissected_case& c : all) {
    for (const auto& [field, value] : c.fields) fields.push_back(field);
    records.push_back(pcap_record{std::chrono::seconds(records.size()), c.frame});
  }

  scratch_dir dir;
  write_pcap(dir.file("frames.pcap"), records);
  const std::vector<field_values> frames = dissect(dir.file("frames.pcap"), fields, dir.file("stderr"));
  ASSERT_EQ(frames.size(), all.size()) << read_file(dir.file("stderr"));

  for (std::size_t i = 0; i < all.size(); ++i) {
    const dissected_case& c = all[i];
    field_values got = frames[i];
    SCOPED_TRACE(std::string(c.name) + "\n" + hex_dump(c.frame));
    EXPECT_EQ(got["frame.protocols"], c.protocols);
    for (const auto& [field, value] : c.fields) EXPECT_EQ(got[field], value) << field;
    for (const std::string& status : checksum_statuses) {
      if (c.fields.count(status)) continue;
      std::string value = got[status];
      std::erase(value, ',');
      EXPECT_EQ(value.find_first_not_of('1'), std::string::npos) << status << " = " << got[status];
    }
  }
}

}  // namespace
}  // namespace pkt
