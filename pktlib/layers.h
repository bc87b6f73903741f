// What the builder records for each layer of a packet, outermost first.
// Fields naming the protocol that follows (ethertype, IP protocol, GRE protocol
// type, MPLS bottom-of-stack) are not stored: they follow from the next layer
// when the frame is assembled, unless layer::next_protocol overrides them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

#include "pktlib/addresses.h"

namespace pkt {

// IPv4 protocol / IPv6 next-header numbers.
namespace ip_protocol {
inline constexpr std::uint8_t hop_by_hop = 0, icmp = 1, ipv4 = 4, tcp = 6, udp = 17, ipv6 = 41, routing = 43,
                              fragment = 44, gre = 47, auth_header = 51, icmpv6 = 58, no_next_header = 59,
                              destination_options = 60, mpls = 137, ethernet = 143;
}

struct eth_layer {
  mac_addr src{}, dst{};
};

struct vlan_layer {
  std::uint16_t tpid = 0x8100;
  std::uint16_t vid = 0;
  std::uint8_t pcp = 0;
  bool dei = false;
};

struct mpls_layer {
  std::uint32_t label = 0;
  std::uint8_t tc = 0;
  std::uint8_t ttl = 64;
};

struct ipv4_option {
  std::uint8_t type = 0;
  std::vector<std::uint8_t> data;  // after the type and length bytes
};

struct ipv4_layer {
  ip4_addr src{}, dst{};
  std::uint8_t tos = 0;
  std::uint8_t ttl = 64;
  std::uint16_t id = 0;
  bool dont_fragment = false;
  bool more_fragments = false;
  std::uint16_t fragment_offset = 0;  // in bytes, a multiple of 8
  std::vector<ipv4_option> options;
  std::optional<std::uint16_t> total_length;  // overrides the true length
};

struct ipv6_ext_header {
  std::uint8_t type = 0;
  std::vector<std::uint8_t> body;  // after the next-header and length bytes
};

struct ipv6_layer {
  ip6_addr src{}, dst{};
  std::uint8_t traffic_class = 0;
  std::uint32_t flow_label = 0;
  std::uint8_t hop_limit = 64;
  std::vector<ipv6_ext_header> ext_headers;
  // Set by a routing header with segments left: upper-layer checksums are
  // computed against the final destination, not the current one.
  std::optional<ip6_addr> final_destination;
};

struct udp_layer {
  std::uint16_t src_port = 0, dst_port = 0;
};

struct tcp_layer {
  std::uint16_t src_port = 0, dst_port = 0;
  std::uint8_t flags = 0;
  std::uint32_t seq = 0, ack = 0;
  std::uint16_t window = 65535;
};

// ICMP and ICMPv6 share a layout; id and seq fill the second header word,
// which echo messages use as identifier and sequence number.
struct icmp_layer {
  std::uint8_t type = 0, code = 0;
  std::uint16_t id = 0, seq = 0;
};

struct icmpv6_layer {
  std::uint8_t type = 0, code = 0;
  std::uint16_t id = 0, seq = 0;
};

struct gre_options {
  bool checksum = false;
  std::optional<std::uint32_t> key;
  std::optional<std::uint32_t> seq;
};

struct gre_layer {
  gre_options options;
};

struct vxlan_layer {
  std::uint32_t vni = 0;
};

struct raw_layer {
  std::vector<std::uint8_t> bytes;
};

using layer_fields = std::variant<eth_layer, vlan_layer, mpls_layer, ipv4_layer, ipv6_layer, udp_layer, tcp_layer,
                                  icmp_layer, icmpv6_layer, gre_layer, vxlan_layer, raw_layer>;

struct layer {
  layer_fields fields;
  // Ethertype after eth/vlan/gre, protocol after ipv4/ipv6, in place of the
  // value implied by the next layer.
  std::optional<std::uint16_t> next_protocol;
  bool bad_checksum = false;
};

// Short lower-case name of the layer kind, for error messages.
const char* layer_name(const layer_fields& fields);

// Offset of the checksum field within the layer's header, if it has one.
std::optional<std::size_t> checksum_offset(const layer_fields& fields);

// The value an ethertype (or GRE protocol type) field takes when this layer
// follows, if the layer has one.
std::optional<std::uint16_t> ethertype_of(const layer_fields& fields);

// The value an IPv4 protocol / IPv6 next-header field takes when this layer
// follows, if the layer has one.
std::optional<std::uint8_t> ip_protocol_of(const layer_fields& fields);

}  // namespace pkt
