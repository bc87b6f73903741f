// The member choice at ingress: by hash modulo the member count, truncated
// for a bundle that asks for it, the member's number and VQI in the fabric
// header, and the drop of a bundle that is not valid.
#include "dplane/lag/lag_ing.h"
#include "fab_hdr.h"
#include "lag_test_util.h"

namespace {

using lag_test::bundle_of;
using lag_test::BundleTest;
using lag_test::VQI_BASE;

constexpr std::uint32_t BUNDLE = 9;

struct choice {
  func_rc_e rc = RC_FAIL;
  std::uint32_t vqi = 0;
  std::uint8_t lagm = 0xFF;
};

class IngressChoice : public BundleTest {
 protected:
  choice choose(std::uint32_t bundle_id, std::uint32_t lag_hash) {
    choice c;
    run([&](env_t env) { c.rc = lag_process_common_ing(env, bundle_id, lag_hash, &c.vqi, &c.lagm); });
    return c;
  }
};

struct hash_case {
  const char* name;
  std::uint32_t members;
  bool truncate_hash;
  std::uint32_t lag_hash;
  std::uint8_t member;
};

class IngressHash : public IngressChoice, public ::testing::WithParamInterface<hash_case> {};

TEST_P(IngressHash, ChoosesTheRemainderAndItsVqi) {
  const hash_case& c = GetParam();
  add(BUNDLE, bundle_of(c.members, true, c.truncate_hash));
  const choice got = choose(BUNDLE, c.lag_hash);
  EXPECT_EQ(got.rc, RC_SUCCESS);
  EXPECT_EQ(got.lagm, c.member);
  EXPECT_EQ(got.vqi, VQI_BASE + c.member);
}

// 0xBCD is 3021: 3021 mod 7 = 4, while its low byte 0xCD, 205, mod 7 = 2.
INSTANTIATE_TEST_SUITE_P(Hashes, IngressHash,
                         ::testing::Values(hash_case{"whole_hash", 7, false, 0xBCD, 4},
                                           hash_case{"truncated_takes_0xCD", 7, true, 0xBCD, 2},
                                           hash_case{"one_member_hash_bcd", 1, false, 0xBCD, 0},
                                           hash_case{"one_member_hash_fff", 1, false, 0xFFF, 0},
                                           hash_case{"sixty_four_members", 64, false, 0xFFF, 63}),
                         [](const ::testing::TestParamInfo<hash_case>& p) { return p.param.name; });

// The L3 form writes the member into its own byte of the header and the VQI
// into the low 11 bits of the destination, and leaves the rest alone.
TEST_F(IngressChoice, TheL3FormWritesMemberAndVqiIntoTheHeader) {
  ctrl::bundle b = bundle_of(5);
  b.members[3].vqi = 0x7A5;
  add(BUNDLE, b);
  std::array<std::uint8_t, 32> fab{};
  fab.fill(0xFF);
  fab[14] = 0xC0;  // the reserved bits of the member byte are set and stay so
  func_rc_e rc = RC_FAIL;
  run([&](env_t env) { rc = lag_process_l3_ing(env, fab.data(), BUNDLE, 0x0A000003); });  // lag bits 0xA03
  ASSERT_EQ(rc, RC_SUCCESS);
  EXPECT_EQ(fab[14], 0xC0 | (0xA03 % 5));  // 0xA03 = 2563, mod 5 = 3
  using dc3 = dc3_nph_fields;
  EXPECT_EQ(dc3::dc3_fgid_or_sfp::get(fab), 0x7A5u);
  EXPECT_EQ(dc3::dc3_sfp_valid::get(fab), 1u);
  EXPECT_EQ(fab[23], 0xA5);
  EXPECT_EQ(fab[22], 0xF7);  // the top three bits belong to the source port
  EXPECT_EQ(fab[21], 0xFF);
  EXPECT_EQ(fab[15], 0xFF);
}

TEST_F(IngressChoice, ABundleThatIsNotValidDrops0x240AndLeavesTheHeader) {
  std::array<std::uint8_t, 32> fab{};
  func_rc_e rc = RC_FAIL;
  run([&](env_t env) { rc = lag_l3_ing(env, fab.data(), BUNDLE, 0x10); });
  EXPECT_EQ(rc, RC_PKT_DROP);
  EXPECT_EQ(fab, (std::array<std::uint8_t, 32>{}));
  EXPECT_EQ(counter(DROP_LAG_ING_INVALID), 1u);
}

}  // namespace
