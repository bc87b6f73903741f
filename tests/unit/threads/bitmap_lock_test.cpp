// Bitmap locks: each family's lock number and bit, the word shared by
// several locks, a taken lock without waiting, and the limits whose breach
// stops the thread: a tenth lock, a release with none held, and a lock that
// stays taken for all the tries of a waiting acquire.
#include <gtest/gtest.h>

#include "dplane/infra/lookup.h"
#include "npu/zephra/hash_fns.h"
#include "threads_test_util.h"

namespace {

constexpr std::uint32_t WAIT = 1;
constexpr std::uint32_t NO_WAIT = 0;

std::uint32_t lock_word(testkit::npu_harness& h, std::uint32_t base, std::uint32_t lock) {
  return h.npu().memory().read_u32(base + ((lock & ~31u) >> 3));
}

void take_in_memory(testkit::npu_harness& h, std::uint32_t base, std::uint32_t lock) {
  h.npu().memory().write_u32(base + ((lock & ~31u) >> 3), lock_word(h, base, lock) | (1u << (lock & 31)));
}

TEST(BitmapLocks, EachFamilyTakesTheBitOfItsLockNumberAndGivesItBack) {
  struct row {
    const char* family;
    lock_handle_t (*acquire)(env_t, std::uint32_t, std::uint32_t);
    void (*release)(env_t, lock_handle_t);
    std::uint32_t base;
    std::uint32_t id;
    std::uint32_t number;
  };
  constexpr std::uint32_t BUCKET = 0x80012340;
  const std::uint32_t hashed = hash_unit_final({BUCKET + 0xDEADBEF3, 0xDEADBEF3, BUCKET + 0xDEADBEF3}) & 0xFFFF;
  const row rows[] = {
      {"mac", acquire_lock_ID_MAC_LOCK__TAIL_ING, release_lock_ID_MAC_LOCK__TAIL_ING, LOCK_BITMAP_MAC, 0x12345, 0x2345},
      {"entry", acquire_lock_ID_MAC_ENTRY_LOCK__TAIL_ING, release_lock_ID_MAC_ENTRY_LOCK__TAIL_ING, LOCK_BITMAP_ENTRY,
       0xFFFF, 0xFFFF},
      {"mailbox", acquire_lock_ID_L2_MBX_N2H_LOCK, release_lock_ID_L2_MBX_N2H_LOCK, LOCK_BITMAP_MBX, 0x4001, 1},
      {"global: id 0 is bit 1", acquire_lock_ID_GLOBAL_L2VPN_LOCK, release_lock_ID_GLOBAL_L2VPN_LOCK,
       LOCK_BITMAP_GLOBAL, 0, 1},
      {"global: id 3 is bit 8", acquire_lock_ID_GLOBAL_L2VPN_LOCK, release_lock_ID_GLOBAL_L2VPN_LOCK,
       LOCK_BITMAP_GLOBAL, 3, 8},
      {"default: the hash of the id", acquire_lock_ID_HASH_MANAGEMENT_LOCK, release_lock_ID_HASH_MANAGEMENT_LOCK,
       LOCK_BITMAP_DEFAULT, BUCKET, hashed},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.family);
    h.on_thread([&](env_t env) {
      EXPECT_EQ(r.acquire(env, r.id, NO_WAIT), r.number);
      EXPECT_EQ(lock_word(h, r.base, r.number), 1u << (r.number & 31));
      EXPECT_EQ(*ps_get_thread_lock_counter(env), 1u);
      r.release(env, r.number);
      EXPECT_EQ(lock_word(h, r.base, r.number), 0u);
      EXPECT_EQ(*ps_get_thread_lock_counter(env), 0u);
    });
  }
}

TEST(BitmapLocks, ATakenLockWithoutWaitingAnswersAllOnesAndHoldsNothing) {
  testkit::npu_harness h;
  take_in_memory(h, LOCK_BITMAP_MAC, 7);
  h.on_thread([&](env_t env) {
    EXPECT_EQ(acquire_lock_ID_MAC_LOCK__TAIL_ING(env, 7, NO_WAIT), BITMAP_LOCK_TAKEN);
    EXPECT_EQ(*ps_get_thread_lock_counter(env), 0u);
    EXPECT_EQ(lock_word(h, LOCK_BITMAP_MAC, 7), 1u << 7);
  });
}

// Nine locks, the most a thread holds, in one word: each leaves the others alone.
TEST(BitmapLocks, NineLocksOfOneWordLeaveEachOtherAlone) {
  testkit::npu_harness h;
  h.on_thread([&](env_t env) {
    for (std::uint32_t i = 0; i < 9; ++i) acquire_lock_ID_MAC_LOCK__TAIL_ING(env, 64 + i, WAIT);
    EXPECT_EQ(*ps_get_thread_lock_counter(env), 9u);
    EXPECT_EQ(lock_word(h, LOCK_BITMAP_MAC, 64), 0x1FFu);
    release_lock_ID_MAC_LOCK__TAIL_ING(env, 68);
    EXPECT_EQ(lock_word(h, LOCK_BITMAP_MAC, 64), 0x1EFu);
  });
}

// ---- breaches of the limits stop the thread: a debug build at once ----

// The outcome of a packet whose handler runs body.
model::packet_outcome packet_through(const std::function<void(env_t)>& body) {
  testkit::npu_harness h;
  take_in_memory(h, LOCK_BITMAP_MAC, 9);
  testkit::probe_vector(h, testkit::TEST_VECTOR, body);
  return h.one(testkit::line_packet());
}

struct limit_breach {
  const char* name;
  void (*body)(env_t);
  const char* message;
};

class BitmapLockLimits : public ::testing::TestWithParam<limit_breach> {};

TEST_P(BitmapLockLimits, StopTheThread) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  model::packet_outcome o;
  EXPECT_DEBUG_DEATH(o = packet_through(GetParam().body), GetParam().message);
#ifdef NDEBUG
  EXPECT_EQ(o.end, model::packet_end::contract_breach);
  EXPECT_NE(o.note.find(GetParam().message), std::string::npos) << o.note;
#endif
}

INSTANTIATE_TEST_SUITE_P(Limits, BitmapLockLimits,
                         ::testing::Values(limit_breach{"taken_for_every_try",
                                                        [](env_t env) {
                                                          acquire_lock_ID_MAC_LOCK__TAIL_ING(env, 9, WAIT);
                                                        },
                                                        "a bitmap lock stayed taken for 50 tries"},
                                           limit_breach{"tenth_lock",
                                                        [](env_t env) {
                                                          for (std::uint32_t i = 10; i < 20; ++i)
                                                            acquire_lock_ID_MAC_LOCK__TAIL_ING(env, i, WAIT);
                                                        },
                                                        "a thread took a tenth bitmap lock"},
                                           limit_breach{"release_with_none_held",
                                                        [](env_t env) { release_lock_ID_MAC_LOCK__TAIL_ING(env, 9); },
                                                        "a bitmap lock released with none held"}),
                         [](const ::testing::TestParamInfo<limit_breach>& p) { return p.param.name; });

}  // namespace
