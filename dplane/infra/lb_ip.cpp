// Load-balance hashes of IPv4 and IPv6 packets, and the GTP-U look-through.
#include <cstring>

#include "dplane/infra/load_balance.h"
#include "dplane/l3/ipv6/ipv6_ext_hdr.h"
#include "global_config.h"
#include "gtp.h"
#include "npu/zephra/hash_fns.h"
#include "npu/zephra/pkt_buf.h"
#include "udp.h"

namespace {

constexpr std::uint32_t ADDR_HASH_MASK = 0xFFF;
constexpr std::uint32_t IHL_UNIT = 4;
constexpr std::uint32_t WORD_BYTES = 4;
// GTP-U: enough bytes behind the UDP header for the tunnel header, the
// places of the inner header, and what an inner header must bring.
constexpr std::uint32_t GTP_MIN_BYTES = 16;
constexpr std::uint32_t GTP_TEID_OFFSET = 12;
constexpr std::uint32_t GTP_V2_INNER_OFFSET = 20;
constexpr std::uint32_t GTP_V1_INNER_OFFSET = 16;
constexpr std::uint32_t GTP_V1_OPTIONS_INNER_OFFSET = 20;
constexpr std::uint32_t GTP_INNER_MIN_BYTES = 20;
constexpr std::uint32_t GTP_FLAGS_OFFSET = sizeof(udp_hdr_st);

std::uint32_t word_at(const std::uint8_t* p) {
  be_u32 w;
  std::memcpy(w.b, p, WORD_BYTES);
  return w.get();
}

bool fits(const std::uint8_t* p, std::uint32_t bytes, const std::uint8_t* end) {
  return p <= end && static_cast<std::uint32_t>(end - p) >= bytes;
}

// The address words as the hash takes them: the pairing differs between
// source and destination.
std::uint32_t ipv6_dst_fold(const be_u32* d) { return (d[0].get() + d[2].get()) ^ (d[1].get() + d[3].get()); }
std::uint32_t ipv6_src_fold(const be_u32* s) { return (s[0].get() + s[1].get()) ^ (s[2].get() + s[3].get()); }

// What the L4 header adds to the partial: the ports word of TCP and SCTP,
// of UDP unless it carries GTP-U; nothing for other protocols or a header
// cut short.
std::uint32_t l4_partial(env_t env, std::uint8_t protocol, std::uint8_t* l4) {
  if (!fits(l4, WORD_BYTES, pkt_get_rx_packet_end(env))) return 0;
  switch (protocol) {
    case IP_PROTO_TCP:
    case IP_PROTO_SCTP:
      return word_at(l4);
    case IP_PROTO_UDP:
      if (reinterpret_cast<const udp_hdr_st*>(l4)->dst_port.get() == UDP_PORT_GTP_U) {
        return hash_decode_gtp_hdr(env, l4);
      }
      return word_at(l4);
    default:
      return 0;
  }
}

bool is_port_protocol(std::uint8_t protocol) {
  return protocol == IP_PROTO_TCP || protocol == IP_PROTO_UDP || protocol == IP_PROTO_SCTP;
}

// Where the inner header of a GTP-U packet stands, or null if the tunnel
// header is not one the hash looks through.
const std::uint8_t* gtp_inner(const std::uint8_t* l4) {
  const std::uint8_t flags = l4[GTP_FLAGS_OFFSET];
  switch (flags >> GTP_VERSION_SHIFT) {
    case 2:
      return (flags & GTP_FLAG_T) ? l4 + GTP_V2_INNER_OFFSET : nullptr;
    case 1:
      if (flags & GTP_FLAG_E) return nullptr;
      return l4 + ((flags & (GTP_FLAG_S | GTP_FLAG_PN)) ? GTP_V1_OPTIONS_INNER_OFFSET : GTP_V1_INNER_OFFSET);
    default:
      return nullptr;
  }
}

std::uint32_t ipv6_flow_label_partial(env_t env, const ipv6_hdr_st* ip) {
  if (!global_config_ipv6_flow_label_hash_enabled(env)) return 0;
  return ipv6_hdr_st::flow_label::get(*ip);
}

std::uint32_t ipv6_hash(env_t env, ipv6_hdr_st* ip, std::uint32_t seven_tuple_partial, std::uint32_t router_id) {
  return hash_lb_ipv6_final(ip, seven_tuple_partial ^ ipv6_flow_label_partial(env, ip), router_id);
}

}  // namespace

