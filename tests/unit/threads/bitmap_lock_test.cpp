// Bitmap locks: each family's lock number and bit in a word shared with
// another thread's lock, a taken lock without waiting, and the limits whose
// breach stops the thread.
#include <gtest/gtest.h>

#include "dplane/infra/lookup.h"
#include "testkit/dispatch_probe.h"

namespace {

constexpr std::uint32_t WAIT = 1;
constexpr std::uint32_t NO_WAIT = 0;

std::uint32_t lock_word(testkit::npu_harness& h, std::uint32_t base, std::uint32_t lock) {
  return h.npu().memory().read_u32(base + ((lock & ~31u) >> 3));
}

TEST(BitmapLocks, EachFamilyTakesTheBitOfItsLockNumberAndGivesItBack) {
  struct row {
    const char* family;
    lock_handle_t (*acquire)(env_t, std::uint32_t, std::uint32_t);
    void (*release)(env_t, lock_handle_t);
    std::uint32_t base, id, number;
  };
  const row rows[] = {
      {"mac", acquire_lock_ID_MAC_LOCK__TAIL_ING, release_lock_ID_MAC_LOCK__TAIL_ING, LOCK_BITMAP_MAC, 0x12345, 0x2345},
      {"entry", acquire_lock_ID_MAC_ENTRY_LOCK__TAIL_ING, release_lock_ID_MAC_ENTRY_LOCK__TAIL_ING, LOCK_BITMAP_ENTRY,
       0xFFFF, 0xFFFF},
      {"mailbox", acquire_lock_ID_L2_MBX_N2H_LOCK, release_lock_ID_L2_MBX_N2H_LOCK, LOCK_BITMAP_MBX, 0x4001, 1},
      {"global: id 0 is bit 1", acquire_lock_ID_GLOBAL_L2VPN_LOCK, release_lock_ID_GLOBAL_L2VPN_LOCK,
       LOCK_BITMAP_GLOBAL, 0, 1},
      {"global: id 3 is bit 8", acquire_lock_ID_GLOBAL_L2VPN_LOCK, release_lock_ID_GLOBAL_L2VPN_LOCK,
       LOCK_BITMAP_GLOBAL, 3, 8},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.family);
    // The neighbour in the same word is another thread's and stays so.
    const std::uint32_t own = 1u << (r.number & 31);
    const std::uint32_t neighbour = 1u << ((r.number ^ 1) & 31);
    h.npu().memory().write_u32(r.base + ((r.number & ~31u) >> 3), neighbour);
    h.on_thread([&](env_t env) {
      EXPECT_EQ(r.acquire(env, r.id, NO_WAIT), r.number);
      EXPECT_EQ(lock_word(h, r.base, r.number), own | neighbour);
      EXPECT_EQ(*ps_get_thread_lock_counter(env), 1u);
      // Taken, so a second try without waiting answers all ones and holds nothing.
      EXPECT_EQ(r.acquire(env, r.id, NO_WAIT), BITMAP_LOCK_TAKEN);
      EXPECT_EQ(*ps_get_thread_lock_counter(env), 1u);
      r.release(env, r.number);
      EXPECT_EQ(lock_word(h, r.base, r.number), neighbour);
      EXPECT_EQ(*ps_get_thread_lock_counter(env), 0u);
    });
  }
}

// A breach of the limits stops the thread: a debug build at once.
TEST(BitmapLocks, BreachOfTheLimitsStopsTheThread) {
  struct row {
    void (*body)(env_t);
    const char* message;
  };
  const row rows[] = {
      {[](env_t env) { acquire_lock_ID_MAC_LOCK__TAIL_ING(env, 9, WAIT); }, "a bitmap lock stayed taken for 50 tries"},
      {[](env_t env) {
         for (std::uint32_t i = 10; i < 20; ++i) acquire_lock_ID_MAC_LOCK__TAIL_ING(env, i, WAIT);
       },
       "a thread took a tenth bitmap lock"},
      {[](env_t env) { release_lock_ID_MAC_LOCK__TAIL_ING(env, 9); }, "a bitmap lock released with none held"},
  };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const row& r : rows) {
    SCOPED_TRACE(r.message);
    model::packet_outcome o;
    const auto run = [&] {
      testkit::npu_harness h;
      h.npu().memory().write_u32(LOCK_BITMAP_MAC, 1u << 9);  // lock 9 taken by another thread
      testkit::probe_vector(h, testkit::TEST_VECTOR, r.body);
      o = h.one(testkit::line_packet());
    };
    EXPECT_DEBUG_DEATH(run(), r.message);
#ifdef NDEBUG
    EXPECT_EQ(o.end, model::packet_end::contract_breach);
    EXPECT_NE(o.note.find(r.message), std::string::npos) << o.note;
#endif
  }
}

}  // namespace
