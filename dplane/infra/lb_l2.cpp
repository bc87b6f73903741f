// Load-balance hashes of bridged and cross-connected frames and of SPAN
// copies.
#include <cstring>

#include "dplane/infra/load_balance.h"
#include "dplane/infra/lookup.h"
#include "dplane/l2/l2_ether.h"
#include "global_config.h"
#include "npu/zephra/hash_fns.h"
#include "npu/zephra/pkt_buf.h"

namespace {

using cf = common_flags_st;

// The L3 kinds of the distribution header.
constexpr std::uint32_t L3_KIND_IPV4 = bufhdr_l3_type_ipv4_e;
constexpr std::uint32_t L3_KIND_IPV6 = bufhdr_l3_type_ipv6_e;
constexpr std::uint32_t L3_KIND_MPLS = bufhdr_l3_type_mpls_e;
constexpr std::uint32_t PW_MAX_LABELS = 4;
constexpr std::uint8_t IPV4_FIRST_BYTE = 0x45;

std::uint32_t word_at(const std::uint8_t* p) {
  be_u32 w;
  std::memcpy(w.b, p, sizeof w.b);
  return w.get();
}

bool fits(const std::uint8_t* p, std::uint32_t bytes, const std::uint8_t* end) {
  return p <= end && static_cast<std::uint32_t>(end - p) >= bytes;
}

// The kind of the packet state's L3 type, which numbers the kinds from 0.
std::uint32_t l3_kind_of_path(env_t env) {
  switch (cf::l3_type::get(*ps_get_common_flags(env))) {
    case L3_IPV4:
      return L3_KIND_IPV4;
    case L3_IPV6:
      return L3_KIND_IPV6;
    case L3_MPLS:
      return L3_KIND_MPLS;
    default:
      return bufhdr_l3_type_other_e;
  }
}

// The IP hash of the header at l3 when it fits before `end`, else the MAC hash.
std::uint32_t ip_or_ether(env_t env, const ether_hdr* eth, std::uint32_t kind, std::uint8_t* l3, std::uint32_t ifhandle,
                          std::uint32_t router_id, const std::uint8_t* end) {
  if (kind == L3_KIND_IPV4 && fits(l3, IPV4_HDR_BYTES, end)) {
    return hash_lb_ipv4(env, reinterpret_cast<ipv4_hdr_st*>(l3), ifhandle, router_id);
  }
  if (kind == L3_KIND_IPV6 && fits(l3, IPV6_HDR_BYTES, end)) {
    return hash_lb_ipv6(env, reinterpret_cast<ipv6_hdr_st*>(l3), ifhandle, router_id);
  }
  return hash_lb_ether(eth);
}

// Labels of a disposed pseudowire's stack, up to its bottom; 0 when no
// bottom stands within the first four.
std::uint32_t pw_stack_labels(const mpls_hdr_st* mpls) {
  for (std::uint32_t i = 0; i < PW_MAX_LABELS; ++i) {
    if (mpls_hdr_st::eos::get(mpls[i])) return i + 1;
  }
  return 0;
}

}  // namespace

std::uint32_t hash_lb_ether(const ether_hdr* eth) {
  const auto* b = reinterpret_cast<const std::uint8_t*>(eth);
  return hash_3_tuple(word_at(b), word_at(b + 4), word_at(b + 8));
}

std::uint32_t check_mpls_l3_type(const std::uint8_t* below_stack) {
  if (below_stack[0] == IPV4_FIRST_BYTE) return L3_KIND_IPV4;
  if (below_stack[0] >> 4 == 6) return L3_KIND_IPV6;
  return L3_KIND_MPLS;
}

