// Flow lock numbers: each group folds its identifier into its own range, and
// any other group is its own number.
#include <gtest/gtest.h>

#include "dplane/infra/flow_order.h"
#include "npu/zephra/flowlock.h"

namespace {

TEST(FlowlockNumbers, GroupsFoldTheIdentifierIntoTheirRange) {
  struct row {
    std::uint32_t group, id;
    std::uint16_t lock;
  };
  const row rows[] = {
      {224, 33, 225}, {185, 9, 185}, {184, 9, 185}, {256, 0x1FF, 511}, {768, 0x1234, 768 + 0x34}, {1000, 7, 1000},
  };
  for (const row& r : rows) {
    SCOPED_TRACE("group " + std::to_string(r.group) + " id " + std::to_string(r.id));
    EXPECT_EQ(generate_flowlock(r.group, r.id), r.lock);
  }
  EXPECT_EQ(npu_get_1st_tailproc_flowlock_id(0xABCDEF05), 768 + 5);
}

}  // namespace
