// The control side's bundle writer: the records it writes, bit for bit; a
// bundle replaced or removed while the table is live; and input it refuses
// without writing anything.
#include <array>

#include "ctrl/page_descriptors.h"
#include "fwc_lag.h"
#include "lag_test_util.h"

namespace {

using lag_test::bundle_of;
using record = std::array<std::uint8_t, 16>;

constexpr std::uint32_t BUNDLE = 3;

class BundleWriter : public lag_test::BundleTest {
 protected:
  record read(std::uint32_t addr) {
    record r{};
    h.npu().memory().read(h.npu().memory().translate(addr), r);
    return r;
  }
  record bundle_record(std::uint32_t id) { return read(TABLE_BASE_LAG_INFO_ING + id * TABLE_STRIDE_LAG_INFO_ING); }
  record member_record(std::uint32_t id, std::uint32_t number) {
    return read(ctrl::paged_record_address(h.npu(), TPD_IDX_LAG_ING, id * ctrl::BUNDLE_MEMBER_BLOCK + number).value());
  }
  std::uint32_t valid_members(std::uint32_t id) {
    std::uint32_t n = 0;
    for (std::uint32_t i = 0; i < ctrl::BUNDLE_MEMBER_BLOCK; ++i) {
      n += lag_mem_info_fields_st::bf::valid::get_raw(member_record(id, i).data());
    }
    return n;
  }
};

TEST_F(BundleWriter, WritesTheRecordsAtTheirPositions) {
  ctrl::bundle b;
  b.name_id = 0x1234;
  b.truncate_hash = true;
  b.members = {{0x101, 7, true, false, 0x11},
               {0x7FF, 0xBEEF, false, true, 0x22},
               {0x102, 9, true, false, 0x33},
               {0x103, 10, true, false, 0x44},
               {0x104, 11, true, false, 0x55}};
  add(BUNDLE, b);
  // Valid, truncated, members from record 3 * 64 = 0xC0; five of them.
  EXPECT_EQ(bundle_record(BUNDLE), (record{0xC0, 0x00, 0x00, 0xC0, 0x01, 0x40}));
  // Valid, on another NPU, on another rack; selector, name, VQI, port.
  EXPECT_EQ(member_record(BUNDLE, 1), (record{0xA0, 0x22, 0x12, 0x34, 0x00, 0x07, 0xFF, 0x00, 0xBE, 0xEF}));
  EXPECT_EQ(member_record(BUNDLE, 0)[0], 0xC0);  // valid and local
  EXPECT_EQ(valid_members(BUNDLE), 5u);
}

TEST_F(BundleWriter, AReplacedBundleKeepsNoMemberPastItsListAndARemovedOneNone) {
  add(BUNDLE, bundle_of(5));
  add(BUNDLE, bundle_of(2));
  EXPECT_EQ(lag_tbl_info_fields_st::num_members_global::get_raw(bundle_record(BUNDLE).data()), 2u);
  EXPECT_EQ(valid_members(BUNDLE), 2u);
  EXPECT_EQ(member_record(BUNDLE, 2), record{});
  add(BUNDLE, bundle_of(64));
  EXPECT_EQ(valid_members(BUNDLE), 64u);

  add(BUNDLE + 1, bundle_of(4));
  EXPECT_EQ(h.tables().lags().remove(BUNDLE), ctrl::error::none);
  EXPECT_EQ(bundle_record(BUNDLE), record{});
  EXPECT_EQ(valid_members(BUNDLE), 0u);
  EXPECT_EQ(valid_members(BUNDLE + 1), 4u);
  EXPECT_EQ(h.tables().lags().remove(BUNDLE), ctrl::error::not_found);
  EXPECT_EQ(h.tables().lags().remove(ctrl::BUNDLE_COUNT), ctrl::error::out_of_range);
}

TEST_F(BundleWriter, RefusesABadBundleWithNothingWritten) {
  ctrl::bundle far_vqi = bundle_of(3);
  far_vqi.members[2].vqi = 2048;  // past the fabric's VQIs
  EXPECT_EQ(h.tables().lags().write(ctrl::BUNDLE_COUNT, bundle_of(2)), ctrl::error::out_of_range);
  EXPECT_EQ(h.tables().lags().write(BUNDLE, bundle_of(0)), ctrl::error::bad_size);
  EXPECT_EQ(h.tables().lags().write(BUNDLE, far_vqi), ctrl::error::out_of_range);
  EXPECT_EQ(bundle_record(BUNDLE), record{});
  EXPECT_EQ(valid_members(BUNDLE), 0u);
}

}  // namespace
