#include "pktlib/layers.h"

#include <iterator>
#include <type_traits>

namespace pkt {

const char* layer_name(const layer_fields& fields) {
  static constexpr const char* names[] = {"eth", "vlan", "mpls",   "ipv4", "ipv6",  "udp",
                                          "tcp", "icmp", "icmpv6", "gre",  "vxlan", "raw"};
  static_assert(std::size(names) == std::variant_size_v<layer_fields>);
  return names[fields.index()];
}

std::optional<std::size_t> checksum_offset(const layer_fields& fields) {
  return std::visit(
      [](const auto& l) -> std::optional<std::size_t> {
        using L = std::decay_t<decltype(l)>;
        if constexpr (std::is_same_v<L, ipv4_layer>) return 10;
        if constexpr (std::is_same_v<L, udp_layer>) return 6;
        if constexpr (std::is_same_v<L, tcp_layer>) return 16;
        if constexpr (std::is_same_v<L, icmp_layer> || std::is_same_v<L, icmpv6_layer>) return 2;
        if constexpr (std::is_same_v<L, gre_layer>) {
          if (l.options.checksum) return 4;
        }
        return std::nullopt;
      },
      fields);
}

std::optional<std::uint16_t> ethertype_of(const layer_fields& fields) {
  return std::visit(
      [](const auto& l) -> std::optional<std::uint16_t> {
        using L = std::decay_t<decltype(l)>;
        if constexpr (std::is_same_v<L, vlan_layer>) return l.tpid;
        if constexpr (std::is_same_v<L, mpls_layer>) return 0x8847;
        if constexpr (std::is_same_v<L, ipv4_layer>) return 0x0800;
        if constexpr (std::is_same_v<L, ipv6_layer>) return 0x86dd;
        if constexpr (std::is_same_v<L, eth_layer>) return 0x6558;  // transparent Ethernet bridging
        return std::nullopt;
      },
      fields);
}

std::optional<std::uint8_t> ip_protocol_of(const layer_fields& fields) {
  return std::visit(
      [](const auto& l) -> std::optional<std::uint8_t> {
        using L = std::decay_t<decltype(l)>;
        if constexpr (std::is_same_v<L, icmp_layer>) return ip_protocol::icmp;
        if constexpr (std::is_same_v<L, ipv4_layer>) return ip_protocol::ipv4;
        if constexpr (std::is_same_v<L, tcp_layer>) return ip_protocol::tcp;
        if constexpr (std::is_same_v<L, udp_layer>) return ip_protocol::udp;
        if constexpr (std::is_same_v<L, ipv6_layer>) return ip_protocol::ipv6;
        if constexpr (std::is_same_v<L, gre_layer>) return ip_protocol::gre;
        if constexpr (std::is_same_v<L, icmpv6_layer>) return ip_protocol::icmpv6;
        if constexpr (std::is_same_v<L, mpls_layer>) return ip_protocol::mpls;
        if constexpr (std::is_same_v<L, eth_layer>) return ip_protocol::ethernet;
        return std::nullopt;
      },
      fields);
}

}  // namespace pkt
