// The copy and fill helpers at their rounding edges.
#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

#include "dplane/infra/util.h"

namespace {

using buf = std::array<std::uint8_t, 24>;

buf counting() {
  buf b;
  std::iota(b.begin(), b.end(), std::uint8_t{1});
  return b;
}

// How many bytes of a zeroed destination a copy of `len` fills.
template <class Copy>
std::size_t copied(Copy copy, std::int32_t len) {
  buf src = counting();
  buf dst{};
  copy(dst.data(), src.data(), len);
  std::size_t n = 0;
  while (n < dst.size() && dst[n] == src[n]) ++n;
  return n;
}

TEST(CopyHelpers, WordAndDoubleWordCopiesRoundUp) {
  const std::pair<std::int32_t, std::size_t> words[] = {{-4, 0}, {0, 0}, {1, 4}, {5, 8}};
  for (const auto& [len, n] : words) EXPECT_EQ(copied(memcpy_words, len), n) << len;
  EXPECT_EQ(copied(memcpy_swords, 6), 8u);
  const std::pair<std::int32_t, std::size_t> dwords[] = {{-1, 8}, {1, 8}, {9, 16}};
  for (const auto& [len, n] : dwords) EXPECT_EQ(copied(memcpy_dwords, len), n) << len;
}

TEST(CopyHelpers, FillsWriteBigEndianWords) {
  buf b{};
  memset_words(b.data(), 5, 0x01020304);
  EXPECT_EQ(std::vector<std::uint8_t>(b.begin(), b.begin() + 9),
            (std::vector<std::uint8_t>{1, 2, 3, 4, 1, 2, 3, 4, 0}));
  memzero_words(b.data(), 3);
  EXPECT_EQ(b[3], 0);
  EXPECT_EQ(b[4], 1);
}

}  // namespace
