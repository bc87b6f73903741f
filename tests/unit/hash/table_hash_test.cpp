// Table hashes: the fold of each key width through the hash unit, against
// values computed once by tests/unit/hash/golden_hashes.py, an implementation
// written apart from the program's. The program hashes on an NPU thread
// through registers 32 to 35; the control side folds and finishes in software.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "npu/zephra/hash_fns.h"
#include "testkit/npu_harness.h"

namespace {

using key_bytes = std::array<unsigned char, 52>;

// The keys of golden_hashes.py: counting bytes, and all ones.
key_bytes counting_key() {
  key_bytes k{};
  for (std::size_t i = 0; i < k.size(); ++i) k[i] = static_cast<unsigned char>(0x10 + 7 * i);
  return k;
}

struct width_case {
  hash_func_type_en fn_type;
  std::uint32_t (*hash)(unsigned char*);
  std::uint32_t counting;
  std::uint32_t ones;
};

const width_case WIDTHS[] = {
    {HASH_32B_TO_32B, hash_32b_to_32b, 0x26CB65A8, 0x729EE209},
    {HASH_40B_TO_32B, hash_40b_to_32b, 0xA05630C4, 0x842E4250},
    {HASH_48B_TO_32B, hash_48b_to_32b, 0xFEB94411, 0x02E7F2D2},
    {HASH_64B_TO_32B, hash_64b_to_32b, 0x815BC72A, 0x52648E85},
    {HASH_72B_TO_32B, hash_72b_to_32b, 0x7B2766D9, 0x05C2ECED},
    {HASH_80B_TO_32B, hash_80b_to_32b, 0x709052EF, 0x1F7CE1F7},
    {HASH_120B_TO_32B, hash_120b_to_32b, 0x6E45B45B, 0x25BE8EF9},
    {HASH_144B_TO_32B, hash_144b_to_32b, 0x6C4C8EC0, 0xB6561A59},
    {HASH_152B_TO_32B, hash_152b_to_32b, 0x9BC2BD1A, 0xDE244F7E},
    {HASH_160B_TO_32B, hash_160b_to_32b, 0xE4ADCC3A, 0xE7AF1D40},
    {HASH_192B_TO_32B, hash_192b_to_32b, 0x20E81945, 0x23700E53},
    {HASH_256B_TO_32B, hash_256b_to_32b, 0x4238085C, 0xD9A91087},
    {HASH_272B_TO_32B, hash_272b_to_32b, 0xCC2A08F1, 0x13CFAD4A},
    {HASH_320B_TO_32B, hash_320b_to_32b, 0xCFED6DDC, 0x4D606A8A},
    {HASH_392B_TO_32B, hash_392b_to_32b, 0x3B45060F, 0x94308D97},
};

// Every key byte counts in the counting key's value and no byte behind the
// key does, since golden_hashes.py reads only the key's bytes.
TEST(TableHash, ProgramAndControlSideGiveTheGoldenValueOfEveryWidth) {
  key_bytes counting = counting_key();
  key_bytes ones;
  ones.fill(0xFF);
  testkit::npu_harness h;
  for (const width_case& w : WIDTHS) {
    SCOPED_TRACE(w.fn_type);
    h.on_thread([&](env_t) {
      EXPECT_EQ(w.hash(counting.data()), w.counting);
      EXPECT_EQ(w.hash(ones.data()), w.ones);
      EXPECT_EQ(generic_hash_func(w.fn_type, counting.data()), w.counting);
    });
    EXPECT_EQ(hash_unit_final(hash_fold(w.fn_type, counting.data())), w.counting);
    EXPECT_EQ(hash_unit_final(hash_fold(w.fn_type, ones.data())), w.ones);
  }
  h.on_thread([&](env_t) {
    EXPECT_EQ(generic_hash_func(HASH_INVALID_FUNC, counting.data()), 0xFFFFFFFFu);
    EXPECT_EQ(generic_hash_func(static_cast<hash_func_type_en>(16), counting.data()), 0xFFFFFFFFu);
    // Register 35 answers the final step alone.
    EXPECT_EQ(hash_3_tuple(1, 2, 3), 0x36FF91DBu);
    EXPECT_EQ(hash_3_tuple(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF), 0x08EAF2E5u);
  });
}

TEST(BobHash, HashesWholeWordsOfTheKey) {
  struct bob_case {
    std::uint32_t length, seed, hash;
  };
  const bob_case cases[] = {{0, 5, 0xDEADBEF4},  {4, 0, 0x018D80A4},  {8, 1, 0x2F94A649},
                            {12, 2, 0x87AE92D6}, {16, 4, 0xF237A0F3}, {49, 0x1234, 0x8A674602}};
  const key_bytes k = counting_key();
  for (const bob_case& c : cases) EXPECT_EQ(bob_hash(k.data(), c.length, c.seed), c.hash) << c.length;
}

}  // namespace
