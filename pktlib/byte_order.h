// Big-endian field writers shared by the header writers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pkt {

inline void append_be(std::vector<std::uint8_t>& out, std::uint64_t value, std::size_t bytes) {
  out.resize(out.size() + bytes);
  for (auto it = out.rbegin(); bytes-- > 0; ++it, value >>= 8) *it = static_cast<std::uint8_t>(value);
}

inline void store_be16(std::vector<std::uint8_t>& out, std::size_t at, std::uint16_t value) {
  out[at] = static_cast<std::uint8_t>(value >> 8);
  out[at + 1] = static_cast<std::uint8_t>(value);
}

}  // namespace pkt