std::uint32_t hash_lb_ipv4_7tuple_base(std::uint32_t src, std::uint32_t dst, std::uint32_t partial,
                                       std::uint32_t router_id) {
  return hash_3_tuple(dst + partial, src + partial, router_id);
}

std::uint32_t hash_lb_ipv4_base(std::uint32_t src, std::uint32_t dst, std::uint32_t router_id) {
  return hash_lb_ipv4_7tuple_base(src, dst, 0, router_id);
}

std::uint32_t hash_lb_ipv4_final(const ipv4_hdr_st* ip, std::uint32_t partial, std::uint32_t router_id) {
  return hash_lb_ipv4_7tuple_base(ip->src_addr.get(), ip->dst_addr.get(), partial, router_id);
}

// All fragments of a packet take one path: a fragment adds no ports, also
// the first, which carries them.
std::uint32_t hash_get_7tuple_param_ipv4(env_t env, ipv4_hdr_st* ip, std::uint32_t ifhandle, boolean_t racetrack) {
  std::uint32_t p = ifhandle;
  auto* hdr = reinterpret_cast<std::uint8_t*>(ip);
  if (!fits(hdr, IPV4_HDR_BYTES, pkt_get_rx_packet_end(env))) return p;
  p ^= ip->protocol;
  if (!racetrack && (ip->frag_off.get() & IPV4_FRAG_MF_OFFSET_MASK) != 0) return p;
  return p ^ l4_partial(env, ip->protocol, hdr + ipv4_hdr_st::ihl::get(*ip) * IHL_UNIT);
}

std::uint32_t hash_lb_ipv4(env_t env, ipv4_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id) {
  const std::uint32_t p =
      global_config_is_7_tuple_lb_enabled(env) ? hash_get_7tuple_param_ipv4(env, ip, if_handle, FALSE) : 0;
  return hash_lb_ipv4_final(ip, p, router_id);
}

std::uint32_t hash_lb_ipv4_racetrack(env_t env, ipv4_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id) {
  const std::uint32_t p =
      global_config_is_7_tuple_lb_enabled(env) ? hash_get_7tuple_param_ipv4(env, ip, if_handle, TRUE) : 0;
  return hash_lb_ipv4_final(ip, p, router_id);
}

std::uint32_t hash_lb_ipv6_7tuple_base(const be_u32* src, const be_u32* dst, std::uint32_t partial,
                                       std::uint32_t router_id) {
  return hash_3_tuple(ipv6_dst_fold(dst) + partial, ipv6_src_fold(src) + partial, router_id);
}

std::uint32_t hash_lb_ipv6_base(const be_u32* src, const be_u32* dst, std::uint32_t router_id,
                                boolean_t flow_label_hash_en, std::uint32_t flow_label) {
  return hash_lb_ipv6_7tuple_base(src, dst, flow_label_hash_en ? flow_label & IPV6_FLOW_LABEL_MASK : 0, router_id);
}

std::uint32_t hash_lb_ipv6_final(const ipv6_hdr_st* ip, std::uint32_t partial, std::uint32_t router_id) {
  return hash_lb_ipv6_7tuple_base(ip->src_addr, ip->dst_addr, partial, router_id);
}

std::uint32_t hash_get_7tuple_param_ipv6(env_t env, ipv6_hdr_st* ip, std::uint32_t ifhandle, boolean_t racetrack) {
  const std::uint8_t next = ip->next_header;
  if (is_port_protocol(next)) {
    return ifhandle ^ next ^ l4_partial(env, next, reinterpret_cast<std::uint8_t*>(ip) + IPV6_HDR_BYTES);
  }
  return ifhandle ^ (racetrack ? next : hash_get_7tuple_param_ipv6_slow(env, ip));
}

std::uint32_t hash_get_7tuple_param_ipv6_pp(env_t env, ipv6_hdr_st*, std::uint32_t ifhandle) {
  const ip_l4_info_st& info = *ps_get_ip_l4_info(env);
  if (info.frag_off_mf.get() != 0) return ifhandle ^ info.protocol;
  return ifhandle ^ info.protocol ^ l4_partial(env, info.protocol, *ps_get_l4_hdr_ptr(env));
}

