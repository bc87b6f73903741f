// libtins writes the IP headers, extension headers and transport headers with
// their lengths and checksums. What it gets wrong for our use is corrected
// here, right after it serializes:
// - it writes each IPv4 option one byte too long, over the next bytes, so
//   options are inserted afterwards (transport checksums do not cover them);
// - transport checksums behind a routing header must use the final
//   destination;
// - the AH length field counts 4-byte words, not 8-byte ones;
// - the protocol / last next-header field is derived from the transport
//   layer, so an explicit override has to be written back;
// - the IPv4 total length is always the true one.
#include "pktlib/ip_serializer.h"

#include <tins/icmp.h>
#include <tins/icmpv6.h>
#include <tins/ip.h>
#include <tins/ipv6.h>
#include <tins/rawpdu.h>
#include <tins/tcp.h>
#include <tins/udp.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <type_traits>

#include "pktlib/byte_order.h"
#include "pktlib/checksum.h"

namespace pkt {
namespace {

constexpr std::size_t ipv4_header_size = 20;
constexpr std::uint8_t ipv4_no_operation = 1;
constexpr std::size_t ipv6_header_size = 40;
constexpr std::size_t ipv6_next_header_at = 6;
constexpr std::size_t ipv6_dst_at = 24;

Tins::IPv4Address to_tins(const ip4_addr& addr) {
  std::uint32_t network_order;
  std::memcpy(&network_order, addr.data(), sizeof network_order);
  return Tins::IPv4Address(network_order);
}

Tins::IPv6Address to_tins(const ip6_addr& addr) { return Tins::IPv6Address(addr.data()); }

std::unique_ptr<Tins::PDU> make_transport(const layer_fields& fields) {
  return std::visit(
      [](const auto& l) -> std::unique_ptr<Tins::PDU> {
        using L = std::decay_t<decltype(l)>;
        if constexpr (std::is_same_v<L, udp_layer>) {
          return std::make_unique<Tins::UDP>(l.dst_port, l.src_port);
        } else if constexpr (std::is_same_v<L, tcp_layer>) {
          auto tcp = std::make_unique<Tins::TCP>(l.dst_port, l.src_port);
          tcp->flags(l.flags);
          tcp->seq(l.seq);
          tcp->ack_seq(l.ack);
          tcp->window(l.window);
          return tcp;
        } else if constexpr (std::is_same_v<L, icmp_layer>) {
          auto icmp = std::make_unique<Tins::ICMP>(static_cast<Tins::ICMP::Flags>(l.type));
          icmp->code(l.code);
          icmp->id(l.id);
          icmp->sequence(l.seq);
          return icmp;
        } else if constexpr (std::is_same_v<L, icmpv6_layer>) {
          auto icmp = std::make_unique<Tins::ICMPv6>(static_cast<Tins::ICMPv6::Types>(l.type));
          icmp->code(l.code);
          icmp->identifier(l.id);
          icmp->sequence(l.seq);
          return icmp;
        } else {
          throw std::invalid_argument("not a transport layer");
        }
      },
      fields);
}

ip_bytes serialize_chain(Tins::PDU& ip, const layer_fields* transport, std::span<const std::uint8_t> inner) {
  Tins::PDU* tail = &ip;
  std::size_t transport_header_size = 0;
  if (transport) {
    tail->inner_pdu(make_transport(*transport).release());
    tail = tail->inner_pdu();
    transport_header_size = tail->header_size();
  }
  if (!inner.empty()) tail->inner_pdu(new Tins::RawPDU(inner.data(), static_cast<std::uint32_t>(inner.size())));
  ip_bytes out{ip.serialize(), 0};
  out.payload_offset = out.bytes.size() - inner.size() - transport_header_size;
  return out;
}

// Options padded with end-of-list bytes to a multiple of 4.
std::vector<std::uint8_t> encode_options(const std::vector<ipv4_option>& options) {
  std::vector<std::uint8_t> out;
  for (const ipv4_option& option : options) {
    out.push_back(option.type);
    if (option.type <= ipv4_no_operation) continue;  // single-byte options
    out.push_back(static_cast<std::uint8_t>(2 + option.data.size()));
    out.insert(out.end(), option.data.begin(), option.data.end());
  }
  out.resize((out.size() + 3) / 4 * 4, 0);
  return out;
}

}  // namespace

ip_bytes serialize_ipv4(const ipv4_layer& l, std::uint8_t protocol, const layer_fields* transport,
                        std::span<const std::uint8_t> inner) {
  Tins::IP ip(to_tins(l.dst), to_tins(l.src));
  ip.tos(l.tos);
  ip.ttl(l.ttl);
  ip.id(l.id);
  ip.flags(static_cast<Tins::IP::Flags>((l.dont_fragment ? Tins::IP::DONT_FRAGMENT : 0) |
                                        (l.more_fragments ? Tins::IP::MORE_FRAGMENTS : 0)));
  ip.fragment_offset(l.fragment_offset / 8);
  ip_bytes out = serialize_chain(ip, transport, inner);

  const std::vector<std::uint8_t> options = encode_options(l.options);
  std::vector<std::uint8_t>& b = out.bytes;
  b.insert(b.begin() + ipv4_header_size, options.begin(), options.end());
  out.payload_offset += options.size();
  b[0] = static_cast<std::uint8_t>(0x40 | out.payload_offset / 4);
  b[9] = protocol;
  store_be16(b, 2, l.total_length.value_or(static_cast<std::uint16_t>(b.size())));
  store_be16(b, 10, 0);
  store_be16(b, 10, internet_checksum(std::span(b).first(out.payload_offset)));
  return out;
}

ip_bytes serialize_ipv6(const ipv6_layer& l, std::uint8_t protocol, const layer_fields* transport,
                        std::span<const std::uint8_t> inner) {
  Tins::IPv6 ip(to_tins(l.final_destination.value_or(l.dst)), to_tins(l.src));
  ip.traffic_class(l.traffic_class);
  ip.flow_label(l.flow_label);
  ip.hop_limit(l.hop_limit);
  for (const ipv6_ext_header& ext : l.ext_headers) {
    ip.add_header(Tins::IPv6::ext_header(ext.type, ext.body.size(), ext.body.data()));
  }
  ip.next_header(protocol);
  ip_bytes out = serialize_chain(ip, transport, inner);

  std::vector<std::uint8_t>& b = out.bytes;
  std::copy(l.dst.begin(), l.dst.end(), b.begin() + ipv6_dst_at);
  std::size_t last_next_header_at = ipv6_next_header_at;
  std::size_t at = ipv6_header_size;
  for (const ipv6_ext_header& ext : l.ext_headers) {
    const std::size_t size = 2 + ext.body.size();
    if (ext.type == ip_protocol::auth_header) b[at + 1] = static_cast<std::uint8_t>(size / 4 - 2);
    last_next_header_at = at;
    at += size;
  }
  b[last_next_header_at] = protocol;
  return out;
}

}  // namespace pkt
