// Fluent builder of real frames for tests and the lcsim tool.
//
//   auto frame = pkt::builder()
//                    .eth(pkt::mac("00:00:00:00:00:01"), pkt::mac("00:00:00:00:00:02"))
//                    .vlan(0x88a8, 100).vlan(0x8100, 200)
//                    .ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1")).ttl(64)
//                    .udp(1234, 53).payload(32)
//                    .build();
//
// Layers are added outermost first. Every address or port pair is given
// source first. Fields that name the next protocol (ethertype, IP protocol,
// GRE protocol type, MPLS bottom-of-stack) follow from the next layer; lengths
// and checksums are computed. Modifiers such as ttl() change the layer added
// last and throw std::invalid_argument when it has no such field, as does
// any value too wide for its field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "pktlib/addresses.h"
#include "pktlib/layers.h"

namespace pkt {

namespace tcp_flags {
inline constexpr std::uint8_t fin = 0x01, syn = 0x02, rst = 0x04, psh = 0x08, ack = 0x10, urg = 0x20, ece = 0x40,
                              cwr = 0x80;
}

inline constexpr std::uint16_t vxlan_port = 4789, vxlan_source_port = 49152;

class builder {
 public:
  // Link layer and MPLS.
  builder& eth(mac_addr src, mac_addr dst);
  builder& vlan(std::uint16_t tpid, std::uint16_t vid, std::uint8_t pcp = 0, bool dei = false);
  builder& mpls(std::uint32_t label, std::uint8_t tc = 0, std::uint8_t ttl = 64);
  // After eth, vlan or gre: the type field to write instead of the one
  // implied by the next layer (needed before raw bytes).
  builder& ethertype(std::uint16_t type);

  // IPv4 and IPv6.
  builder& ipv4(ip4_addr src, ip4_addr dst);
  builder& ipv6(ip6_addr src, ip6_addr dst);
  builder& ttl(std::uint8_t ttl);            // IPv4 TTL, IPv6 hop limit, MPLS TTL
  builder& tos(std::uint8_t tos);            // IPv4 TOS byte, IPv6 traffic class
  builder& dscp(std::uint8_t dscp);          // upper six bits of either, ECN kept
  builder& protocol(std::uint8_t protocol);  // IPv4 protocol / last IPv6 next header, overriding the next layer's

  // IPv4 only.
  builder& id(std::uint16_t id);
  builder& dont_fragment();
  builder& more_fragments();
  builder& fragment_offset(std::uint16_t offset_bytes);                        // multiple of 8
  builder& ip_option(std::uint8_t type, std::vector<std::uint8_t> data = {});  // types 0 and 1 take no data
  builder& total_length(std::uint16_t length);                                 // deliberately wrong total length

  // IPv6 only; extension headers appear in the order they are added.
  builder& flow_label(std::uint32_t label);
  builder& hop_by_hop(std::vector<std::uint8_t> options = {});  // TLV options, padded to 8 bytes
  builder& destination_options(std::vector<std::uint8_t> options = {});
  // Routing header of type 0 or 2 layout: four reserved bytes, then addresses.
  builder& routing(std::uint8_t type, std::uint8_t segments_left, std::vector<ip6_addr> addresses);
  // Segment routing header (routing type 4). segments is in header order:
  // segments[0] is the last segment to visit, the packet's final destination.
  builder& segment_routing(std::vector<ip6_addr> segments, std::uint8_t segments_left);
  builder& fragment(std::uint16_t offset_bytes, bool more_fragments, std::uint32_t id);
  builder& auth_header(std::uint32_t spi, std::uint32_t seq,
                       std::vector<std::uint8_t> icv = std::vector<std::uint8_t>(12));

  // Transport: each must follow ipv4 or ipv6.
  builder& udp(std::uint16_t src_port, std::uint16_t dst_port);
  builder& tcp(std::uint16_t src_port, std::uint16_t dst_port, std::uint8_t flags = tcp_flags::syn,
               std::uint32_t seq = 0, std::uint32_t ack = 0);
  builder& icmp(std::uint8_t type, std::uint8_t code = 0);
  builder& icmp_echo_request(std::uint16_t id, std::uint16_t seq);
  builder& icmp_echo_reply(std::uint16_t id, std::uint16_t seq);
  builder& icmpv6(std::uint8_t type, std::uint8_t code = 0);
  builder& icmpv6_echo_request(std::uint16_t id, std::uint16_t seq);
  builder& icmpv6_echo_reply(std::uint16_t id, std::uint16_t seq);

  // Tunnels. vxlan() after ipv4/ipv6 first adds udp(vxlan_source_port, 4789).
  builder& gre(gre_options options = {});
  builder& vxlan(std::uint32_t vni);

  // Payload: size bytes counting 0x00, 0x01, ... (wrapping), or given bytes.
  builder& payload(std::size_t size);
  builder& raw(std::vector<std::uint8_t> bytes);

  // Deliberate faults.
  builder& bad_checksum();              // the last layer's checksum is wrong
  builder& truncate(std::size_t size);  // the frame is cut to size bytes

  std::vector<std::uint8_t> build() const;

 private:
  template <class... Accepted>
  layer& last_of(const char* what);
  template <class L>
  L& last(const char* what);
  std::uint8_t& traffic_class_byte(const char* what);
  builder& add(layer_fields fields);
  builder& add_ext_header(const char* what, std::uint8_t type, std::vector<std::uint8_t> body);

  std::vector<layer> layers_;
  std::optional<std::size_t> truncate_to_;
};

}  // namespace pkt
