// Memory operations against the table memory: reads and writes, the ALU
// operations and counters, the virtual forms and the indivisibility of a
// read-modify-write.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>
#include <thread>

#include "foundation_test_util.h"

namespace {

using namespace ft;

// A physical address with a non-zero high byte, so that m40ah must travel.
constexpr std::uint32_t HI = 0x12;
constexpr std::uint32_t LO = 0x34560000;
constexpr std::uint64_t PADDR = (std::uint64_t{HI} << 32) | LO;
constexpr std::uint32_t REQ = 0x40;
constexpr std::uint32_t RESP = 0x80;

std::array<std::uint8_t, 48> pattern() {
  std::array<std::uint8_t, 48> p;
  for (std::size_t i = 0; i < p.size(); ++i) p[i] = static_cast<std::uint8_t>(0x11 * (i % 15 + 1) + i);
  return p;
}

std::uint32_t response_word(env_t env) { return dma_cell_words(env, RESP)[0].get(); }
const std::uint8_t* response(env_t env) { return env_get_dmem_start(env) + RESP; }

void write_4B_bytes(env_t env, std::uint32_t hi, std::uint32_t lo, const std::uint8_t* d, std::uint32_t req,
                    std::uint32_t resp, boolean_t want) {
  dma_write_4B_p(env, hi, lo, word_at(d), req, resp, want);
}

TEST(MemoryOps, PhysicalWritesAndReadsRoundTrip) {
  struct row {
    std::uint32_t size;
    void (*write)(env_t, std::uint32_t, std::uint32_t, const std::uint8_t*, std::uint32_t, std::uint32_t, boolean_t);
    void (*read)(env_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t);
  };
  const row rows[] = {{4, write_4B_bytes, dma_read_4B_p}, {32, dma_write_32B_p, dma_read_32B_p}};
  const auto data = pattern();
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(std::to_string(r.size) + " bytes");
    std::array<std::uint8_t, 48> mem{};
    h.npu().memory().write(PADDR, mem);
    h.on_thread([&](env_t env) {
      r.write(env, HI, LO, data.data(), REQ, RESP, FALSE);
      h.npu().memory().read(PADDR, mem);
      EXPECT_TRUE(std::equal(data.begin(), data.begin() + r.size, mem.begin()));
      EXPECT_TRUE(std::all_of(mem.begin() + r.size, mem.end(), [](std::uint8_t b) { return b == 0; }));

      h.npu().memory().write(PADDR, std::span(data).subspan(16, r.size));
      r.read(env, HI, LO, REQ, RESP);
      EXPECT_TRUE(std::equal(data.begin() + 16, data.begin() + 16 + r.size, response(env)));
    });
  }
}

TEST(MemoryOps, AluOperationsReturnTheOldWordAndStoreTheResult) {
  struct row {
    dma_alu_op_e op;
    std::uint32_t before, operand, after;
  };
  const row rows[] = {
      {OP_SADD, 0x10, 0x22, 0x32},
      {OP_CSUB, 10, 4, 6},
      {OP_NOT, 0xF0F0F0F0, 0x12345678, 0x0F0F0F0F},
      {OP_XOR, 0xFF00FF00, 0x0FF00FF0, 0xF0F0F0F0},
      {OP_AND, 0xFF00FF00, 0x0FF00FF0, 0x0F000F00},
      {OP_OR, 0xFF00FF00, 0x0FF00FF0, 0xFFF0FFF0},
      {OP_WRITE, 0x11111111, 0xABCDEF01, 0xABCDEF01},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE("op " + std::to_string(r.op));
    h.npu().memory().write_u32(PADDR, r.before);
    h.on_thread([&](env_t env) {
      dma_alu_4B_p(env, r.op, HI, LO, r.operand, REQ, RESP, TRUE);
      // A plain write answers with an acknowledgement, not the old word.
      if (r.op != OP_WRITE) {
        EXPECT_EQ(response_word(env), r.before);
      }
    });
    EXPECT_EQ(h.npu().memory().read_u32(PADDR), r.after);
  }
}

// A plain increment is counted by the concurrent test below.
TEST(MemoryOps, CountersWrap) {
  testkit::npu_harness h;
  auto& mem = h.npu().memory();
  h.on_thread([&](env_t env) {
    mem.write_u32(PADDR, 0);
    std::vector<std::uint32_t> seen;
    for (int i = 0; i < 5; ++i) {
      dma_incr_wrap_4B_p(env, 3, 0, HI, LO, REQ, RESP, TRUE);
      seen.push_back(mem.read_u32(PADDR));
    }
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{1, 2, 0, 1, 2}));
  });
}

// Virtual forms translate first; the identity-mapped address must stay untouched.
TEST(MemoryOps, VirtualFormsReachTheTranslatedAddress) {
  constexpr std::uint32_t VADDR = 0x00200000;
  constexpr std::uint64_t MAPPED = 0x2200400000;
  testkit::npu_harness h;
  auto& mem = h.npu().memory();
  mem.map_range(VADDR, 0x1000, MAPPED);
  const auto data = pattern();
  h.on_thread([&](env_t env) {
    dma_write_4B(env, VADDR + 0x10, RES_TLU_LONG_WRITE, 0x5A5A1234, REQ, RESP, {FALSE, TRUE, TRUE});
    EXPECT_EQ(mem.read_u32(VADDR + 0x10), 0u);
    dma_alu_4B(env, OP_OR, VADDR + 0x10, RES_TLU_LONG_WRITE, 0x0000000B, REQ, RESP, {TRUE, FALSE, FALSE});
    EXPECT_EQ(mem.read_u32(MAPPED + 0x10), 0x5A5A123Fu);
    EXPECT_EQ(response_word(env), 0x5A5A1234u);

    mem.write(MAPPED + 0x100, data);
    dma_read_16B(env, VADDR + 0x110, RES_TLU_LONG, REQ, RESP);
    EXPECT_TRUE(std::equal(data.begin() + 16, data.begin() + 32, response(env)));
  });
}

TEST(MemoryOps, IncrementsFromConcurrentThreadsAreNeverLost) {
  constexpr std::uint32_t THREADS = 4;
  constexpr int PER_THREAD = 10000;
  testkit::npu_harness h(1, THREADS);
  std::vector<std::thread> callers;
  for (std::uint32_t t = 0; t < THREADS; ++t) {
    callers.emplace_back([&h, t] {
      h.on_thread(
          [](env_t env) {
            for (int i = 0; i < PER_THREAD; ++i) dma_incr_4B_p(env, HI, LO, REQ, REQ, FALSE);
          },
          0, t);
    });
  }
  for (auto& c : callers) c.join();
  EXPECT_EQ(h.npu().memory().read_u32(PADDR), THREADS * PER_THREAD);
}

}  // namespace
