// The Internet checksum (RFC 1071) used by IPv4, ICMP and GRE headers.
#pragma once

#include <cstdint>
#include <span>

namespace pkt {

// Ones' complement of the ones' complement sum of the bytes taken as
// big-endian 16-bit words (an odd last byte is padded with zero). A region
// that already holds a correct checksum yields 0.
std::uint16_t internet_checksum(std::span<const std::uint8_t> bytes);

}  // namespace pkt
