// Helpers of the header tests: a header of zeros but for some bytes, and the golden round trip
// of a record whose fields hold distinct values.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

namespace ht {

using bytes = std::vector<std::uint8_t>;
using byte_map = std::map<std::size_t, std::uint8_t>;

// An n-byte header of zeros but for `set`.
inline bytes with(std::size_t n, const byte_map& set) {
  bytes b(n, 0);
  for (const auto& [pos, v] : set) b[pos] = v;
  return b;
}

// Writing the fields F into an empty record R gives the golden bytes, and
// the golden bytes read back give the values, in the order of the fields.
template <class R, class... F>
void expect_round_trip(const bytes& golden, const std::array<std::uint32_t, sizeof...(F)>& values) {
  ASSERT_EQ(golden.size(), sizeof(R));
  R written{};
  std::size_t i = 0;
  (F::set(written, values[i++]), ...);
  const auto* w = reinterpret_cast<const std::uint8_t*>(&written);
  EXPECT_EQ(bytes(w, w + sizeof(R)), golden);
  R read;
  std::memcpy(&read, golden.data(), sizeof(R));
  i = 0;
  const auto check = [&](std::uint32_t got) {
    EXPECT_EQ(got, values[i]) << "field " << i << " of the list";
    ++i;
  };
  (check(F::get(read)), ...);
}

}  // namespace ht
