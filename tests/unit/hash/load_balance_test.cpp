// Load-balance hashes over real packets from the packet builder: each hash
// takes exactly the fields it should. Expected values are the hash unit's
// final step (golden values in table_hash_test.cpp) over the words the flow
// is made of, picked from the frame by hand.
#include "dplane/infra/load_balance.h"

#include <gtest/gtest.h>

#include <cstring>
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
constexpr std::uint32_t T7 = gc::LB_7_TUPLE;
constexpr std::uint32_t FL = gc::IPV6_FLOW_LABEL_HASH;
constexpr std::size_t L2 = 14;  // the builder's untagged Ethernet header
constexpr std::size_t L4_4 = L2 + 20;
constexpr std::size_t L4_6 = L2 + 40;

std::uint32_t final_of(std::uint32_t a, std::uint32_t b, std::uint32_t c) { return hash_unit_final({a, b, c}); }
std::uint32_t word(const bytes& f, std::size_t at) {
  return (std::uint32_t{f[at]} << 24) | (std::uint32_t{f[at + 1]} << 16) | (std::uint32_t{f[at + 2]} << 8) | f[at + 3];
}
// The IPv4 flow of 10.0.0.1 to 192.0.2.9: destination and source plus the
// partial, router ID.
std::uint32_t v4_flow(std::uint32_t p) { return final_of(0xC0000209 + p, 0x0A000001 + p, ROUTER_ID); }
std::uint32_t v6_flow(const bytes& f, std::uint32_t p) {
  auto w = [&](std::size_t i) { return word(f, L2 + 8 + 4 * i); };  // s0..s3, then d0..d3
  return final_of(((w(4) + w(6)) ^ (w(5) + w(7))) + p, ((w(0) + w(1)) ^ (w(2) + w(3))) + p, ROUTER_ID);
}

using hasher = std::uint32_t (*)(env_t, std::uint8_t*);
template <class Hdr>
Hdr* l3(std::uint8_t* frame) {
  return reinterpret_cast<Hdr*>(frame + L2);
}
std::uint32_t ipv4(env_t e, std::uint8_t* f) { return hash_lb_ipv4(e, l3<ipv4_hdr_st>(f), IFH, ROUTER_ID); }
std::uint32_t racetrack(env_t e, std::uint8_t* f) {
  return hash_lb_ipv4_racetrack(e, l3<ipv4_hdr_st>(f), IFH, ROUTER_ID);
}
std::uint32_t ipv6(env_t e, std::uint8_t* f) { return hash_lb_ipv6(e, l3<ipv6_hdr_st>(f), IFH, ROUTER_ID); }
std::uint32_t mpls(env_t e, std::uint8_t* f) { return hash_lb_mpls_inline(e, l3<mpls_hdr_st>(f), IFH, ROUTER_ID); }
std::uint32_t ether(env_t, std::uint8_t* f) { return hash_lb_ether(reinterpret_cast<ether_hdr*>(f)); }
std::uint32_t span(env_t e, std::uint8_t* f) {
  return span_calc_hash_l3(e, reinterpret_cast<ether_hdr*>(f), L2, f + L2);
}
std::uint32_t l2vpn(env_t e, std::uint8_t* f) {
  *ps_put_mod_network_start(e) = f + L2;
  baf_hdr_ing_st::l3_type::set(pkt_rx_baf_mod(e), bufhdr_l3_type_ipv4_e);
  return l2vpn_calc_hash(e, reinterpret_cast<ether_hdr*>(f), FALSE, FALSE, FALSE);
}

// The distribution header's label count and entropy label place.
void four_labels_entropy_second(env_t env) {
  baf_hdr_ing_st::mpls::mpls_num_labels::set(pkt_rx_baf_mod(env), 4);
  pkt_set_rx_entropy_label(env, 1);
}
void labels_not_counted(env_t env) { baf_hdr_ing_st::mpls::mpls_num_labels::set(pkt_rx_baf_mod(env), 0); }
void port_asks_l3_hash(env_t env) { baf_hdr_ing_st::port_bits_l3_lb_hash::set(pkt_rx_baf_mod(env), 1); }

