// Every kind of counter lookup, what it counts where, the relative (bit 23)
// index that gives each thread its own replica 0x4004 entries apart, and the
// monitor hook.
#include <gtest/gtest.h>

#include "ctrl/counters.h"
#include "dplane/infra/lookup.h"
#include "testkit/npu_harness.h"

namespace {

using model::stats_entry;

// The control side's reading, which adds the replicas of a relative index.
stats_entry entry(testkit::npu_harness& h, std::uint32_t index) { return h.tables().stats().entry(index); }

TEST(GlobalCounters, CountByNumberAndCallTheMonitorOnlyWhenItIsOn) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    *ps_put_mod_global_uidb_reg(env) = 0;
    lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, 0x66);
    *ps_put_mod_global_uidb_reg(env) = global_config_bits::NP_MONITOR;
    lookup_request_ID_STATS_INC_GLB_CNT__DROP(env, 0x66);
  });
  EXPECT_EQ(h.tables().stats().global(0x66), 2u);
  EXPECT_EQ(h.npu().monitor_calls(0x66), 1u);
}

TEST(ReplicatedIndex, ThreadsCountIntoTheirOwnReplicaAndTheReaderAddsThem) {
  testkit::npu_harness h(1, 5);
  for (std::uint32_t t = 0; t < 5; ++t) {
    h.on_thread([&](env_t env) { lookup_request_ID_STATS_ADD_INC__VPLS_ING(env, 0x800010, 100 + t); }, 0, t);
  }
  // Thread 4 shares the first replica with thread 0.
  EXPECT_EQ(h.npu().stats().entry(0x10), (stats_entry{2, 100 + 104}));
  EXPECT_EQ(h.npu().stats().entry(0x4014), (stats_entry{1, 101}));
  EXPECT_EQ(h.npu().stats().entry(0x8018), (stats_entry{1, 102}));
  EXPECT_EQ(h.npu().stats().entry(0xC01C), (stats_entry{1, 103}));
  EXPECT_EQ(entry(h, 0x800010), (stats_entry{5, 510}));
  EXPECT_EQ(entry(h, 0x10), (stats_entry{2, 204}));  // an absolute index is one entry
}

TEST(PairCounters, SplitFormsTakeTheCountStoredEarlier) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    lookup_alloc_ID_STATS_ADD_INC_SPLIT__COMM(env, 1500);
    EXPECT_EQ(lookup_alloc_ref_ID_STATS_ADD_INC_SPLIT__COMM(env)->count.get(), 1500u);
    lookup_request_ID_STATS_ADD_INC_SPLIT__COMM(env, 0x21, 9999);
    lookup_alloc_ID_STATS_UIDB_ADD_INC_SPLIT__EGR_IPV4(env, 77);
    lookup_request_ID_STATS_UIDB_ADD_INC_SPLIT__EGR_IPV4(env, 0x300, STATS_IF_LAYER2_MCAST_OUTPUT_CNT, 0);
  });
  EXPECT_EQ(entry(h, 0x21), (stats_entry{1, 1500}));
  EXPECT_EQ(entry(h, 0x302), (stats_entry{1, 77}));
}

// Interface counters: bit 23 of base and index together makes the entry
// relative; the twin form counts two entries of one block.
TEST(PairCounters, InterfaceFormsCountInTheirThreadsBlock) {
  testkit::npu_harness h(1, 3);
  h.on_thread(
      [](env_t env) {
        lookup_request_ID_STATS_UIDB_ADD_INC__L3_ING_DROP_COMM(env, 0x800100, MAX_UIDB_STATIC_ING_STATS, 64);
        lookup_request_ID_STATS_UIDB_ADD_INC__L3_ING_DROP_COMM(env, 0x100, MAX_UIDB_STATIC_ING_STATS, 60);
      },
      0, 2);
  EXPECT_EQ(h.npu().stats().entry(0x108 + 2 * 0x4004), (stats_entry{1, 64}));
  EXPECT_EQ(h.npu().stats().entry(0x108), (stats_entry{1, 60}));
  h.on_thread(
      [](env_t env) {
        lookup_request_ID_STATS_UIDB_ADD_INC_TWIN__ING_IPV4(env, 0x800200, STATS_IF_PROTO_IPV4_UCST_INPUT_CNT, 46,
                                                            STATS_IF_LAYER2_UCAST_INPUT_CNT, 60);
      },
      0, 1);
  EXPECT_EQ(h.npu().stats().entry(0x4004 + 0x206), (stats_entry{1, 46}));
  EXPECT_EQ(h.npu().stats().entry(0x4004 + 0x200), (stats_entry{1, 60}));
}

TEST(PoolCounters, PoolCountAddsNoBytesAndReadClearEmptiesTheEntry) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    lookup_alloc_ID_STATS_ADD_INC_SPLIT__COMM(env, 0xFFFF);  // a count left in another cell
    stats_put_count(env, 0x350, 0xFFFF);                     // and in the pool's own cell
    lookup_request_ID_STATS_INC_DYN_POOL_CNT__COMM(env, 0x40, 2);
    lookup_request_ID_STATS_INC_DYN_POOL_CNT__COMM(env, 0x40, 2);
  });
  EXPECT_EQ(entry(h, 0x42), (stats_entry{2, 0}));
  h.on_thread([](env_t env) {
    lookup_request_ID_STATS_ADD_INC__VPLS_ING(env, 0x42, 300);
    lookup_request_ID_STATS_READ_CLR_DYN_POOL_CNT__COMM(env, 0x42);
    lookup_wait_ID_STATS_READ_CLR_DYN_POOL_CNT__COMM(env);
    const stats_counter_pair_st& got = *lookup_result_ID_STATS_READ_CLR_DYN_POOL_CNT__COMM(env);
    EXPECT_EQ(got.packets.get(), 3u);
    EXPECT_EQ(got.bytes.get(), 300u);
  });
  EXPECT_EQ(entry(h, 0x42), (stats_entry{}));
}

#ifndef NDEBUG
TEST(PairCountersDeathTest, RequestOutsideTheEntriesStops) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        h.on_thread([](env_t) { qrsc(rtt_index(0, 8), 0x400000, 0x300, 0x300); });
      },
      "statistics request at 0x400000, which names no entry");
}
#endif

}  // namespace
