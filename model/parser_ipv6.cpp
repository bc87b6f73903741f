// The parser's IPv6 checks, on the base header alone. A frame too short for
// the base header leaves every decode bit clear.
#include <algorithm>
#include <cstddef>

#include "ipv4.h"
#include "ipv6.h"
#include "parser_l3.h"

namespace model {

namespace {

using v6 = baf_hdr_ing_st::v6;
using address = std::span<const std::uint8_t, 16>;

constexpr std::uint32_t MIN_PAYLOAD = 4;
constexpr std::uint8_t NH_GRE = 47;
constexpr std::uint8_t NH_ICMPV6 = 58;

constexpr std::uint32_t SANE_BITS =
    be_word_mask<DECODE_WORD, v6::frame_gte_40, v6::frame_gte_hdrtotlen, v6::addr_sane, v6::hop_limit_gt_1>();

bool is_link_local(address a) { return a[0] == 0xFE && (a[1] & 0xC0) == 0x80; }
bool is_multicast(address a) { return a[0] == 0xFF; }
bool all_zero(std::span<const std::uint8_t> bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b == 0; });
}
bool is_unspecified(address a) { return all_zero(a); }
bool is_loopback(address a) { return all_zero(a.first(15)) && a[15] == 1; }

// ff02::1, ff02::2, or a solicited-node group ffx2::1:ffxx:xxxx (any flags).
bool may_take_unspecified_source(address dst) {
  if (dst[0] != 0xFF || (dst[1] & 0x0F) != 2) return false;
  const bool all_nodes_or_routers = dst[1] == 2 && all_zero(dst.subspan(2, 13)) && (dst[15] == 1 || dst[15] == 2);
  const bool solicited_node = all_zero(dst.subspan(2, 9)) && dst[11] == 1 && dst[12] == 0xFF;
  return all_nodes_or_routers || solicited_node;
}

bool addresses_sane(address src, address dst) {
  if (is_multicast(src) || is_loopback(src) || is_unspecified(dst) || is_loopback(dst)) return false;
  return !is_unspecified(src) || may_take_unspecified_source(dst);
}

void set_next_header_bits(std::uint8_t nh, baf_hdr_ing_st& baf) {
  v6::nxthdr_is_gre::set(baf, nh == NH_GRE);
  v6::nxthdr_is_icmp_v6::set(baf, nh == NH_ICMPV6);
  v6::nxthdr_is_sctp::set(baf, nh == IP_PROTO_SCTP);
  v6::nxthdr_is_udp::set(baf, nh == IP_PROTO_UDP);
  v6::nxthdr_is_tcp::set(baf, nh == IP_PROTO_TCP);
}

mac_address group_mac_of(address group) { return {0x33, 0x33, group[12], group[13], group[14], group[15]}; }

}  // namespace

l3_verdict decode_ipv6(std::span<const std::uint8_t> l3, baf_hdr_ing_st& baf) {
  l3_verdict out;
  if (l3.size() < IPV6_HDR_BYTES) return out;
  const auto& ip = *reinterpret_cast<const ipv6_hdr_st*>(l3.data());
  const address src{l3.data() + offsetof(ipv6_hdr_st, src_addr), 16};
  const address dst{l3.data() + offsetof(ipv6_hdr_st, dst_addr), 16};
  const std::uint32_t payload = ip.payload_length.get();
  v6::dip_is_multicast::set(baf, is_multicast(dst));
  v6::sip_is_link_local::set(baf, is_link_local(src));
  v6::dip_is_link_local::set(baf, is_link_local(dst));
  v6::payloadlen_gte_4::set(baf, payload >= MIN_PAYLOAD);
  v6::frame_gte_hdrtotlen::set(baf, l3.size() >= IPV6_HDR_BYTES + payload);
  v6::frame_gte_40::set(baf, 1);
  set_next_header_bits(ip.next_header, baf);
  v6::addr_sane::set(baf, addresses_sane(src, dst));
  v6::hop_limit_gt_1::set(baf, ip.hop_limit > 1);
  const bool version_6 = ipv6_hdr_st::version::get(ip) == 6;
  out.sane = version_6 && payload != 0 && decode_bits_all_set(baf, SANE_BITS);
  out.multicast = is_multicast(dst);
  if (out.multicast) out.group_mac = group_mac_of(dst);
  return out;
}

}  // namespace model