bool chain_not_walked(env_t env) { return !common_flags_st::ipv6_ext_hdr_parsed::get(*ps_get_common_flags(env)); }
bool entropy_invalid(env_t env) {
  return common_flags2_st::entropy_label_invalid_or_is_sfi::get(*ps_get_common_flags2(env));
}
bool entropy_valid(env_t env) { return !entropy_invalid(env); }

pkt::builder eth() {
  pkt::builder b;
  b.eth(pkt::mac("00:00:00:00:00:01"), pkt::mac("00:00:00:00:00:02"));
  return b;
}
pkt::builder v4() { return eth().ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.9")); }
pkt::builder v6(std::uint32_t label = 0) {
  return eth().ipv6(pkt::ip6("2001:db8::1"), pkt::ip6("2001:db8:1::2")).flow_label(label);
}
bytes cut(bytes f, std::size_t len) { return f.resize(len), f; }

// GTP-U on UDP port 2152, version 1 without options, TEID 0x11223344, inner
// IPv4 172.16.0.1 to 172.16.0.2.
bytes gtp(std::uint8_t flags) {
  bytes g = {flags, 0xFF, 0, 28, 0x11, 0x22, 0x33, 0x44};
  const bytes inner = pkt::builder().ipv4(pkt::ip4("172.16.0.1"), pkt::ip4("172.16.0.2")).udp(7, 8).build();
  g.insert(g.end(), inner.begin(), inner.end());
  return v4().udp(2152, 2152).raw(g).build();
}
constexpr std::uint32_t GTP_FLOW = 0x11223344 ^ 0xAC100001 ^ 0xAC100002;

// An MPLS stack of label words, bottom-of-stack on the last; the label
// behind an entropy indicator has TTL `eli_ttl`.
bytes mpls_frame(const std::vector<std::uint32_t>& labels, const bytes& payload, std::uint8_t eli_ttl = 0) {
  pkt::builder b = eth();
  for (std::size_t i = 0; i < labels.size(); ++i)
    b.mpls(labels[i], 0, i && labels[i - 1] == MPLS_LABEL_ELI ? eli_ttl : 64);
  return b.raw(payload).build();
}
const bytes NOT_IP = {0x00, 1, 2, 3, 4, 5, 6, 7};
// An entropy-stack term: the label shifted up, with its own bits folded in.
std::uint32_t term(std::uint32_t x, unsigned k) { return (x << 12) | ((x >> k) & 0xFFF); }

struct lb_case {
  const char* what;
  hasher fn;
  std::uint32_t config;
  bytes frame;
  std::uint32_t want;
  void (*prepare)(env_t) = nullptr;
  bool (*holds)(env_t) = nullptr;  // a mark the hash leaves
};

std::vector<lb_case> cases() {
  const bytes tcp4 = v4().tcp(1000, 80).payload(8).build();
  const bytes first = v4().more_fragments().udp(1000, 53).payload(8).build();
  const bytes whole = v4().dont_fragment().udp(1000, 53).payload(8).build();
  const bytes ext = gtp(0x34);
  const bytes label = v6(0x12345).tcp(1000, 80).build();
  const bytes opts = v6().destination_options().tcp(1000, 80).build();
  const bytes frag6 = v6().fragment(0, true, 7).udp(1000, 53).build();
  const bytes bad6 = v6().destination_options().hop_by_hop().tcp(1000, 80).build();
  const bytes entropy = mpls_frame({100, MPLS_LABEL_ELI, 0xABCDE, 200}, NOT_IP);
  const std::uint32_t ENTROPY = gc::ENTROPY_LB;
  return {
      {"IPv4 without 7-tuple: the addresses", ipv4, 0, tcp4, v4_flow(0)},
      {"IPv4 TCP", ipv4, T7, tcp4, v4_flow(IFH ^ 6 ^ word(tcp4, L4_4))},
      {"IPv4 ICMP", ipv4, T7, v4().icmp(8).payload(8).build(), v4_flow(IFH ^ 1)},
      {"first fragment", ipv4, T7, first, v4_flow(IFH ^ 17)},
      {"first fragment, racetrack", racetrack, T7, first, v4_flow(IFH ^ 17 ^ word(first, L4_4))},
      {"don't fragment", ipv4, T7, whole, v4_flow(IFH ^ 17 ^ word(whole, L4_4))},
      {"ports cut short", ipv4, T7, cut(tcp4, L4_4 + 3), v4_flow(IFH ^ 6)},
      {"IPv4 header cut short", ipv4, T7, cut(tcp4, L2 + 19), v4_flow(IFH)},
      {"GTP: TEID and inner addresses", ipv4, T7, gtp(0x30), v4_flow(IFH ^ 17 ^ GTP_FLOW)},
      {"GTP with extension headers", ipv4, T7, ext, v4_flow(IFH ^ 17 ^ word(ext, L4_4))},
      {"IPv6 flow label", ipv6, FL, label, v6_flow(label, 0x12345)},
      {"IPv6 options", ipv6, T7, opts, v6_flow(opts, IFH ^ 6 ^ word(opts, L4_6 + 8))},
      {"IPv6 fragment", ipv6, T7, frag6, v6_flow(frag6, IFH ^ 17)},
      {"IPv6 bad extension chain", ipv6, T7, bad6, v6_flow(bad6, IFH), nullptr, chain_not_walked},
      {"entropy label", mpls, ENTROPY, entropy, IFH - ROUTER_ID + 0xABCDE * 0x402001u, four_labels_entropy_second,
       entropy_valid},
      {"entropy off: bottom label", mpls, 0, entropy, IFH - ROUTER_ID + 200 * 0x402001u, four_labels_entropy_second},
      {"entropy label TTL not 0", mpls, ENTROPY, mpls_frame({100, MPLS_LABEL_ELI, 0xABCDE, 200}, NOT_IP, 5), 0,
       four_labels_entropy_second, entropy_invalid},
      {"five labels: the lowest three", mpls, 0, mpls_frame({11, 12, 13, 14, 15}, NOT_IP),
       term(15, 1) + term(14, 2) + term(13, 3) + 0xEEFFC000 /* IFH, bytes reversed */ - ROUTER_ID, labels_not_counted},
      {"entropy indicator on top of five", mpls, ENTROPY, mpls_frame({MPLS_LABEL_ELI, 0x1234, 13, 14, 15}, NOT_IP), 0,
       labels_not_counted, entropy_invalid},
      {"Ethernet: the two addresses", ether, 0, tcp4, final_of(word(tcp4, 0), word(tcp4, 4), word(tcp4, 8))},
      {"L2VPN: IPv4 when the port asks", l2vpn, T7, tcp4, v4_flow(6 ^ word(tcp4, L4_4)), port_asks_l3_hash},
      {"SPAN IPv6: no ports or label", span, T7 | FL, label, v6_flow(label, 0)},
  };
}

// A frame at its arrival place, with the global configuration and the
// distribution header's fields of a case.
TEST(LoadBalance, EachHashTakesItsFieldsAndMarksWhatItCouldNotUse) {
  testkit::npu_harness h;
  for (const lb_case& c : cases()) {
    h.on_thread([&](env_t env) {
      std::memset(env->dist_hdr, 0, sizeof env->dist_hdr);
      std::uint8_t* start = *ps_get_pkt_mem_start(env) + PKT_START_OFFSET;
      std::memcpy(start, c.frame.data(), c.frame.size());
      *ps_put_mod_pkt_start(env) = start;
      *ps_put_mod_curr_pkt_len(env) = static_cast<std::uint16_t>(c.frame.size());
      dist_hdr_line_st::pktlen::set(pkt_rx_line_hdr_mod(env), static_cast<std::uint32_t>(c.frame.size()));
      *ps_put_mod_global_uidb_reg(env) = c.config;
      *ps_put_mod_global_uidb_reg_router_id(env) = ROUTER_ID;
      *ps_put_mod_common_flags(env) = {};
      *ps_put_mod_common_flags2(env) = {};
      *ps_put_mod_l2_hdr_len(env) = 0;
      if (c.prepare) c.prepare(env);
      EXPECT_EQ(c.fn(env, start), c.want) << c.what;
      if (c.holds) {
        EXPECT_TRUE(c.holds(env)) << c.what;
      }
    });
  }
}

}  // namespace
