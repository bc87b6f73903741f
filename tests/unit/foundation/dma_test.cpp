// DMA command words, the spreading of requests over twin blocks, PLU
// addresses and the clock.
#include <gtest/gtest.h>

#include <array>

#include "arch_tie.h"
#include "foundation_test_util.h"
#include "timer.h"

namespace {

using namespace ft;

TEST(DmaCommand, WordsOfTheFixedCommands) {
  struct row {
    const char* name;
    std::uint32_t resource, req_loc, req_size, resp_loc, resp_size;
    std::uint32_t word;
  };
  const row rows[] = {
      {"first packet request", RES_FLB, 0x20, 4, 0, 128, 0x16400082},
      {"free and next packet", RES_FLB, 0x20, 12, 0, 128, 0x16400182},
      {"keep: convert the flow lock", RES_FLB, 0x210, 8, 0x210, 8, 0x16061121},
      {"no response keeps its location", RES_MEMORY, 0x40, 8, 0x80, 0, 0xFF808104},
      {"one response byte takes a cell", RES_MEMORY, 0x40, 8, 0x80, 1, 0xFF848104},
      {"five request bytes take two words", 376, 0x3F0, 5, 0x3E0, 32, 0xBC13E13F},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(dma_build_cmd(r.resource, r.req_loc, r.req_size, r.resp_loc, r.resp_size), r.word);
    std::uint32_t reg = 0;
    mk_dma_reg(r.resource, r.resp_size, r.resp_loc, r.req_size, r.req_loc, &reg);
    EXPECT_EQ(reg, r.word);
  }
}

TEST(DmaCommand, TwinBlockChoiceIsFixedPerThread) {
  testkit::npu_harness h(1, 2);
  for (std::uint32_t thread : {0u, 1u}) {
    h.on_thread(
        [&](env_t) {
          for (int i = 0; i < 3; ++i) EXPECT_EQ(dma_lb_resource_id_selection(376, 380), thread == 0 ? 376u : 380u);
          EXPECT_EQ(dma_lb_1_bit(), 0u);
          h.npu().thread(thread).identity |= 1u << 25;
          EXPECT_EQ(dma_lb_1_bit(), 1u);
        },
        0, thread);
  }
}

TEST(PluAddress, MapsPrefixUnitAddressesToPhysicalMemory) {
  struct row {
    std::uint32_t vaddr;
    bool issu_v2;
    std::uint32_t m40al;
  };
  const row rows[] = {
      {0x00000000, false, 0x08C00000}, {0x01000000, false, 0x28C00000}, {0x000007FC, false, 0x08C03FE0},
      {0x01FFFFFF, false, 0x48BFFFE0}, {0xFE000803, false, 0x08C1C000}, {0x00000803, true, 0x48C1C000},
  };
  testkit::npu_harness h;
  h.on_thread([&](env_t env) {
    for (const row& r : rows) {
      SCOPED_TRACE(testing::Message() << "vaddr " << std::hex << r.vaddr << " issu_v2 " << r.issu_v2);
      *ps_put_mod_global_uidb_reg(env) = r.issu_v2 ? 0x8 : 0;
      std::uint32_t hi = 0;
      std::uint32_t lo = 0;
      plu_get_m40_adrs(env, r.vaddr, &hi, &lo);
      EXPECT_EQ(hi, 0x40u);
      EXPECT_EQ(lo, r.m40al);
    }
  });
}

// Seconds and low word are read so that they belong to the same second.
TEST(Timer, TimestampPairsTheLowWordWithTheSecondItWasReadIn) {
  struct row {
    std::uint32_t jump_after;  // 0: the clock does not move
    std::uint32_t seconds, low;
  };
  const row rows[] = {{0, 10, 999}, {1, 11, 5}, {2, 11, 5}, {3, 10, 999}};
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE("jump after read " + std::to_string(r.jump_after));
    h.npu().clock().set(10, 999);
    if (r.jump_after) h.npu().clock().jump_after_reads(r.jump_after, 11, 5);
    h.on_thread([&](env_t) {
      std::uint32_t s = 0;
      std::uint32_t l = 0;
      timer_get_timestamp(&s, &l);
      EXPECT_EQ(s, r.seconds);
      EXPECT_EQ(l, r.low);
    });
  }
}

TEST(Timer, ThirtySecondClockWrapsInAByte) {
  const std::pair<std::uint32_t, std::uint8_t> rows[] = {{31, 1}, {15420, 255}, {15421, 0}};
  testkit::npu_harness h;
  for (const auto& [seconds, units] : rows) {
    SCOPED_TRACE("seconds " + std::to_string(seconds));
    h.npu().clock().set(seconds, 0);
    h.on_thread([&](env_t) {
      EXPECT_EQ(timer_seconds(), seconds);
      EXPECT_EQ(timer_30sec(), units);
    });
  }
}

}  // namespace
