// The NPU's hash unit: registers 32, 33 and 34 take three words, register 35
// answers the final mix of the lookup3 hash over them.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace model {

constexpr std::uint32_t hash_unit_answer(std::array<std::uint32_t, 3> in) {
  std::uint32_t a = in[0], b = in[1], c = in[2];
  c = (c ^ b) - std::rotl(b, 14);
  a = (a ^ c) - std::rotl(c, 11);
  b = (b ^ a) - std::rotl(a, 25);
  c = (c ^ b) - std::rotl(b, 16);
  a = (a ^ c) - std::rotl(c, 4);
  b = (b ^ a) - std::rotl(a, 14);
  c = (c ^ b) - std::rotl(b, 24);
  return c;
}

}  // namespace model
