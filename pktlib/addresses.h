// Address value types for building packets, and parsers for their usual text
// forms. The parsers throw std::invalid_argument naming the bad text, so a typo
// in a test fails loudly instead of producing a zero address.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace pkt {

using mac_addr = std::array<std::uint8_t, 6>;
using ip4_addr = std::array<std::uint8_t, 4>;
using ip6_addr = std::array<std::uint8_t, 16>;

// "00:11:22:33:44:55" (':' or '-' separated, either case).
mac_addr mac(std::string_view text);
// Dotted quad, e.g. "192.0.2.1".
ip4_addr ip4(std::string_view text);
// Any RFC 4291 text form, e.g. "2001:db8::1".
ip6_addr ip6(std::string_view text);

}  // namespace pkt
