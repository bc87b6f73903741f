#include "ipv6_ext_hdr.h"

#include <cstring>

#include "dplane/infra/ps.h"
#include "ipv4.h"
#include "npu/zephra/pkt_buf.h"

namespace {

using cf = common_flags_st;
using eh = ipv6_eh_flags_st;

// The received length's low 14 bits, counted from the arrival place.
constexpr std::uint32_t RX_LENGTH_MASK = 0x3FFF;
constexpr std::uint32_t EXT_HDR_MIN_BYTES = 8;
constexpr std::uint32_t EXT_HDR_UNIT = 8;
constexpr std::uint32_t AH_UNIT = 4;
constexpr std::uint32_t FRAG_HDR_BYTES = 8;
constexpr std::uint32_t TCP_FLAGS_OFFSET = 13;
constexpr std::uint8_t IP_PROTO_IPV6 = 41;

const std::uint8_t* buffer_end(env_t env) {
  return pkt_get_rx_pkt_mem_start(env) + PKT_START_OFFSET + (get_orig_pkt_len(env) & RX_LENGTH_MASK);
}

// Bytes an L4 header must bring for its first word and flags to count.
std::uint32_t l4_min_bytes(std::uint8_t protocol) {
  switch (protocol) {
    case IP_PROTO_TCP:
      return 20;
    case IP_PROTO_UDP:
      return 8;
    case IP_PROTO_SCTP:
      return 12;
    default:
      return 0;
  }
}

bool is_l4(std::uint8_t protocol) { return l4_min_bytes(protocol) != 0; }

void store_l4(env_t env, std::uint8_t protocol, std::uint8_t* l4) {
  ip_l4_info_st& info = *ps_put_mod_ip_l4_info(env);
  info.protocol = protocol;
  *ps_put_def_l4_hdr_ptr(env) = l4;
}

void store_l4_word(env_t env, const std::uint8_t* l4) {
  std::memcpy(&ps_put_mod_ip_l4_info(env)->l4_ports, l4, sizeof(l4_ports_st));
}

// The end of the walk at TCP, UDP or SCTP: it needs the header's bytes.
std::uint32_t end_at_l4(env_t env, std::uint8_t protocol, std::uint8_t* l4, std::uint32_t remaining) {
  if (remaining < l4_min_bytes(protocol)) return IPV6_EXT_HDR_BAD_CHAIN;
  store_l4(env, protocol, l4);
  store_l4_word(env, l4);
  if (protocol == IP_PROTO_TCP) ps_put_mod_ip_l4_info(env)->tcp_flags = l4[TCP_FLAGS_OFFSET];
  return IPV6_EXT_HDR_OK;
}

std::uint32_t header_bytes(std::uint8_t type, const std::uint8_t* hdr) {
  switch (type) {
    case IP_PROTO_FRAGMENT:
      return FRAG_HDR_BYTES;
    case IP_PROTO_AH:
      return (hdr[1] + 2u) * AH_UNIT;
    default:
      return (hdr[1] + 1u) * EXT_HDR_UNIT;
  }
}

// One extension header: its flag and what it stores. TRUE when it ends the walk.
bool take_header(env_t env, std::uint8_t type, std::uint8_t* hdr) {
  ipv6_eh_flags_st& flags = *ps_put_mod_ipv6_eh_flags(env);
  switch (type) {
    case IP_PROTO_HOP_BY_HOP:
      eh::hop::set(flags, 1);
      return false;
    case IP_PROTO_DEST_OPTS:
      eh::dest::set(flags, 1);
      return false;
    case IP_PROTO_AH:
      eh::ah::set(flags, 1);
      return false;
    case IP_PROTO_MOBILITY:
      return false;
    case IP_PROTO_ROUTING:
      if (reinterpret_cast<const ipv6_routing_hdr_st*>(hdr)->routing_type != IPV6_ROUTING_TYPE_SRH) {
        eh::routing::set(flags, 1);
        return false;
      }
      eh::srh::set(flags, 1);
      store_l4(env, IP_PROTO_IPV6, hdr);
      return true;
    case IP_PROTO_FRAGMENT: {
      eh::frag::set(flags, 1);
      const auto* frag = reinterpret_cast<const ipv6_frag_hdr_st*>(hdr);
      const std::uint16_t field = frag->frag_off_mf.get() & ~IPV6_FRAG_RESERVED_MASK;
      ps_put_mod_ip_l4_info(env)->frag_off_mf = field;
      if ((field & IPV6_FRAG_OFFSET_MASK) == 0) return false;
      store_l4(env, frag->next_header, hdr + FRAG_HDR_BYTES);
      return true;
    }
    default:
      return false;
  }
}

bool is_ext_header(std::uint8_t type) {
  return type == IP_PROTO_HOP_BY_HOP || type == IP_PROTO_ROUTING || type == IP_PROTO_FRAGMENT || type == IP_PROTO_AH ||
         type == IP_PROTO_DEST_OPTS || type == IP_PROTO_MOBILITY;
}

}  // namespace

std::uint32_t ipv6_ext_hdr_parse_ing(env_t env, ipv6_hdr_st* ip) {
  cf::ipv6_ext_hdr_parsed::set(*ps_put_mod_common_flags(env), 1);
  *ps_put_mod_ipv6_eh_flags(env) = {};
  ps_put_mod_ip_l4_info(env)->frag_off_mf = 0;
  auto* payload = reinterpret_cast<std::uint8_t*>(ip) + IPV6_HDR_BYTES;
  const std::uint8_t* end = buffer_end(env);
  if (payload > end || payload + ip->payload_length.get() > end) return IPV6_EXT_HDR_BAD_CHAIN;
  if (ip->payload_length.get() == 0 && ip->next_header != IP_PROTO_HOP_BY_HOP) return IPV6_EXT_HDR_BAD_CHAIN;
  if (is_l4(ip->next_header)) return end_at_l4(env, ip->next_header, payload, ip->payload_length.get());
  return ipv6_ext_hdr_parse_slow(env, ip);
}

// A walk bounded by the payload length: each header must fit in what is
// left of it. A hop-by-hop header stands only first; a jumbogram's (payload
// length 0) carries the real length in its option and passes.
std::uint32_t ipv6_ext_hdr_parse_slow(env_t env, ipv6_hdr_st* ip) {
  std::uint8_t type = ip->next_header;
  auto* hdr = reinterpret_cast<std::uint8_t*>(ip) + IPV6_HDR_BYTES;
  std::uint32_t remaining = ip->payload_length.get();
  if (remaining == 0) {
    eh::hop::set(*ps_put_mod_ipv6_eh_flags(env), 1);
    return IPV6_EXT_HDR_OK;
  }
  for (bool first = true;; first = false) {
    if (is_l4(type)) return end_at_l4(env, type, hdr, remaining);
    if (!is_ext_header(type)) {
      store_l4(env, type, hdr);
      if (remaining >= sizeof(l4_ports_st)) store_l4_word(env, hdr);
      return IPV6_EXT_HDR_OK;
    }
    if (remaining < EXT_HDR_MIN_BYTES || (type == IP_PROTO_HOP_BY_HOP && !first)) return IPV6_EXT_HDR_BAD_CHAIN;
    const std::uint32_t bytes = header_bytes(type, hdr);
    if (bytes > remaining) return IPV6_EXT_HDR_BAD_CHAIN;
    if (take_header(env, type, hdr)) return IPV6_EXT_HDR_OK;
    remaining -= bytes;
    type = hdr[0];
    hdr += bytes;
  }
}
