// Helpers of the header tests: a record's bytes, and the bytes a field
// covers when it is set to all ones in an empty record.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace ht {

using bytes = std::vector<std::uint8_t>;
using byte_map = std::map<std::size_t, std::uint8_t>;

template <class R>
bytes bytes_of(const R& rec) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  return {p, p + sizeof(R)};
}

template <class R>
byte_map nonzero(const R& rec) {
  byte_map m;
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  for (std::size_t i = 0; i < sizeof(R); ++i) {
    if (p[i]) m[i] = p[i];
  }
  return m;
}

// Field F of record R set to all ones: the bytes it must touch.
template <class F, class R>
byte_map ones() {
  R rec{};
  F::set(rec, static_cast<std::uint32_t>(F::mask));
  return nonzero(rec);
}

struct field_row {
  const char* name;
  byte_map got;
  byte_map want;
};

}  // namespace ht
