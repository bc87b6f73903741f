// The member choice at ingress: by hash modulo the member count, truncated
// for a bundle that asks for it, the member's number and VQI in the fabric
// header, and the drop of a bundle that is not valid.
#include "dplane/lag/lag_ing.h"
#include "lag_test_util.h"
#include "platform/varn/fab_hdr.h"

namespace {

using lag_test::bundle_of;
using lag_test::BundleTest;

constexpr std::uint32_t BUNDLE = 9;

struct hash_case {
  const char* name;
  std::uint32_t members;  // 0: no bundle
  bool truncate_hash;
  std::uint32_t lag_hash;
  std::uint8_t member;
};

class IngressHash : public BundleTest, public ::testing::WithParamInterface<hash_case> {};

TEST_P(IngressHash, ChoosesTheRemainderAndItsVqi) {
  const hash_case& c = GetParam();
  if (c.members > 0) add(BUNDLE, bundle_of(c.members, true, c.truncate_hash));
  func_rc_e rc = RC_FAIL;
  std::uint32_t vqi = 0;
  std::uint8_t lagm = 0xFF;
  run([&](env_t env) { rc = lag_process_common_ing(env, BUNDLE, c.lag_hash, &vqi, &lagm); });
  if (c.members == 0) {
    EXPECT_EQ(rc, RC_PKT_DROP);
    EXPECT_EQ(counter(DROP_LAG_ING_INVALID), 1u);
    return;
  }
  EXPECT_EQ(rc, RC_SUCCESS);
  EXPECT_EQ(lagm, c.member);
  EXPECT_EQ(vqi, lag_test::VQI_BASE + c.member);
}

// 0xBCD is 3021: 3021 mod 7 = 4, while its low byte 0xCD, 205, mod 7 = 2.
INSTANTIATE_TEST_SUITE_P(Hashes, IngressHash,
                         ::testing::Values(hash_case{"whole_hash", 7, false, 0xBCD, 4},
                                           hash_case{"truncated_takes_0xCD", 7, true, 0xBCD, 2},
                                           hash_case{"one_member", 1, false, 0xFFF, 0},
                                           hash_case{"sixty_four_members", 64, false, 0xFFF, 63},
                                           hash_case{"no_bundle_drops_0x240", 0, false, 0xBCD, 0}),
                         [](const ::testing::TestParamInfo<hash_case>& p) { return p.param.name; });

// The L3 form writes the member into its own byte of the header and the VQI
// into the low 11 bits of the destination, and leaves the rest alone.
TEST_F(BundleTest, TheL3FormWritesMemberAndVqiIntoTheHeaderAndNothingElse) {
  ctrl::bundle b = bundle_of(5);
  b.members[3].vqi = 0x7A5;
  add(BUNDLE, b);
  std::array<std::uint8_t, 32> fab{};
  fab.fill(0xFF);
  fab[14] = 0xC0;  // the reserved bits of the member byte are set and stay so
  std::array<std::uint8_t, 32> expected = fab;
  expected[14] = 0xC0 | 3;  // lag bits 0xA03 = 2563, mod 5 = 3
  expected[22] = 0xF7;      // the top three bits belong to the source port
  expected[23] = 0xA5;
  func_rc_e rc = RC_FAIL;
  run([&](env_t env) { rc = lag_process_l3_ing(env, fab.data(), BUNDLE, 0x0A000003); });
  ASSERT_EQ(rc, RC_SUCCESS);
  EXPECT_EQ(fab, expected);
  EXPECT_EQ(dc3_nph_fields::dc3_sfp_valid::get(fab), 1u);
}

}  // namespace
