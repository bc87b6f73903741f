#include <gtest/gtest.h>

#include "testkit/npu_harness.h"

TEST(Smoke, FabricTypeWithoutHandlerIsDropped) {
  testkit::npu_harness h;
  std::vector<std::uint8_t> frame(64, 0);
  frame[8] = 11;
  auto o = h.one(testkit::dist_hdr::fabric(), frame);
  ASSERT_EQ(o.global_counters.size(), 1u);
  EXPECT_EQ(o.global_counters[0], 0x294u);
}
