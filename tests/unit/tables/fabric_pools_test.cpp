// The chassis's VQIs and an NPU's line queues: handed out lowest first past
// those mapped by hand, and what a removal frees is unmapped and reused.
#include <gtest/gtest.h>

#include "testkit/npu_harness.h"

namespace {

using ctrl::error;

TEST(FabricPools, VqisSkipHandMappedOnesAndComeBackUnmapped) {
  testkit::npu_harness h(2);
  ctrl::chassis_tables& c = h.chassis_tables();
  ASSERT_EQ(c.map_vqi(1, 0), error::none);
  EXPECT_EQ(c.add_vqi(1).vqi, 0u);
  EXPECT_EQ(c.add_vqi(0).vqi, 2u);
  EXPECT_EQ(h.chassis().npu_of_vqi(0), 1u);
  EXPECT_EQ(c.add_vqi(2).err, error::out_of_range);
  ASSERT_EQ(c.remove_vqi(0), error::none);
  EXPECT_EQ(h.chassis().npu_of_vqi(0), std::nullopt);
  EXPECT_EQ(c.remove_vqi(0), error::not_found);
  EXPECT_EQ(c.add_vqi(0).vqi, 0u);
}

TEST(FabricPools, LineQueuesFeedTheirPortUntilRemoved) {
  testkit::npu_harness h;
  ctrl::line_queues& q = h.tables().queues();
  EXPECT_EQ(q.add(ctrl::MAX_LINE_PORT + 1).err, error::out_of_range);
  const ctrl::queue_added first = q.add(7);
  ASSERT_EQ(first.err, error::none);
  EXPECT_EQ(h.npu().port_of_queue(first.queue_id), 7u);
  ASSERT_EQ(q.remove(first.queue_id), error::none);
  EXPECT_EQ(h.npu().port_of_queue(first.queue_id), std::nullopt);
  EXPECT_EQ(q.remove(first.queue_id), error::not_found);
}

}  // namespace
