// Load-balance hashes over real packets from the packet builder: each hash
// takes exactly the fields it should. Expected values are the hash unit's
// final step (checked against golden values in table_hash_test.cpp) over the
// words the flow is made of.
#include "dplane/infra/load_balance.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "dplane/infra/ps.h"
#include "global_config.h"
#include "npu/zephra/hash_fns.h"
#include "npu/zephra/pkt_rx.h"
#include "pktlib/packet_builder.h"
#include "testkit/npu_harness.h"

namespace {

using bytes = std::vector<std::uint8_t>;
namespace gc = global_config_bits;

constexpr std::uint32_t ROUTER_ID = 0x0A0B0C0D;
constexpr std::uint32_t IFH = 0x00C0FFEE;
constexpr std::uint32_t L2 = 14;  // the builder's untagged Ethernet header

std::uint32_t final_of(std::uint32_t a, std::uint32_t b, std::uint32_t c) { return hash_unit_final({a, b, c}); }
std::uint32_t word(const bytes& f, std::size_t at) {
  return (std::uint32_t{f[at]} << 24) | (std::uint32_t{f[at + 1]} << 16) | (std::uint32_t{f[at + 2]} << 8) | f[at + 3];
}
// The IPv4 flow: destination and source plus the partial, router ID.
std::uint32_t v4_flow(std::uint32_t src, std::uint32_t dst, std::uint32_t p) {
  return final_of(dst + p, src + p, ROUTER_ID);
}
std::uint32_t v6_flow(const bytes& f, std::size_t ip, std::uint32_t p) {
  auto w = [&](std::size_t i) { return word(f, ip + 8 + 4 * i); };  // s0..s3 at 8, d0..d3 at 24
  return final_of(((w(4) + w(6)) ^ (w(5) + w(7))) + p, ((w(0) + w(1)) ^ (w(2) + w(3))) + p, ROUTER_ID);
}

// A frame at its arrival place, with the global configuration and the
// distribution header's MPLS and L3 fields a test sets.
class LoadBalance : public testing::Test {
 protected:
  testkit::npu_harness h;
  std::uint32_t config = 0;
  std::function<void(env_t)> prepare = [](env_t) {};