std::uint32_t l2vpn_calc_hash(env_t env, ether_hdr* eth, boolean_t is_pw_dispo, boolean_t is_ipiw, boolean_t is_ip) {
  if (!global_config_l2_hash_l3(env) && !is_ipiw) return hash_lb_ether(eth);
  const std::uint32_t router_id = global_config_get_router_id(env);
  std::uint8_t* l3 = *ps_get_network_start(env);
  const std::uint8_t* end = pkt_get_rx_packet_end(env);
  const std::uint32_t kind = is_pw_dispo ? l3_kind_of_path(env) : pkt_get_rx_l3_type(env);
  const std::uint32_t ifhandle =
      is_pw_dispo ? uidb_l3_ing_fields_st::uidb_ifhandle::get(*lookup_result_ID_UIDB_L3_ING__COMM(env)) : 0;
  if (kind == L3_KIND_IPV4 || kind == L3_KIND_IPV6) return ip_or_ether(env, eth, kind, l3, ifhandle, router_id, end);
  return l2vpn_calc_hash_slow(env, eth, kind, ifhandle, router_id, is_pw_dispo, is_ip, end);
}

std::uint32_t l2vpn_calc_hash_slow(env_t env, ether_hdr* eth, std::uint32_t l3_type, std::uint32_t ifhandle,
                                   std::uint32_t router_id, boolean_t is_pw_dispo, boolean_t is_ip,
                                   const std::uint8_t* pkt_end) {
  if (l3_type == L3_KIND_MPLS) return l2vpn_calc_hash_mpls(env, eth, ifhandle, router_id, is_pw_dispo, is_ip, pkt_end);
  std::uint16_t type = 0;
  const std::uint8_t tags = parse_ether_type_fast(env, eth, &type);
  std::uint8_t* l3 = reinterpret_cast<std::uint8_t*>(eth) + ETHER_HDR_BYTES + tags * VLAN_TAG_BYTES;
  switch (type) {
    case ETHERTYPE_IPV4:
      return ip_or_ether(env, eth, L3_KIND_IPV4, l3, ifhandle, router_id, pkt_end);
    case ETHERTYPE_IPV6:
      return ip_or_ether(env, eth, L3_KIND_IPV6, l3, ifhandle, router_id, pkt_end);
    default:
      return hash_lb_ether(eth);
  }
}

std::uint32_t l2vpn_calc_hash_mpls(env_t env, ether_hdr* eth, std::uint32_t ifhandle, std::uint32_t router_id,
                                   boolean_t is_pw_dispo, boolean_t is_ip, const std::uint8_t* pkt_end) {
  auto* mpls = reinterpret_cast<mpls_hdr_st*>(*ps_get_network_start(env));
  std::uint32_t labels = 0;
  if (is_pw_dispo) {
    labels = pw_stack_labels(mpls);
    if (labels == 0) return hash_lb_ether(eth);
  } else if (pkt_rx_mpls_lt_5_labels(env)) {
    labels = is_ip ? 0 : pkt_get_rx_mpls_num_labels(env);
  } else {
    return hash_lb_ether(eth);
  }
  auto* below = reinterpret_cast<std::uint8_t*>(mpls + labels);
  return ip_or_ether(env, eth, check_mpls_l3_type(below), below, ifhandle, router_id, pkt_end);
}

std::uint32_t span_calc_hash_l3(env_t env, ether_hdr* eth, std::uint32_t l2_hdr_len, void* ip) {
  be_u16 type;
  std::memcpy(type.b, reinterpret_cast<const std::uint8_t*>(eth) + l2_hdr_len - sizeof type.b, sizeof type.b);
  const std::uint32_t router_id = global_config_get_router_id(env);
  switch (type.get()) {
    case ETHERTYPE_IPV4: {
      const auto* v4 = static_cast<const ipv4_hdr_st*>(ip);
      return hash_lb_ipv4_base(v4->src_addr.get(), v4->dst_addr.get(), router_id);
    }
    case ETHERTYPE_IPV6: {
      const auto* v6 = static_cast<const ipv6_hdr_st*>(ip);
      return hash_lb_ipv6_base(v6->src_addr, v6->dst_addr, router_id, FALSE, 0);
    }
    default:
      return hash_lb_ether(eth);
  }
}
