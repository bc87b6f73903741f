// Serializes an IPv4 or IPv6 layer together with the transport layer that
// follows it, so transport checksums cover the right pseudo header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "pktlib/layers.h"

namespace pkt {

struct ip_bytes {
  std::vector<std::uint8_t> bytes;  // IP header, transport header, inner bytes
  std::size_t payload_offset = 0;   // end of the IP and extension headers
};

// transport is null or a udp/tcp/icmp/icmpv6 layer; inner is what follows it
// (or the IP header when transport is null). protocol is written to the IPv4
// protocol field or to the last IPv6 next-header field.
ip_bytes serialize_ipv4(const ipv4_layer& ip, std::uint8_t protocol, const layer_fields* transport,
                        std::span<const std::uint8_t> inner);
ip_bytes serialize_ipv6(const ipv6_layer& ip, std::uint8_t protocol, const layer_fields* transport,
                        std::span<const std::uint8_t> inner);

}  // namespace pkt
