// Index queues in table memory: pops and pushes across the wrap of the ring,
// and a pop of an empty queue.
#include <gtest/gtest.h>

#include <vector>

#include "dplane/infra/queue.h"
#include "testkit/npu_harness.h"

namespace {

constexpr memaddr_t Q = 0x40600000;
constexpr memaddr_t ARRAY = 0x40601000;

class IndexQueue : public ::testing::Test {
 protected:
  testkit::npu_harness h;

  // A word of the control block, read as the control plane would.
  std::uint32_t control_word(memaddr_t q, std::size_t offset) {
    model::table_memory& mem = h.npu().memory();
    return mem.read_u32(mem.translate(q + static_cast<std::uint32_t>(offset)));
  }
  std::uint32_t pop_index(memaddr_t q) { return control_word(q, offsetof(q_index_q_st, pop_index)); }
  std::uint32_t push_index(memaddr_t q) { return control_word(q, offsetof(q_index_q_st, push_index)); }
  std::uint32_t free_count(memaddr_t q) { return control_word(q, offsetof(q_index_q_st, free_count)); }
};

TEST_F(IndexQueue, PopsAndPushesAcrossTheWrap) {
  std::vector<std::uint32_t> popped;
  h.on_thread([&](env_t env) {
    q_index_q_init(env, Q, ARRAY, 4, 0);
    for (std::uint32_t index : {11u, 12u, 13u}) q_index_q_push(env, Q, index);
    popped.push_back(q_index_q_pop(env, Q));
    popped.push_back(q_index_q_pop(env, Q));
    q_index_q_push(env, Q, 14);  // slot 3
    q_index_q_push(env, Q, 15);  // slot 0: the ring wraps
  });
  EXPECT_EQ(push_index(Q), 1u);
  EXPECT_EQ(free_count(Q), 3u);
  h.on_thread([&](env_t env) {
    for (int i = 0; i < 4; ++i) popped.push_back(q_index_q_pop(env, Q));
  });
  EXPECT_EQ(popped, (std::vector<std::uint32_t>{11, 12, 13, 14, 15, 0})) << "an empty queue pops 0";
  EXPECT_EQ(pop_index(Q), 1u);
  EXPECT_EQ(free_count(Q), 0u);
}

}  // namespace
