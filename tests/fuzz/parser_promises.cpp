#include "fuzz/parser_promises.h"

#include <algorithm>

#include "fuzz/parser_fuzz_setup.h"
#include "model/parser_vector.h"

namespace fuzz {

namespace {

using hdr_t = dist_hdr_line_st;
template <class F>
using baf = hdr_t::in_baf<F>;
using v4 = baf_hdr_ing_st::v4;
using v6 = baf_hdr_ing_st::v6;
using mpls = baf_hdr_ing_st::mpls;
using frame_t = std::span<const std::uint8_t>;

constexpr std::uint32_t ETH_HDR = 14;
constexpr std::uint32_t TAG = 4;
constexpr std::uint32_t MAX_TAGS = 4;
constexpr std::uint32_t IPV4_HDR = 20;
constexpr std::uint32_t IPV6_HDR = 40;
constexpr std::uint32_t L3_IPV4 = 1, L3_IPV6 = 2, L3_MPLS = 3;

std::uint32_t be16(frame_t f, std::size_t at) { return f[at] << 8 | f[at + 1]; }

template <class... F>
bool all_set(const hdr_t& h) {
  return (baf<F>::get(h) && ...);
}

bool is_clean(std::uint32_t v) { return v <= VECTOR_MPLS; }
bool is_l3(std::uint32_t v) { return is_clean(v) || (v >= VECTOR_IPV4_EXCEPTION && v <= VECTOR_MPLS_EXCEPTION); }
bool is_l2(std::uint32_t v) {
  return v == VECTOR_VPWS || v == VECTOR_VPLS || v == VECTOR_VPWS_EXCEPTION || v == VECTOR_VPLS_EXCEPTION;
}
bool is_listed(std::uint32_t v) { return v <= VECTOR_INJECT || v == VECTOR_UNPLACED; }

std::uint32_t l3_type_of(std::uint32_t v) {
  if (v == VECTOR_IPV4_UNICAST || v == VECTOR_IPV4_MULTICAST || v == VECTOR_IPV4_EXCEPTION) return L3_IPV4;
  if (v == VECTOR_IPV6_UNICAST || v == VECTOR_IPV6_MULTICAST || v == VECTOR_IPV6_EXCEPTION) return L3_IPV6;
  return L3_MPLS;
}

const fixture_interface* configured(std::uint32_t port, std::uint32_t uidb) {
  auto it = std::find_if(INTERFACES.begin(), INTERFACES.end(),
                         [&](const fixture_interface& i) { return i.key.port == port && i.iface.uidb_index == uidb; });
  return it == INTERFACES.end() ? nullptr : &*it;
}

bool mac_is(frame_t f, const model::mac_address& mac) { return std::equal(mac.begin(), mac.end(), f.begin()); }

const char* header_promise(std::uint32_t port, frame_t f, const hdr_t& h) {
  if (hdr_t::pktlen::get(h) != f.size() % (1u << 14)) return "pktlen is not the frame's length";
  if (hdr_t::logical_port::get(h) != port) return "logical_port is not the arrival port";
  if (!is_listed(hdr_t::rt_result::get(h))) return "a vector outside the vector list";
  const std::uint32_t off = hdr_t::l3_offset::get(h);
  const bool behind_tags = off >= ETH_HDR && off <= ETH_HDR + MAX_TAGS * TAG && (off - ETH_HDR) % TAG == 0;
  if (off != 0 && (!behind_tags || off > f.size())) return "l3_offset is not behind 0 to 4 tags inside the frame";
  return nullptr;
}

const char* interface_promise(std::uint32_t port, const hdr_t& h) {
  const std::uint32_t v = hdr_t::rt_result::get(h);
  const std::uint32_t uidb = hdr_t::uidb_index::get(h);
  const fixture_interface* i = configured(port, uidb);
  if (uidb != 0 && !i) return "an interface that is not configured on the port";
  if ((v == VECTOR_INJECT) != (port == INJECT_PORT)) return "the inject vector off the inject port, or not on it";
  if (is_l2(v) && !(i && i->l2)) return "an L2 vector without an L2 interface";
  if (is_l3(v) && !(i && !i->l2)) return "an L3 vector without an L3 interface";
  if (is_l3(v) && hdr_t::l3_type::get(h) != l3_type_of(v)) return "the vector of another protocol than the L3 type";
  return nullptr;
}

bool ipv4_header_passes(frame_t l3) {
  if (l3.size() < IPV4_HDR || l3[0] != 0x45 || l3[8] <= 1) return false;
  const std::uint32_t total = be16(l3, 2);
  if (total < IPV4_HDR || total > l3.size()) return false;
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < IPV4_HDR; i += 2) sum += be16(l3, i);
  while (sum > 0xFFFF) sum = (sum & 0xFFFF) + (sum >> 16);
  return sum == 0xFFFF;
}

const char* ipv4_promise(frame_t f, frame_t l3, bool multicast, const hdr_t& h) {
  if (!all_set<v4::hdrlen_vld, v4::frame_gte_hdrlen, v4::frame_gte_hdrtotlen, v4::hdr_chksum_vld, v4::no_ip_options,
               v4::addr_sane, v4::ttl_gt_1>(h) ||
      baf<v4::is_mcast>::get(h) != multicast) {
    return "a clean IPv4 vector with a decode bit that forbids it";
  }
  if (!ipv4_header_passes(l3) || ((l3[16] & 0xF0) == 0xE0) != multicast) {
    return "a clean IPv4 vector on a header that fails its checks";
  }
  const model::mac_address group = {0x01, 0x00, 0x5E, static_cast<std::uint8_t>(l3[17] & 0x7F), l3[18], l3[19]};
  if (!mac_is(f, multicast ? group : ROUTER_MAC)) return "a clean IPv4 vector to a MAC that does not fit";
  return nullptr;
}

const char* ipv6_promise(frame_t f, frame_t l3, bool multicast, const hdr_t& h) {
  if (!all_set<v6::frame_gte_40, v6::frame_gte_hdrtotlen, v6::addr_sane, v6::hop_limit_gt_1>(h) ||
      baf<v6::dip_is_multicast>::get(h) != multicast) {
    return "a clean IPv6 vector with a decode bit that forbids it";
  }
  const bool passes = l3.size() >= IPV6_HDR && l3[0] >> 4 == 6 && be16(l3, 4) != 0 &&
                      IPV6_HDR + be16(l3, 4) <= l3.size() && l3[7] > 1 && (l3[24] == 0xFF) == multicast;
  if (!passes) return "a clean IPv6 vector on a header that fails its checks";
  const model::mac_address group = {0x33, 0x33, l3[36], l3[37], l3[38], l3[39]};
  if (!mac_is(f, multicast ? group : ROUTER_MAC)) return "a clean IPv6 vector to a MAC that does not fit";
  return nullptr;
}

const char* mpls_promise(frame_t f, frame_t l3, std::uint32_t off, const hdr_t& h) {
  if (!baf<mpls::mpls_ttl_gt_1>::get(h) || baf<mpls::mpls_is_multicast>::get(h)) {
    return "a clean MPLS vector with a decode bit that forbids it";
  }
  if (be16(f, off - 2) != 0x8847 || l3.size() < TAG || l3[3] <= 1) {
    return "a clean MPLS vector on a stack that fails its checks";
  }
  if (!mac_is(f, ROUTER_MAC)) return "a clean MPLS vector to a MAC that is not the router's";
  return nullptr;
}

const char* clean_promise(frame_t f, const hdr_t& h) {
  const std::uint32_t v = hdr_t::rt_result::get(h);
  if (!is_clean(v)) return nullptr;
  const std::uint32_t off = hdr_t::l3_offset::get(h);
  if (off < ETH_HDR || !hdr_t::rt_result_valid::get(h)) return "a clean vector without an L3 header";
  const frame_t l3 = f.subspan(off);
  if (v == VECTOR_IPV4_UNICAST || v == VECTOR_IPV4_MULTICAST) return ipv4_promise(f, l3, v == VECTOR_IPV4_MULTICAST, h);
  if (v == VECTOR_IPV6_UNICAST || v == VECTOR_IPV6_MULTICAST) return ipv6_promise(f, l3, v == VECTOR_IPV6_MULTICAST, h);
  return mpls_promise(f, l3, off, h);
}

}  // namespace

const char* broken_promise(std::uint32_t port, frame_t frame, const dist_hdr_line_st& hdr) {
  if (const char* broken = header_promise(port, frame, hdr)) return broken;
  if (const char* broken = interface_promise(port, hdr)) return broken;
  return clean_promise(frame, hdr);
}

}  // namespace fuzz