  std::uint32_t hash(const bytes& frame, const std::function<std::uint32_t(env_t, std::uint8_t*)>& fn) {
    std::uint32_t out = 0;
    h.on_thread([&](env_t env) {
      std::memset(env->dist_hdr, 0, sizeof env->dist_hdr);
      std::uint8_t* start = *ps_get_pkt_mem_start(env) + PKT_START_OFFSET;
      std::memcpy(start, frame.data(), frame.size());
      *ps_put_mod_pkt_start(env) = start;
      *ps_put_mod_curr_pkt_len(env) = static_cast<std::uint16_t>(frame.size());
      dist_hdr_line_st::pktlen::set(pkt_rx_line_hdr_mod(env), static_cast<std::uint32_t>(frame.size()));
      *ps_put_mod_global_uidb_reg(env) = config;
      *ps_put_mod_global_uidb_reg_router_id(env) = ROUTER_ID;
      *ps_put_mod_common_flags(env) = {};
      *ps_put_mod_common_flags2(env) = {};
      *ps_put_mod_l2_hdr_len(env) = 0;
      prepare(env);
      out = fn(env, start);
    });
    return out;
  }
  std::uint32_t ipv4(const bytes& f) {
    return hash(f, [](env_t env, std::uint8_t* s) {
      return hash_lb_ipv4(env, reinterpret_cast<ipv4_hdr_st*>(s + L2), IFH, ROUTER_ID);
    });
  }
  std::uint32_t ipv4_racetrack(const bytes& f) {
    return hash(f, [](env_t env, std::uint8_t* s) {
      return hash_lb_ipv4_racetrack(env, reinterpret_cast<ipv4_hdr_st*>(s + L2), IFH, ROUTER_ID);
    });
  }
  std::uint32_t ipv6(const bytes& f) {
    return hash(f, [](env_t env, std::uint8_t* s) {
      return hash_lb_ipv6(env, reinterpret_cast<ipv6_hdr_st*>(s + L2), IFH, ROUTER_ID);
    });
  }
  std::uint32_t mpls(const bytes& f) {
    return hash(f, [](env_t env, std::uint8_t* s) {
      return hash_lb_mpls_inline(env, reinterpret_cast<mpls_hdr_st*>(s + L2), IFH, ROUTER_ID);
    });
  }
};

pkt::builder v4(const char* src = "10.0.0.1", const char* dst = "192.0.2.9") {
  pkt::builder b;
  b.eth(pkt::mac("00:00:00:00:00:01"), pkt::mac("00:00:00:00:00:02")).ipv4(pkt::ip4(src), pkt::ip4(dst));
  return b;
}
constexpr std::uint32_t SRC4 = 0x0A000001;
constexpr std::uint32_t DST4 = 0xC0000209;
constexpr std::size_t L4_4 = L2 + 20;

TEST_F(LoadBalance, IPv4WithoutSevenTupleHashesTheAddressesAlone) {
  const bytes tcp = v4().tcp(1000, 80).payload(8).build();
  EXPECT_EQ(ipv4(tcp), v4_flow(SRC4, DST4, 0));
  EXPECT_EQ(ipv4(v4().udp(5, 6).payload(8).build()), ipv4(tcp));
  EXPECT_NE(ipv4(v4("10.0.0.2").tcp(1000, 80).payload(8).build()), ipv4(tcp));
  EXPECT_NE(ipv4(v4("10.0.0.1", "192.0.2.8").tcp(1000, 80).payload(8).build()), ipv4(tcp));
}

TEST_F(LoadBalance, IPv4WithSevenTupleAddsInterfaceProtocolAndPorts) {
  config = gc::LB_7_TUPLE;
  const bytes tcp = v4().tcp(1000, 80).payload(8).build();
  EXPECT_EQ(ipv4(tcp), v4_flow(SRC4, DST4, IFH ^ 6 ^ word(tcp, L4_4)));
  const bytes sctp = v4().protocol(132).raw({0, 1, 0, 2, 9, 9, 9, 9, 9, 9, 9, 9}).build();
  EXPECT_EQ(ipv4(sctp), v4_flow(SRC4, DST4, IFH ^ 132 ^ 0x00010002));
  const bytes icmp = v4().icmp(8).payload(8).build();
  EXPECT_EQ(ipv4(icmp), v4_flow(SRC4, DST4, IFH ^ 1));
}

TEST_F(LoadBalance, IPv4FragmentsHashWithoutPortsUnlessRacetrack) {
  config = gc::LB_7_TUPLE;
  const bytes first = v4().more_fragments().udp(1000, 53).payload(8).build();
  const bytes later = v4().fragment_offset(64).udp(1000, 53).payload(8).build();
  EXPECT_EQ(ipv4(first), v4_flow(SRC4, DST4, IFH ^ 17));
  EXPECT_EQ(ipv4(later), v4_flow(SRC4, DST4, IFH ^ 17));
  EXPECT_EQ(ipv4_racetrack(first), v4_flow(SRC4, DST4, IFH ^ 17 ^ word(first, L4_4)));
  EXPECT_EQ(ipv4(v4().dont_fragment().udp(1000, 53).payload(8).build()),
            v4_flow(SRC4, DST4, IFH ^ 17 ^ word(first, L4_4)));
}

TEST_F(LoadBalance, IPv4HeadersCutShortFallBackToWhatFits) {
  config = gc::LB_7_TUPLE;
  const bytes tcp = v4().tcp(1000, 80).build();
  EXPECT_EQ(ipv4(bytes(tcp.begin(), tcp.begin() + L4_4 + 3)), v4_flow(SRC4, DST4, IFH ^ 6));
  EXPECT_EQ(ipv4(bytes(tcp.begin(), tcp.begin() + L2 + 19)), v4_flow(SRC4, DST4, IFH));
}

// GTP-U on UDP port 2152: version 1 without options, inner IPv4.
bytes gtp_v1(std::uint8_t flags, std::uint32_t teid, std::size_t cut = 0) {
  bytes gtp = {flags,
               0xFF,
               0,
               28,
               static_cast<std::uint8_t>(teid >> 24),
               static_cast<std::uint8_t>(teid >> 16),
               static_cast<std::uint8_t>(teid >> 8),
               static_cast<std::uint8_t>(teid)};
  bytes inner = pkt::builder().ipv4(pkt::ip4("172.16.0.1"), pkt::ip4("172.16.0.2")).udp(7, 8).build();
  gtp.insert(gtp.end(), inner.begin(), inner.end());
  bytes f = v4().udp(2152, 2152).raw(gtp).build();
  if (cut) f.resize(cut);
  return f;
}
constexpr std::uint32_t INNER_SRC = 0xAC100001;
constexpr std::uint32_t INNER_DST = 0xAC100002;

TEST_F(LoadBalance, GtpTunnelsHashByTeidAndInnerAddresses) {
  config = gc::LB_7_TUPLE;
  const bytes plain = gtp_v1(0x30, 0x11223344);
  EXPECT_EQ(ipv4(plain), v4_flow(SRC4, DST4, IFH ^ 17 ^ (0x11223344 ^ INNER_SRC ^ INNER_DST)));
  EXPECT_NE(ipv4(gtp_v1(0x30, 0x11223345)), ipv4(plain));
  // Extension headers: the ports word.
  const bytes ext = gtp_v1(0x34, 0x11223344);
  EXPECT_EQ(ipv4(ext), v4_flow(SRC4, DST4, IFH ^ 17 ^ word(ext, L4_4)));
  // Fewer than 16 bytes behind the UDP header: the ports word.
  const bytes short_one = gtp_v1(0x30, 0x11223344, L4_4 + 15);
  EXPECT_EQ(ipv4(short_one), v4_flow(SRC4, DST4, IFH ^ 17 ^ word(short_one, L4_4)));
  // Without 7-tuple the tunnel plays no part.
  config = 0;
  EXPECT_EQ(ipv4(plain), v4_flow(SRC4, DST4, 0));
}

pkt::builder v6(std::uint32_t flow_label = 0) {
  pkt::builder b;
  b.eth(pkt::mac("00:00:00:00:00:01"), pkt::mac("00:00:00:00:00:02"))
      .ipv6(pkt::ip6("2001:db8::1"), pkt::ip6("2001:db8:1::2"))
      .flow_label(flow_label);
  return b;
}
constexpr std::size_t L4_6 = L2 + 40;

TEST_F(LoadBalance, IPv6FlowLabelCountsOnlyWhenConfigured) {
  const bytes a = v6(0x12345).tcp(1000, 80).build();
  const bytes b = v6(0x54321).tcp(1000, 80).build();
  EXPECT_EQ(ipv6(a), v6_flow(a, L2, 0));
  EXPECT_EQ(ipv6(a), ipv6(b));
  config = gc::IPV6_FLOW_LABEL_HASH;
  EXPECT_EQ(ipv6(a), v6_flow(a, L2, 0x12345));
  EXPECT_NE(ipv6(a), ipv6(b));
}

TEST_F(LoadBalance, IPv6SevenTupleTakesPortsBehindTheExtensionHeaders) {
  config = gc::LB_7_TUPLE;
  const bytes tcp = v6().tcp(1000, 80).build();
  EXPECT_EQ(ipv6(tcp), v6_flow(tcp, L2, IFH ^ 6 ^ word(tcp, L4_6)));
  const bytes opts = v6().destination_options().tcp(1000, 80).build();
  EXPECT_EQ(ipv6(opts), v6_flow(opts, L2, IFH ^ 6 ^ word(opts, L4_6 + 8)));
  const bytes frag = v6().fragment(0, true, 7).udp(1000, 53).build();
  EXPECT_EQ(ipv6(frag), v6_flow(frag, L2, IFH ^ 17));
  config = gc::LB_7_TUPLE | gc::IPV6_FLOW_LABEL_HASH;
  const bytes labelled = v6(0xABCDE).tcp(1000, 80).build();
  EXPECT_EQ(ipv6(labelled), v6_flow(labelled, L2, IFH ^ 6 ^ word(labelled, L4_6) ^ 0xABCDE));
}

TEST_F(LoadBalance, IPv6WithABadExtensionChainHashesWithoutProtocolAndPorts) {
  config = gc::LB_7_TUPLE;
  const bytes f = v6().destination_options().hop_by_hop().tcp(1000, 80).build();
  EXPECT_EQ(ipv6(f), v6_flow(f, L2, IFH));
  bool walked = true;
  h.on_thread([&](env_t env) { walked = common_flags_st::ipv6_ext_hdr_parsed::get(*ps_get_common_flags(env)); });
  EXPECT_FALSE(walked);
}

// MPLS stacks: label words with bottom-of-stack on the last.
bytes mpls_frame(const std::vector<std::uint32_t>& labels, const bytes& payload, std::uint8_t eli_ttl = 0) {
  pkt::builder b;
  b.eth(pkt::mac("00:00:00:00:00:01"), pkt::mac("00:00:00:00:00:02"));
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const bool entropy = i > 0 && labels[i - 1] == MPLS_LABEL_ELI;
    b.mpls(labels[i], 0, entropy ? eli_ttl : 64);
  }
  b.raw(payload);
  return b.build();
}
const bytes NOT_IP = {0x00, 1, 2, 3, 4, 5, 6, 7};

