// TCAM searches through the ITC: the engine's priority order and bit mask
// register, the multi search's answer order, the
// result records, the control side's refusals, and the IGPU's exact-match
// VLAN classification.
#include "npu/zephra/tcam.h"
#include "npu/zephra/arl.h"
#include "npu/zephra/tlu.h"

#include "ctrl/tcam_entries.h"
#include "dplane/infra/lookup_tables.h"
#include "search_test_util.h"

namespace {

using namespace st;

using key400 = std::array<std::uint8_t, 50>;
constexpr std::uint32_t KEY_LOC = REQ + TCAM_ARL_CMD_LOC + 4 + 2;  // behind the header, word 0 and reserved_3
constexpr std::uint32_t ARL_REQ_BYTES = sizeof(tcam_arl_search400_request_st);
constexpr std::uint32_t ACL = 5;  // profiles of 400 bits
constexpr std::uint32_t QOS = 6;

key400 key_of(std::uint8_t fill) {
  key400 k;
  k.fill(fill);
  return k;
}

class TcamSearches : public testing::Test {
 protected:
  void SetUp() override {
    key400 bmr;
    bmr.fill(0xFF);
    bmr[0] = 0x0F;  // a search with bmr enabled ignores the high half of the first byte
    ASSERT_EQ(tcam().configure_profile(ACL, 400, bmr), ctrl::error::none);
    ASSERT_EQ(tcam().configure_profile(QOS, 400), ctrl::error::none);
  }
  ctrl::tcam_entries& tcam() { return h.tables().tcam(); }
  void entry(std::uint32_t index, std::uint32_t profile, const key400& value, const key400& mask) {
    ASSERT_EQ(tcam().write_entry({index, profile, value, mask}), ctrl::error::none);
  }
  // Searches `key` in one profile through resource 59; the hit address, or none.
  std::optional<std::uint32_t> search(const key400& key, std::uint32_t profile, boolean_t bmr = FALSE) {
    std::optional<std::uint32_t> hit;
    h.on_thread([&](env_t env) {
      std::memcpy(dmem_at(env, KEY_LOC), key.data(), key.size());
      arl_header_only_init_common_ING(env, dmem_at(env, KEY_LOC - 2), TRUE);
      npu_tcam_lookup_400b(env, 1, profile, REQ, RESP, ARL_REQ_BYTES, TCAM_ARL_CMD_LOC, bmr, 0);
      const auto r = record_at<tcam_search_response_st>(env, RESP);
      if (tcam_search_response_st::srch_hit::get(r)) hit = tcam_search_response_st::hit_addr::get(r);
    });
    return hit;
  }
  testkit::npu_harness h;
};

TEST_F(TcamSearches, TheLowestMatchingIndexWinsAmongTheBitsTheMaskRegisterKeeps) {
  const key400 any{};
  entry(7, ACL, any, any);
  entry(3, ACL, key_of(0x11), key_of(0xFF));
  entry(9, ACL, key_of(0x11), key_of(0xFF));
  EXPECT_EQ(search(key_of(0x11), ACL), 3u);
  EXPECT_EQ(search(key_of(0x12), ACL), 7u);
  ASSERT_EQ(tcam().delete_entry(7), ctrl::error::none);
  EXPECT_EQ(search(key_of(0x12), ACL), std::nullopt);
  EXPECT_EQ(search(key_of(0x11), QOS), std::nullopt);
  key400 k = key_of(0x11);
  k[0] = 0x71;
  EXPECT_EQ(search(k, ACL, FALSE), std::nullopt);
  EXPECT_EQ(search(k, ACL, TRUE), 3u);
}

TEST_F(TcamSearches, MultiSearchAnswersTheSecondProfileFirstAndSplitsTheFirstAddress) {
  entry(0x1235, ACL, key_of(0x22), key_of(0xFF));
  entry(0x0042, QOS, key_of(0x20), key_of(0xF0));
  h.on_thread([&](env_t env) {
    const key400 key = key_of(0x22);
    std::memcpy(dmem_at(env, KEY_LOC), key.data(), key.size());
    npu_tcam_lookup_multi_400b(env, 1, ACL, QOS, REQ, RESP, ARL_REQ_BYTES, TCAM_ARL_CMD_LOC, FALSE, 0);
    using m = tcam_multi_search_response_st;
    const auto r = record_at<m>(env, RESP);
    EXPECT_EQ(m::srch_hit_1::get(r), 1u);
    EXPECT_EQ(m::hit_addr_1::get(r), 0x0042u);
    EXPECT_EQ(m::srch_hit_0::get(r), 1u);
    EXPECT_EQ(tcam_multi_hit_addr_0(r), 0x1235u);
  });
}

TEST_F(TcamSearches, RefusalsLeaveTheEntriesAsTheyWere) {
  entry(2, ACL, key_of(0x11), key_of(0xFF));
  EXPECT_EQ(tcam().write_entry({1, ACL, key_of(0x11), key_of(0x0F)}), ctrl::error::mask_value_mismatch);
  EXPECT_EQ(tcam().write_entry({1, 40, key_of(0x01), key_of(0x0F)}), ctrl::error::unknown_profile);
  EXPECT_EQ(tcam().write_entry({1, 128, key_of(0x01), key_of(0x0F)}), ctrl::error::out_of_range);
  EXPECT_EQ(tcam().write_entry({0x10000, ACL, key_of(0x01), key_of(0x0F)}), ctrl::error::out_of_range);
  const std::array<std::uint8_t, 20> narrow{};
  EXPECT_EQ(tcam().write_entry({1, ACL, narrow, narrow}), ctrl::error::bad_size);
  EXPECT_EQ(tcam().delete_entry(1), ctrl::error::not_found);
  EXPECT_EQ(tcam().configure_profile(7, 100), ctrl::error::bad_size);
  EXPECT_EQ(tcam().configure_profile(7, 80, std::array<std::uint8_t, 3>{}), ctrl::error::bad_size);
  EXPECT_EQ(search(key_of(0x11), ACL), 2u);
  EXPECT_EQ(search(key_of(0x01), ACL), std::nullopt);
}

TEST_F(TcamSearches, ResultRecordsCarryTheCoherencyBitAndChangeThroughTheForwardState) {
  for (std::uint8_t last : {1, 2}) {
    ctrl::protected_record r{};
    r[31] = last;
    ASSERT_EQ(tcam().write_result(TPD_IDX_COMMON_ACL_RESULT, 0x1235, r), ctrl::error::none);
  }
  h.on_thread([&](env_t env) {
    tlu_read_32B_paging(env, 0x1235, TPD_IDX_COMMON_ACL_RESULT, RESP, RESP, TLU_CACHE_ALWAYS);
    EXPECT_EQ(*dmem_at(env, RESP), 0x80);
    EXPECT_EQ(*dmem_at(env, RESP + 31), 2);
  });
  ctrl::protected_record shadow{};
  h.npu().memory().read(ctrl::shadow_address(0x40000 + 0x1235), shadow);
  EXPECT_EQ(shadow[0], 0x80);
  EXPECT_EQ(shadow[31], 1);
}

#ifndef NDEBUG
TEST(TcamDeathTest, ASearchOfAnotherWidthThanItsProfileStops) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        h.tables().tcam().configure_profile(5, 400);
        h.on_thread([](env_t env) {
          itc_lookup_640b(env, RES_ITC_DIRECT, 5, REQ, RESP, sizeof(tcam_search640_request_st), 0, FALSE, 0);
        });
      },
      "TCAM search of 640 bits on profile 5, whose entries are of another width");
}
#endif

}  // namespace
