// The TLU front end against the model: the cache policy's choice of
// resource and the strict cache that keeps stale lines until an invalidate.
// Reads by size and the modulus reads run in the request template tests.
#include "npu/zephra/tlu.h"

#include "search_test_util.h"

namespace {

using namespace st;

constexpr std::uint32_t ADDR = 0x40460000;

std::array<std::uint8_t, 32> numbered(std::uint8_t first) {
  std::array<std::uint8_t, 32> r;
  for (std::uint32_t i = 0; i < r.size(); ++i) r[i] = static_cast<std::uint8_t>(first + i);
  return r;
}

// Only a read with allocation leaves a line in the strict cache, so the
// count of lines tells which resource a read went to.
TEST(TluCachePolicy, PicksTheResourceWithOrWithoutAllocation) {
  const struct {
    std::uint32_t thread;
    tlu_cache_policy_e policy;
    bool allocates;
  } rows[] = {{16, TLU_CACHE_PERIODIC, true},
              {0, TLU_CACHE_PERIODIC, false},
              {17, TLU_CACHE_PERIODIC, false},
              {0, TLU_CACHE_ALWAYS, true},
              {16, TLU_CACHE_NEVER, false}};
  for (const auto& r : rows) {
    testkit::npu_harness h(1, 18);
    h.npu().tlu_cache().set_strict(true);
    h.on_thread([&](env_t env) { tlu_read_32B(env, ADDR, REQ, RESP, r.policy); }, 0, r.thread);
    EXPECT_EQ(h.npu().tlu_cache().lines(), r.allocates ? 1u : 0u) << "thread " << r.thread << " policy " << r.policy;
  }
}

// Only a read with allocation fills the strict cache; a writer that
// forgets to invalidate leaves readers on the old record.
TEST(StrictTluCache, StaleLinesLastUntilAnInvalidate) {
  testkit::npu_harness h;
  h.npu().tlu_cache().set_strict(true);
  ctrl::write_record(h.npu(), ADDR, numbered(1));
  const auto first_byte = [&](tlu_cache_policy_e policy) {
    std::uint8_t b = 0;
    h.on_thread([&](env_t env) {
      tlu_read_32B(env, ADDR, REQ, RESP, policy);
      b = *dmem_at(env, RESP);
    });
    return b;
  };
  EXPECT_EQ(first_byte(TLU_CACHE_ALWAYS), 1);
  h.npu().memory().write(ADDR, numbered(2));
  EXPECT_EQ(first_byte(TLU_CACHE_ALWAYS), 1);
  EXPECT_EQ(first_byte(TLU_CACHE_NEVER), 2);
  h.on_thread([&](env_t env) { tlu_invalidate(env, 0, ADDR + 8, FALSE, REQ, RESP); });
  EXPECT_EQ(first_byte(TLU_CACHE_ALWAYS), 2);
  // The control side's writes and the program's invalidating writes are seen.
  ctrl::write_record(h.npu(), ADDR, numbered(3));
  EXPECT_EQ(first_byte(TLU_CACHE_ALWAYS), 3);
  const auto rec = numbered(4);
  h.on_thread([&](env_t env) { dma_write_32B(env, ADDR, RES_TLU_LONG, rec.data(), REQ, RESP, {FALSE, TRUE, TRUE}); });
  EXPECT_EQ(first_byte(TLU_CACHE_ALWAYS), 4);
}

}  // namespace