std::function<void(env_t)> parsed_stack(std::uint32_t labels, std::uint32_t eli_place = 0) {
  return [=](env_t env) {
    baf_hdr_ing_st::mpls::mpls_num_labels::set(pkt_rx_baf_mod(env), labels);
    if (eli_place) pkt_set_rx_entropy_label(env, eli_place);
  };
}
bool entropy_invalid(testkit::npu_harness& h) {
  bool set = false;
  h.on_thread(
      [&](env_t env) { set = common_flags2_st::entropy_label_invalid_or_is_sfi::get(*ps_get_common_flags2(env)); });
  return set;
}

TEST_F(LoadBalance, AValidEntropyLabelIsTheHash) {
  config = gc::ENTROPY_LB;
  prepare = parsed_stack(4, 1);
  const bytes f = mpls_frame({100, MPLS_LABEL_ELI, 0xABCDE, 200}, NOT_IP);
  EXPECT_EQ(mpls(f), IFH - ROUTER_ID + 0xABCDE * 0x402001u);
  EXPECT_FALSE(entropy_invalid(h));
  // Without the global setting the stack is hashed by its bottom label.
  config = 0;
  EXPECT_EQ(mpls(f), IFH - ROUTER_ID + 200 * 0x402001u);
}

TEST_F(LoadBalance, AnInvalidEntropyLabelGivesZeroAndIsMarked) {
  config = gc::ENTROPY_LB;
  prepare = parsed_stack(4, 1);
  EXPECT_EQ(mpls(mpls_frame({100, MPLS_LABEL_ELI, 0xABCDE, 200}, NOT_IP, 5)), 0u);
  EXPECT_TRUE(entropy_invalid(h));
}