std::uint32_t hash_get_7tuple_param_ipv6_slow(env_t env, ipv6_hdr_st* ip) {
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  if (!common_flags_st::ipv6_ext_hdr_parsed::get(flags) && ipv6_ext_hdr_parse_ing(env, ip) != IPV6_EXT_HDR_OK) {
    common_flags_st::ipv6_ext_hdr_parsed::set(flags, 0);
    return 0;
  }
  const ip_l4_info_st& info = *ps_get_ip_l4_info(env);
  if (info.frag_off_mf.get() != 0) return info.protocol;
  return info.protocol ^ l4_partial(env, info.protocol, *ps_get_l4_hdr_ptr(env));
}

std::uint32_t hash_lb_ipv6(env_t env, ipv6_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id) {
  const std::uint32_t p =
      global_config_is_7_tuple_lb_enabled(env) ? hash_get_7tuple_param_ipv6(env, ip, if_handle, FALSE) : 0;
  return ipv6_hash(env, ip, p, router_id);
}

std::uint32_t hash_lb_ipv6_pp(env_t env, ipv6_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id) {
  const std::uint32_t p =
      global_config_is_7_tuple_lb_enabled(env) ? hash_get_7tuple_param_ipv6_pp(env, ip, if_handle) : 0;
  return ipv6_hash(env, ip, p, router_id);
}

std::uint32_t hash_lb_ipv6_racetrack(env_t env, ipv6_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id) {
  const std::uint32_t p =
      global_config_is_7_tuple_lb_enabled(env) ? hash_get_7tuple_param_ipv6(env, ip, if_handle, TRUE) : 0;
  return ipv6_hash(env, ip, p, router_id);
}

std::uint16_t hash_lb_ipv4_src_addr(const ipv4_hdr_st* ip) {
  return static_cast<std::uint16_t>(hash_3_tuple(ip->src_addr.get(), 0, 0) & ADDR_HASH_MASK);
}
std::uint16_t hash_lb_ipv4_dst_addr(const ipv4_hdr_st* ip) {
  return static_cast<std::uint16_t>(hash_3_tuple(ip->dst_addr.get(), 0, 0) & ADDR_HASH_MASK);
}

// An IPv6 address folds to one word: (w0 + w3) XOR (w1 + w2).
std::uint16_t hash_lb_ipv6_src_addr(const ipv6_hdr_st* ip) {
  const be_u32* s = ip->src_addr;
  return static_cast<std::uint16_t>(hash_3_tuple((s[0].get() + s[3].get()) ^ (s[1].get() + s[2].get()), 0, 0) &
                                    ADDR_HASH_MASK);
}
std::uint16_t hash_lb_ipv6_dst_addr(const ipv6_hdr_st* ip) {
  const be_u32* d = ip->dst_addr;
  return static_cast<std::uint16_t>(hash_3_tuple((d[0].get() + d[3].get()) ^ (d[1].get() + d[2].get()), 0, 0) &
                                    ADDR_HASH_MASK);
}

// The tunnel identifier and the inner addresses spread the tunnels of one
// pair of endpoints; a tunnel header the hash does not look through gives
// the ports word.
std::uint32_t hash_decode_gtp_hdr(env_t env, std::uint8_t* l4) {
  const std::uint8_t* end = pkt_get_rx_packet_end(env);
  const std::uint32_t ports = word_at(l4);
  if (!fits(l4, GTP_MIN_BYTES, end)) return ports;
  const std::uint8_t* inner = gtp_inner(l4);
  if (!inner) return ports;
  const std::uint32_t teid = word_at(l4 + GTP_TEID_OFFSET);
  if (!fits(inner, GTP_INNER_MIN_BYTES, end)) return teid;
  switch (inner[0] >> 4) {
    case 4: {
      const auto* v4 = reinterpret_cast<const ipv4_hdr_st*>(inner);
      return teid ^ v4->src_addr.get() ^ v4->dst_addr.get();
    }
    case 6: {
      if (!fits(inner, IPV6_HDR_BYTES, end)) return teid;
      const auto* v6 = reinterpret_cast<const ipv6_hdr_st*>(inner);
      return teid ^ ipv6_dst_fold(v6->dst_addr) ^ ipv6_src_fold(v6->src_addr);
    }
    default:
      return teid;
  }
}
