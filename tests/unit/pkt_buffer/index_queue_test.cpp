// Index queues in table memory: pops and pushes across the wrap of the ring,
// and a pop of an empty queue.
#include <gtest/gtest.h>

#include <vector>

#include "dplane/infra/queue.h"
#include "testkit/npu_harness.h"

namespace {

constexpr memaddr_t Q = 0x40600000;
constexpr memaddr_t ARRAY = 0x40601000;

// The ring has four slots: the fifth push lands in slot 0 again, and the
// pops give the indices back in push order, then 0 for an empty queue.
TEST(IndexQueue, PopsAndPushesAcrossTheWrap) {
  testkit::npu_harness h;
  std::vector<std::uint32_t> popped;
  h.on_thread([&](env_t env) {
    q_index_q_init(env, Q, ARRAY, 4, 0);
    for (std::uint32_t index : {11u, 12u, 13u}) q_index_q_push(env, Q, index);
    popped.push_back(q_index_q_pop(env, Q));
    popped.push_back(q_index_q_pop(env, Q));
    q_index_q_push(env, Q, 14);
    q_index_q_push(env, Q, 15);
    for (int i = 0; i < 4; ++i) popped.push_back(q_index_q_pop(env, Q));
  });
  EXPECT_EQ(popped, (std::vector<std::uint32_t>{11, 12, 13, 14, 15, 0}));
  model::table_memory& mem = h.npu().memory();
  EXPECT_EQ(mem.read_u32(mem.translate(Q + offsetof(q_index_q_st, free_count))), 0u);
}

}  // namespace
