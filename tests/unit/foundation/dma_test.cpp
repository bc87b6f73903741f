// DMA command words and the mapping of prefix-unit addresses.
#include <gtest/gtest.h>

#include "arch_tie.h"
#include "foundation_test_util.h"
#include "model/dma_request.h"

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
    // The NPU reads the same word back, sizes in whole units.
    const model::dma_cmd c = model::decode_dma_cmd(r.word);
    EXPECT_EQ(c.resource, r.resource);
    EXPECT_EQ(c.req_loc, r.req_loc);
    EXPECT_EQ(c.req_bytes, (r.req_size + 3) / 4 * 4);
    EXPECT_EQ(c.resp_loc, r.resp_loc);
    EXPECT_EQ(c.resp_bytes, (r.resp_size + 7) / 8 * 8);
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

}  // namespace
