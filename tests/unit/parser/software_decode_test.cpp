// The program's own decode of a frame that lost its outer headers, and its
// agreement with the parser on what both compute.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "npu/zephra/pkt_decode.h"
#include "npu/zephra/pkt_rx.h"
#include "pktlib/packet_builder.h"
#include "testkit/line_card.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using baf = baf_hdr_ing_st;
using testkit::PEER_MAC;
using testkit::ROUTER_MAC;

constexpr std::uint32_t PORT = 1;

pkt::builder eth(pkt::mac_addr dst = ROUTER_MAC) { return pkt::builder().eth(PEER_MAC, dst); }

class SoftwareDecode : public ::testing::Test {
 protected:
  struct decoded {
    baf b;
    std::uint32_t curr_pkt_len;
  };
  // Runs a decode on the NPU thread, from a baf part that starts as `start`,
  // with the L2 lengths that a caller of the decode gives.
  template <class Decode>
  decoded run(const baf& start, std::uint32_t l2_hdr_len, std::uint32_t l2_frame_len, Decode decode_fn) {
    decoded out{};
    card.harness().on_thread([&](env_t env) {
      std::memcpy(env->dist_hdr + DIST_HDR_BAF_OFFSET, start.bytes, sizeof start.bytes);
      *ps_put_def_l2_hdr_len(env) = l2_hdr_len;
      *ps_put_def_l2_frame_len(env) = l2_frame_len;
      decode_fn(env);
      out = {pkt_rx_baf(env), *ps_get_curr_pkt_len(env)};
    });
    return out;
  }
  baf decode(const bytes& frame, std::uint32_t l2_hdr_len) {
    const auto size = static_cast<std::uint32_t>(frame.size());
    return run({}, l2_hdr_len, size, [&](env_t env) { npu_ing_pkt_decode(env, frame.data(), FALSE); }).b;
  }
  baf parse(const bytes& frame) {
    const dist_hdr_line_st hdr = card.parse(PORT, frame);
    baf b;
    std::memcpy(b.bytes, hdr.bytes + DIST_HDR_BAF_OFFSET, sizeof b.bytes);
    return b;
  }

  testkit::line_card card;
};

TEST_F(SoftwareDecode, LengthsComeFromTheL2LengthsAndThePortBitsAreCleared) {
  baf start{};
  baf::traffic_type::set(start, 1);
  baf::baf_override_common::portbits::set(start, 0xFFF);
  baf::da_bits::set(start, 3);
  const bytes frame = eth().vlan(0x8100, 5).ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1")).udp(1, 2).build();
  const std::uint32_t l2_frame_len = 0x10000 + 40;  // only the low 16 bits count
  const auto [out, curr_pkt_len] =
      run(start, 18, l2_frame_len, [&](env_t env) { npu_ing_pkt_decode(env, frame.data(), TRUE); });
  EXPECT_EQ(baf::l3_offset::get(out), 18u);
  EXPECT_EQ(baf::traffic_type::get(out), 1u);  // the top bit of the offset's byte stays
  EXPECT_EQ(baf::port_bits_l3_lb_hash::get(out), 1u);
  EXPECT_EQ(baf::port_bits_ext::get(out), 1u);
  EXPECT_EQ(baf::baf_override_common::portbits::get(out), 0xC00u);
  EXPECT_EQ(curr_pkt_len, 40u);
  // vlan_parse_only: nothing more.
  EXPECT_EQ(baf::da_bits::get(out), 3u);
  EXPECT_EQ(baf::l3_type::get(out), 0u);
}

// Unlike the parser, the program's decode takes any station for this router.
TEST_F(SoftwareDecode, AnyStationIsThisRouters) {
  const baf b = decode(eth(PEER_MAC).ethertype(0x0806).payload(28).build(), 14);
  EXPECT_EQ(baf::da_bits::get(b), 1u);
  EXPECT_EQ(baf::l3_type::get(b), bufhdr_l3_type_other_e);
}

