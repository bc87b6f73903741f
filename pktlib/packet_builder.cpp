#include "pktlib/packet_builder.h"

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

#include "pktlib/byte_order.h"
#include "pktlib/frame_assembler.h"

namespace pkt {
namespace {

constexpr std::uint8_t srh_routing_type = 4;
constexpr std::size_t ipv4_max_options = 40;

constexpr std::uint8_t icmp_echo_reply_type = 0, icmp_echo_request_type = 8;
constexpr std::uint8_t icmpv6_echo_request_type = 128, icmpv6_echo_reply_type = 129;

void check_width(const char* field, std::uint64_t value, unsigned bits) {
  if (value >> bits) {
    throw std::invalid_argument(std::string(field) + " " + std::to_string(value) + " does not fit in " +
                                std::to_string(bits) + " bits");
  }
}

void check_fragment_offset(std::uint32_t offset_bytes) {
  if (offset_bytes % 8 != 0) {
    throw std::invalid_argument("fragment offset " + std::to_string(offset_bytes) + " is not a multiple of 8");
  }
}

// An options header is 2 bytes plus options, padded to a multiple of 8 with
// a Pad1 or PadN option.
std::vector<std::uint8_t> padded_options(std::vector<std::uint8_t> options) {
  const std::size_t pad = (8 - (options.size() + 2) % 8) % 8;
  if (pad == 1) options.push_back(0);
  if (pad > 1) {
    options.push_back(1);
    options.push_back(static_cast<std::uint8_t>(pad - 2));
    options.resize(options.size() + pad - 2, 0);
  }
  return options;
}

// Routing headers: type and segments left, four type-dependent bytes, then addresses.
std::vector<std::uint8_t> routing_body(std::uint8_t type, std::uint8_t segments_left,
                                       const std::array<std::uint8_t, 4>& type_bytes,
                                       const std::vector<ip6_addr>& addresses) {
  std::vector<std::uint8_t> body{type, segments_left, type_bytes[0], type_bytes[1], type_bytes[2], type_bytes[3]};
  for (const ip6_addr& addr : addresses) body.insert(body.end(), addr.begin(), addr.end());
  return body;
}

}  // namespace

template <class... Accepted>
layer& builder::last_of(const char* what) {
  if (layers_.empty() || !(std::holds_alternative<Accepted>(layers_.back().fields) || ...)) {
    const std::string after =
        layers_.empty() ? "at the start" : std::string("after ") + layer_name(layers_.back().fields);
    throw std::invalid_argument(std::string(what) + "() does not fit " + after);
  }
  return layers_.back();
}

template <class L>
L& builder::last(const char* what) {
  return std::get<L>(last_of<L>(what).fields);
}

std::uint8_t& builder::traffic_class_byte(const char* what) {
  layer_fields& fields = last_of<ipv4_layer, ipv6_layer>(what).fields;
  if (auto* v4 = std::get_if<ipv4_layer>(&fields)) return v4->tos;
  return std::get<ipv6_layer>(fields).traffic_class;
}

builder& builder::add(layer_fields fields) {
  layers_.push_back(layer{std::move(fields), std::nullopt, false});
  return *this;
}

builder& builder::add_ext_header(const char* what, std::uint8_t type, std::vector<std::uint8_t> body) {
  last<ipv6_layer>(what).ext_headers.push_back(ipv6_ext_header{type, std::move(body)});
  return *this;
}

builder& builder::eth(mac_addr src, mac_addr dst) { return add(eth_layer{src, dst}); }

builder& builder::vlan(std::uint16_t tpid, std::uint16_t vid, std::uint8_t pcp, bool dei) {
  check_width("VLAN id", vid, 12);
  check_width("VLAN priority", pcp, 3);
  return add(vlan_layer{tpid, vid, pcp, dei});
}

builder& builder::mpls(std::uint32_t label, std::uint8_t tc, std::uint8_t ttl) {
  check_width("MPLS label", label, 20);
  check_width("MPLS traffic class", tc, 3);
  return add(mpls_layer{label, tc, ttl});
}

builder& builder::ethertype(std::uint16_t type) {
  last_of<eth_layer, vlan_layer, gre_layer>("ethertype").next_protocol = type;
  return *this;
}

builder& builder::ipv4(ip4_addr src, ip4_addr dst) {
  ipv4_layer l;
  l.src = src;
  l.dst = dst;
  return add(std::move(l));
}

builder& builder::ipv6(ip6_addr src, ip6_addr dst) {
  ipv6_layer l;
  l.src = src;
  l.dst = dst;
  return add(std::move(l));
}

builder& builder::ttl(std::uint8_t ttl) {
  layer_fields& fields = last_of<ipv4_layer, ipv6_layer, mpls_layer>("ttl").fields;
  if (auto* v4 = std::get_if<ipv4_layer>(&fields)) v4->ttl = ttl;
  if (auto* v6 = std::get_if<ipv6_layer>(&fields)) v6->hop_limit = ttl;
  if (auto* label = std::get_if<mpls_layer>(&fields)) label->ttl = ttl;
  return *this;
}

builder& builder::tos(std::uint8_t tos) {
  traffic_class_byte("tos") = tos;
  return *this;
}

builder& builder::dscp(std::uint8_t dscp) {
  check_width("DSCP", dscp, 6);
  std::uint8_t& byte = traffic_class_byte("dscp");
  byte = static_cast<std::uint8_t>(dscp << 2 | (byte & 0x3));
  return *this;
}

builder& builder::protocol(std::uint8_t protocol) {
  last_of<ipv4_layer, ipv6_layer>("protocol").next_protocol = protocol;
  return *this;
}

builder& builder::id(std::uint16_t id) {
  last<ipv4_layer>("id").id = id;
  return *this;
}

builder& builder::dont_fragment() {
  last<ipv4_layer>("dont_fragment").dont_fragment = true;
  return *this;
}

builder& builder::more_fragments() {
  last<ipv4_layer>("more_fragments").more_fragments = true;
  return *this;
}

builder& builder::fragment_offset(std::uint16_t offset_bytes) {
  check_fragment_offset(offset_bytes);
  last<ipv4_layer>("fragment_offset").fragment_offset = offset_bytes;
  return *this;
}

builder& builder::ip_option(std::uint8_t type, std::vector<std::uint8_t> data) {
  const bool single_byte = type == 0 || type == 1;  // end of list, no-operation
  if (single_byte && !data.empty()) throw std::invalid_argument("IPv4 option types 0 and 1 carry no data");
  ipv4_layer& ip = last<ipv4_layer>("ip_option");
  std::size_t size = single_byte ? 1 : 2 + data.size();
  for (const ipv4_option& o : ip.options) size += o.type <= 1 ? 1 : 2 + o.data.size();
  if (size > ipv4_max_options) throw std::invalid_argument("IPv4 options exceed 40 bytes");
  ip.options.push_back(ipv4_option{type, std::move(data)});
  return *this;
}

builder& builder::total_length(std::uint16_t length) {
  last<ipv4_layer>("total_length").total_length = length;
  return *this;
}

builder& builder::flow_label(std::uint32_t label) {
  check_width("flow label", label, 20);
  last<ipv6_layer>("flow_label").flow_label = label;
  return *this;
}

builder& builder::hop_by_hop(std::vector<std::uint8_t> options) {
  return add_ext_header("hop_by_hop", ip_protocol::hop_by_hop, padded_options(std::move(options)));
}

builder& builder::destination_options(std::vector<std::uint8_t> options) {
  return add_ext_header("destination_options", ip_protocol::destination_options, padded_options(std::move(options)));
}

builder& builder::routing(std::uint8_t type, std::uint8_t segments_left, std::vector<ip6_addr> addresses) {
  constexpr std::array<std::uint8_t, 4> reserved{};
  ipv6_layer& ip = last<ipv6_layer>("routing");
  if (segments_left > 0 && !addresses.empty()) ip.final_destination = addresses.back();
  return add_ext_header("routing", ip_protocol::routing, routing_body(type, segments_left, reserved, addresses));
}

builder& builder::segment_routing(std::vector<ip6_addr> segments, std::uint8_t segments_left) {
  if (segments.empty() || segments.size() > 128) throw std::invalid_argument("a segment list holds 1 to 128 segments");
  const auto last_entry = static_cast<std::uint8_t>(segments.size() - 1);
  const std::array<std::uint8_t, 4> type_bytes{last_entry, 0, 0, 0};  // then flags and tag
  ipv6_layer& ip = last<ipv6_layer>("segment_routing");
  if (segments_left > 0) ip.final_destination = segments.front();
  return add_ext_header("segment_routing", ip_protocol::routing,
                        routing_body(srh_routing_type, segments_left, type_bytes, segments));
}

builder& builder::fragment(std::uint16_t offset_bytes, bool more_fragments, std::uint32_t id) {
  check_fragment_offset(offset_bytes);
  std::vector<std::uint8_t> body;
  append_be(body, offset_bytes | (more_fragments ? 1 : 0), 2);
  append_be(body, id, 4);
  return add_ext_header("fragment", ip_protocol::fragment, std::move(body));
}

builder& builder::auth_header(std::uint32_t spi, std::uint32_t seq, std::vector<std::uint8_t> icv) {
  if ((12 + icv.size()) % 8 != 0) throw std::invalid_argument("IPv6 AH length must be a multiple of 8 bytes");
  std::vector<std::uint8_t> body(2, 0);  // reserved
  append_be(body, spi, 4);
  append_be(body, seq, 4);
  body.insert(body.end(), icv.begin(), icv.end());
  return add_ext_header("auth_header", ip_protocol::auth_header, std::move(body));
}

builder& builder::udp(std::uint16_t src_port, std::uint16_t dst_port) {
  last_of<ipv4_layer, ipv6_layer>("udp");
  return add(udp_layer{src_port, dst_port});
}

builder& builder::tcp(std::uint16_t src_port, std::uint16_t dst_port, std::uint8_t flags, std::uint32_t seq,
                      std::uint32_t ack) {
  last_of<ipv4_layer, ipv6_layer>("tcp");
  return add(tcp_layer{src_port, dst_port, flags, seq, ack});
}

builder& builder::icmp(std::uint8_t type, std::uint8_t code) {
  last_of<ipv4_layer>("icmp");
  return add(icmp_layer{type, code});
}

builder& builder::icmp_echo_request(std::uint16_t id, std::uint16_t seq) {
  last_of<ipv4_layer>("icmp_echo_request");
  return add(icmp_layer{icmp_echo_request_type, 0, id, seq});
}

builder& builder::icmp_echo_reply(std::uint16_t id, std::uint16_t seq) {
  last_of<ipv4_layer>("icmp_echo_reply");
  return add(icmp_layer{icmp_echo_reply_type, 0, id, seq});
}

builder& builder::icmpv6(std::uint8_t type, std::uint8_t code) {
  last_of<ipv6_layer>("icmpv6");
  return add(icmpv6_layer{type, code});
}

builder& builder::icmpv6_echo_request(std::uint16_t id, std::uint16_t seq) {
  last_of<ipv6_layer>("icmpv6_echo_request");
  return add(icmpv6_layer{icmpv6_echo_request_type, 0, id, seq});
}

builder& builder::icmpv6_echo_reply(std::uint16_t id, std::uint16_t seq) {
  last_of<ipv6_layer>("icmpv6_echo_reply");
  return add(icmpv6_layer{icmpv6_echo_reply_type, 0, id, seq});
}

builder& builder::gre(gre_options options) { return add(gre_layer{options}); }

builder& builder::vxlan(std::uint32_t vni) {
  check_width("VNI", vni, 24);
  if (!layers_.empty() && (std::holds_alternative<ipv4_layer>(layers_.back().fields) ||
                           std::holds_alternative<ipv6_layer>(layers_.back().fields))) {
    udp(vxlan_source_port, vxlan_port);
  }
  last_of<udp_layer>("vxlan");
  return add(vxlan_layer{vni});
}

builder& builder::payload(std::size_t size) {
  std::vector<std::uint8_t> bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i);
  return raw(std::move(bytes));
}

builder& builder::raw(std::vector<std::uint8_t> bytes) { return add(raw_layer{std::move(bytes)}); }

builder& builder::bad_checksum() {
  if (layers_.empty() || !checksum_offset(layers_.back().fields)) {
    throw std::invalid_argument("bad_checksum() needs a layer with a checksum before it");
  }
  layers_.back().bad_checksum = true;
  return *this;
}

builder& builder::truncate(std::size_t size) {
  truncate_to_ = size;
  return *this;
}

std::vector<std::uint8_t> builder::build() const {
  std::vector<std::uint8_t> frame = assemble_frame(layers_);
  if (truncate_to_) {
    if (*truncate_to_ >= frame.size()) {
      throw std::invalid_argument("truncate(" + std::to_string(*truncate_to_) + ") does not shorten a " +
                                  std::to_string(frame.size()) + "-byte frame");
    }
    frame.resize(*truncate_to_);
  }
  return frame;
}

}  // namespace pkt
