// Flag words of big-endian records: bits numbered from the least significant.
// Byte order and sub-byte fields across byte boundaries are checked by each
// header's golden round trip.
#include <gtest/gtest.h>

#include <vector>

#include "be_types.h"
#include "dplane/infra/ps_records.h"

namespace {

using bytes = std::vector<std::uint8_t>;

template <class T>
bytes bytes_of(const T& v) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&v);
  return {p, p + sizeof(T)};
}

TEST(SubByteFields, FlagWordsNumberBitsFromTheLeastSignificant) {
  using cf = common_flags_st;
  common_flags_st f{};
  cf::l3_type::set(f, 3);
  cf::keep_gpm::set(f, 1);
  cf::gpm_allocated::set(f, 2);
  EXPECT_EQ(bytes_of(f), (bytes{0x20, 0, 0, 0, 0, 0, 0x06, 0x02}));
  EXPECT_EQ((be_word_mask<0, cf::keep_gpm, cf::pkt_trace_on, cf::fast_switch>()), 0x20400001u);
  EXPECT_EQ((be_word_mask<4, cf::l3_type, cf::gpm_allocated>()), 0x00000603u);
}

}  // namespace
