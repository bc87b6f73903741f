#include "counter_names.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace names {

namespace {

struct counter_name {
  std::uint32_t number;
  const char* description;
};

// In ascending order of number.
constexpr std::array<counter_name, 20> COUNTERS = {{
    {0x60, "traced packet dropped on egress"},
    {0x64, "traced packet dropped on ingress"},
    {0x66, "fabric packet traced"},
    {0xB7, "record read through its shadow"},
    {0xE2, "bundle member on another NPU"},
    {0x11B, "MGSCP bundle hashed by the raw hash"},
    {0x190, "MPLS to a foreign MAC"},
    {0x20F, "host buffer during ISSU"},
    {0x220, "bad host inject"},
    {0x22E, "egress bundle or member not valid"},
    {0x240, "ingress bundle or member not valid"},
    {0x28F, "host buffer of unknown type"},
    {0x294, "fabric header type without a handler"},
    {0x295, "unknown ingress vector"},
    {0x297, "fabric packet marked bad"},
    {0x2C7, "satellite port not in unicast state"},
    {0x589, "IPv4 disabled on the interface"},
    {0x596, "IPv6 disabled on the interface"},
    {0x5A8, "MPLS disabled on the interface"},
    {0x5D2, "interface in maintenance mode"},
}};

static_assert(std::is_sorted(COUNTERS.begin(), COUNTERS.end(),
                             [](const counter_name& a, const counter_name& b) { return a.number < b.number; }));

}  // namespace

const char* counter_description(std::uint32_t n) {
  auto it = std::lower_bound(COUNTERS.begin(), COUNTERS.end(), n,
                             [](const counter_name& c, std::uint32_t v) { return c.number < v; });
  return it != COUNTERS.end() && it->number == n ? it->description : nullptr;
}

std::string counter_label(std::uint32_t n) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%X", n);
  const char* d = counter_description(n);
  std::string label(buf);
  if (d) label.append(" (").append(d).append(")");
  return label;
}

}  // namespace names