TEST_F(SoftwareDecode, FourLabelsWithoutABottomCountNone) {
  const bytes frame = eth().mpls(16).mpls(17).mpls(18).mpls(19).mpls(20).payload(20).build();
  const baf b = decode(frame, 14);
  EXPECT_EQ(baf::l3_type::get(b), bufhdr_l3_type_mpls_e);
  EXPECT_EQ(baf::mpls::mpls_num_labels::get(b), 0u);
  EXPECT_EQ(baf::mpls::mpls_inner_label_not_gal::get(b), 0u);
  EXPECT_EQ(baf::mpls::mpls_lt_5_labels::get(b), 1u);  // always, in the software walk
  EXPECT_EQ(baf::mpls::mpls_gt_1_label::get(b), 0u);
}

// What both decodes compute, for frames whose labels end within four and
// frames to the router, to control groups and to other groups.
TEST_F(SoftwareDecode, AgreesWithTheParser) {
  card.add_port(PORT);
  card.ifs().add_physical_port(PORT, testkit::line_card::routed(0x10, true, true, true));
  const std::vector<bytes> frames = {
      eth().ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1")).udp(1, 2).build(),
      eth(pkt::mac("01:00:5e:01:01:01"))
          .vlan(0x8100, 9)
          .ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("239.1.1.1"))
          .udp(1, 2)
          .build(),
      eth().ipv6(pkt::ip6("fe80::1"), pkt::ip6("2001:db8::2")).udp(1, 2).build(),
      eth(pkt::mac("33:33:00:00:00:01")).ipv6(pkt::ip6("2001:db8::1"), pkt::ip6("ff02::1")).udp(1, 2).build(),
      eth().ipv6(pkt::ip6("2001:db8::1"), pkt::ip6("fe80::2")).udp(1, 2).build(),
      eth().mpls(100).mpls(200).ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1")).udp(1, 2).build(),
      eth().mpls(3, 0, 1).mpls(13).payload(8).build(),
      eth(pkt::mac("01:80:c2:00:00:02")).ethertype(0x8809).payload(40).build(),
      eth(pkt::mac("01:00:5e:90:00:01")).ethertype(0x0806).payload(28).build(),  // a well-known group: control
      eth(pkt::mac("01:00:5e:90:00:02")).ethertype(0x0806).payload(28).build(),  // any other: multicast
  };
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const baf hw = parse(frames[i]);
    const baf sw = decode(frames[i], baf::l3_offset::get(hw));
    EXPECT_EQ(baf::l3_type::get(sw), baf::l3_type::get(hw)) << i;
    EXPECT_EQ(baf::l3_offset::get(sw), baf::l3_offset::get(hw)) << i;
    EXPECT_EQ(baf::da_bits::get(sw), baf::da_bits::get(hw)) << i;  // the router's MAC, or groups
    switch (baf::l3_type::get(hw)) {
      case bufhdr_l3_type_ipv4_e:
        EXPECT_EQ(baf::v4::is_mcast::get(sw), baf::v4::is_mcast::get(hw)) << i;
        break;
      case bufhdr_l3_type_ipv6_e:
        EXPECT_EQ(baf::v6::dip_is_multicast::get(sw), baf::v6::dip_is_multicast::get(hw)) << i;
        EXPECT_EQ(baf::v6::sip_is_link_local::get(sw), baf::v6::sip_is_link_local::get(hw)) << i;
        EXPECT_EQ(baf::v6::dip_is_link_local::get(sw), baf::v6::dip_is_link_local::get(hw)) << i;
        break;
      case bufhdr_l3_type_mpls_e:
        for (auto get : {&baf::mpls::mpls_num_labels::get<baf>, &baf::mpls::mpls_gt_1_label::get<baf>,
                         &baf::mpls::mpls_inner_label_not_gal::get<baf>, &baf::mpls::mpls_outer_label_gt_15::get<baf>,
                         &baf::mpls::mpls_ttl_gt_1::get<baf>}) {
          EXPECT_EQ(get(sw), get(hw)) << i;
        }
        break;
      default:
        break;
    }
  }
}

}  // namespace