TEST_F(LoadBalance, MoreThanFourLabelsAreCountedAndTheLowestThreeHashed) {
  prepare = parsed_stack(0);
  const bytes f = mpls_frame({11, 12, 13, 14, 15}, NOT_IP);
  const auto term = [](std::uint32_t x, unsigned k) { return (x << 12) | ((x >> k) & 0xFFF); };
  const std::uint32_t ifh_reversed = 0xEEFFC000;
  EXPECT_EQ(mpls(f), term(15, 1) + term(14, 2) + term(13, 3) + ifh_reversed - ROUTER_ID);
  // The same stack over IPv4 hashes the IPv4 packet.
  const bytes ip = pkt::builder().ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.9")).udp(1, 2).build();
  EXPECT_EQ(mpls(mpls_frame({11, 12, 13, 14, 15}, ip)), v4_flow(SRC4, DST4, 0));
}

TEST_F(LoadBalance, AnEntropyIndicatorAtTheTopOfALongStackIsInvalid) {
  config = gc::ENTROPY_LB;
  prepare = parsed_stack(0);
  EXPECT_EQ(mpls(mpls_frame({MPLS_LABEL_ELI, 0x1234, 13, 14, 15}, NOT_IP)), 0u);
  EXPECT_TRUE(entropy_invalid(h));
}

TEST_F(LoadBalance, EthernetHashesTheTwoAddressesAlone) {
  const bytes a = v4().tcp(1, 2).build();
  const auto ether = [](env_t, std::uint8_t* s) { return hash_lb_ether(reinterpret_cast<ether_hdr*>(s)); };
  EXPECT_EQ(hash(a, ether), final_of(word(a, 0), word(a, 4), word(a, 8)));
  EXPECT_EQ(hash(v6().udp(3, 4).build(), ether), hash(a, ether));
}

TEST_F(LoadBalance, L2vpnHashesTheInnerPacketOnlyWhenThePortAsks) {
  config = gc::LB_7_TUPLE;
  const bytes f = v4().tcp(1000, 80).build();
  auto l2vpn = [](env_t env, std::uint8_t* s) {
    *ps_put_mod_network_start(env) = s + L2;
    baf_hdr_ing_st::l3_type::set(pkt_rx_baf_mod(env), bufhdr_l3_type_ipv4_e);
    return l2vpn_calc_hash(env, reinterpret_cast<ether_hdr*>(s), FALSE, FALSE, FALSE);
  };
  EXPECT_EQ(hash(f, l2vpn), final_of(word(f, 0), word(f, 4), word(f, 8)));
  prepare = [](env_t env) { baf_hdr_ing_st::port_bits_l3_lb_hash::set(pkt_rx_baf_mod(env), 1); };
  EXPECT_EQ(hash(f, l2vpn), v4_flow(SRC4, DST4, 0 ^ 6 ^ word(f, L4_4)));
}

TEST_F(LoadBalance, SpanCopiesHashAddressesWithoutPortsOrFlowLabel) {
  config = gc::LB_7_TUPLE | gc::IPV6_FLOW_LABEL_HASH;
  auto span = [](env_t env, std::uint8_t* s) {
    return span_calc_hash_l3(env, reinterpret_cast<ether_hdr*>(s), L2, s + L2);
  };
  const bytes f4 = v4().tcp(1000, 80).build();
  EXPECT_EQ(hash(f4, span), v4_flow(SRC4, DST4, 0));
  const bytes f6 = v6(0x12345).tcp(1000, 80).build();
  EXPECT_EQ(hash(f6, span), v6_flow(f6, L2, 0));
}

}  // namespace
