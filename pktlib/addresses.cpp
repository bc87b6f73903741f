#include "pktlib/addresses.h"

#include <arpa/inet.h>

#include <cctype>
#include <stdexcept>
#include <string>

namespace pkt {
namespace {

[[noreturn]] void reject(const char* kind, std::string_view text) {
  throw std::invalid_argument("not a valid " + std::string(kind) + " address: '" + std::string(text) + "'");
}

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

template <class Addr>
Addr parse_inet(int family, const char* kind, std::string_view text) {
  Addr addr{};
  if (inet_pton(family, std::string(text).c_str(), addr.data()) != 1) reject(kind, text);
  return addr;
}

}  // namespace

mac_addr mac(std::string_view text) {
  mac_addr addr{};
  if (text.size() != 17) reject("MAC", text);
  for (std::size_t i = 0; i < addr.size(); ++i) {
    const std::size_t at = i * 3;
    const int hi = hex_digit(text[at]);
    const int lo = hex_digit(text[at + 1]);
    const bool separator_ok = i == addr.size() - 1 || text[at + 2] == ':' || text[at + 2] == '-';
    if (hi < 0 || lo < 0 || !separator_ok) reject("MAC", text);
    addr[i] = static_cast<std::uint8_t>(hi << 4 | lo);
  }
  return addr;
}

ip4_addr ip4(std::string_view text) { return parse_inet<ip4_addr>(AF_INET, "IPv4", text); }

ip6_addr ip6(std::string_view text) { return parse_inet<ip6_addr>(AF_INET6, "IPv6", text); }

}  // namespace pkt
