// Every kind of counter lookup, what it counts where, and the monitor hook.
#include "stats_test_util.h"

namespace {

using st::entry;

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

TEST(PairCounters, AddIncCountsOnePacketAndItsBytes) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    lookup_request_ID_STATS_ADD_INC__VPLS_ING(env, 0x20, 64);
    lookup_request_ID_STATS_ADD_INC__VPLS_ING(env, 0x20, 1500);
  });
  EXPECT_EQ(entry(h, 0x20), (model::stats_entry{2, 1564}));
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
  EXPECT_EQ(entry(h, 0x21), (model::stats_entry{1, 1500}));
  EXPECT_EQ(entry(h, 0x302), (model::stats_entry{1, 77}));
}

TEST(PairCounters, InterfaceEntryTestsBit23OnBaseAndIndexTogether) {
  testkit::npu_harness h(1, 3);
  h.on_thread(
      [](env_t env) {
        lookup_request_ID_STATS_UIDB_ADD_INC__L3_ING_DROP_COMM(env, 0x800100, MAX_UIDB_STATIC_ING_STATS, 64);
        lookup_request_ID_STATS_UIDB_ADD_INC__L3_ING_DROP_COMM(env, 0x100, MAX_UIDB_STATIC_ING_STATS, 60);
      },
      0, 2);
  EXPECT_EQ(h.npu().stats().entry(0x108 + 2 * 0x4004), (model::stats_entry{1, 64}));
  EXPECT_EQ(h.npu().stats().entry(0x108), (model::stats_entry{1, 60}));
}

TEST(PairCounters, TwinCountsTwoEntriesOfOneBlock) {
  testkit::npu_harness h(1, 2);
  h.on_thread(
      [](env_t env) {
        lookup_request_ID_STATS_UIDB_ADD_INC_TWIN__ING_IPV4(env, 0x800200, STATS_IF_PROTO_IPV4_UCST_INPUT_CNT, 46,
                                                            STATS_IF_LAYER2_UCAST_INPUT_CNT, 60);
      },
      0, 1);
  EXPECT_EQ(h.npu().stats().entry(0x4004 + 0x206), (model::stats_entry{1, 46}));
  EXPECT_EQ(h.npu().stats().entry(0x4004 + 0x200), (model::stats_entry{1, 60}));
  EXPECT_EQ(entry(h, 0x800206), (model::stats_entry{1, 46}));
}

TEST(PoolCounters, PoolCountAddsNoBytesAndReadClearEmptiesTheEntry) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    lookup_alloc_ID_STATS_ADD_INC_SPLIT__COMM(env, 0xFFFF);  // a count left in another cell
    stats_put_count(env, 0x350, 0xFFFF);                    // and in the pool's own cell
    lookup_request_ID_STATS_INC_DYN_POOL_CNT__COMM(env, 0x40, 2);
    lookup_request_ID_STATS_INC_DYN_POOL_CNT__COMM(env, 0x40, 2);
  });
  EXPECT_EQ(entry(h, 0x42), (model::stats_entry{2, 0}));
  h.on_thread([](env_t env) {
    lookup_request_ID_STATS_ADD_INC__VPLS_ING(env, 0x42, 300);
    lookup_request_ID_STATS_READ_CLR_DYN_POOL_CNT__COMM(env, 0x42);
    lookup_wait_ID_STATS_READ_CLR_DYN_POOL_CNT__COMM(env);
    const stats_counter_pair_st& got = *lookup_result_ID_STATS_READ_CLR_DYN_POOL_CNT__COMM(env);
    EXPECT_EQ(got.packets.get(), 3u);
    EXPECT_EQ(got.bytes.get(), 300u);
  });
  EXPECT_EQ(entry(h, 0x42), (model::stats_entry{}));
}

TEST(CounterHelpers, PhysicalAndTluFormsReachTheSameCounters) {
  testkit::npu_harness h;
  constexpr std::uint32_t CELL = 0x300;
  h.on_thread([](env_t env) {
    stats_inc_64(env, STATS_GLB_CNT_BASE + 0x77 * 8, CELL);
    stats_inc_32(env, STATS_GLB_CNT_BASE + 0x77 * 8, CELL);
    stats_addinc_64_tlu(env, compute_final_stats_address(env, 0x55), 300, RES_TLU_LONG_WRITE, CELL);
    stats_inc_64_tlu(env, compute_final_stats_address(env, 0x55), RES_TLU_LONG_WRITE, CELL);
    be_u32* w = dma_cell_words(env, CELL);
    w[0] = 0x000F010A;  // add and increment
    w[2] = 40;
    stats_addinc_32_issue(env, compute_final_stats_address(env, 0x56), env_get_dmem_start(env) + CELL, CELL);
  });
  EXPECT_EQ(h.tables().stats().global(0x77), 2u);
  EXPECT_EQ(entry(h, 0x55), (model::stats_entry{2, 300}));
  EXPECT_EQ(entry(h, 0x56), (model::stats_entry{1, 40}));
  h.on_thread([](env_t env) {
    stats_read_clear64(env, 0x55, 0x300, 0x310);
    EXPECT_EQ(dma_cell_words(env, 0x310)[0].get(), 2u);
    EXPECT_EQ(dma_cell_words(env, 0x310)[1].get(), 300u);
  });
  EXPECT_EQ(entry(h, 0x55), (model::stats_entry{}));
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
