// Big-endian records: the value types and flag-word numbering. Sub-byte fields
// across byte boundaries are checked by each header's golden round trip.
#include <gtest/gtest.h>

#include <vector>

#include "be_types.h"
#include "dist_hdr.h"
#include "dplane/infra/ps_records.h"
#include "fab_hdr.h"
#include "fwc_port.h"
#include "pdma_hdr.h"

namespace {

using bytes = std::vector<std::uint8_t>;

template <class T>
bytes bytes_of(const T& v) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&v);
  return {p, p + sizeof(T)};
}

TEST(ByteOrder, BigEndianValuesFirstLittleEndianValuesLast) {
  be_u24 b;
  b = 0xFF123456;  // only 24 bits are kept
  be_u64 c;
  c = 0x0102030405060708;
  le_u32 e;
  e = 0x12345678;
  EXPECT_EQ(bytes_of(b), (bytes{0x12, 0x34, 0x56}));
  EXPECT_EQ(b.get(), 0x123456u);
  EXPECT_EQ(bytes_of(c), (bytes{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(bytes_of(e), (bytes{0x78, 0x56, 0x34, 0x12}));
  EXPECT_EQ(e.get(), 0x12345678u);
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
