// Table hashes: the fold of each key width through the hash unit, against
// values computed once by tests/unit/hash/golden_hashes.py, an implementation
// written apart from the program's. The program hashes on an NPU thread
// through registers 32 to 35; the control side folds and finishes in software.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "dplane/infra/hash_bits.h"
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
key_bytes ones_key() {
  key_bytes k;
  k.fill(0xFF);
  return k;
}

struct width_case {
  hash_func_type_en fn_type;
  std::uint32_t bits;
  std::uint32_t (*hash)(unsigned char*);
  std::uint32_t counting;
  std::uint32_t ones;
};

const width_case WIDTHS[] = {
    {HASH_32B_TO_32B, 32, hash_32b_to_32b, 0x26CB65A8, 0x729EE209},
    {HASH_40B_TO_32B, 40, hash_40b_to_32b, 0xA05630C4, 0x842E4250},
    {HASH_48B_TO_32B, 48, hash_48b_to_32b, 0xFEB94411, 0x02E7F2D2},
    {HASH_64B_TO_32B, 64, hash_64b_to_32b, 0x815BC72A, 0x52648E85},
    {HASH_72B_TO_32B, 72, hash_72b_to_32b, 0x7B2766D9, 0x05C2ECED},
    {HASH_80B_TO_32B, 80, hash_80b_to_32b, 0x709052EF, 0x1F7CE1F7},
    {HASH_120B_TO_32B, 120, hash_120b_to_32b, 0x6E45B45B, 0x25BE8EF9},
    {HASH_144B_TO_32B, 144, hash_144b_to_32b, 0x6C4C8EC0, 0xB6561A59},
    {HASH_152B_TO_32B, 152, hash_152b_to_32b, 0x9BC2BD1A, 0xDE244F7E},
    {HASH_160B_TO_32B, 160, hash_160b_to_32b, 0xE4ADCC3A, 0xE7AF1D40},
    {HASH_192B_TO_32B, 192, hash_192b_to_32b, 0x20E81945, 0x23700E53},
    {HASH_256B_TO_32B, 256, hash_256b_to_32b, 0x4238085C, 0xD9A91087},
    {HASH_272B_TO_32B, 272, hash_272b_to_32b, 0xCC2A08F1, 0x13CFAD4A},
    {HASH_320B_TO_32B, 320, hash_320b_to_32b, 0xCFED6DDC, 0x4D606A8A},
    {HASH_392B_TO_32B, 392, hash_392b_to_32b, 0x3B45060F, 0x94308D97},
};

std::uint32_t software_hash(hash_func_type_en fn_type, const key_bytes& k) {
  return hash_unit_final(hash_fold(fn_type, k.data()));
}

class TableHash : public testing::TestWithParam<width_case> {};

TEST_P(TableHash, ProgramAndControlSideGiveTheGoldenValue) {
  const width_case& w = GetParam();
  key_bytes counting = counting_key();
  key_bytes ones = ones_key();
  testkit::npu_harness h;
  h.on_thread([&](env_t) {
    EXPECT_EQ(w.hash(counting.data()), w.counting);
    EXPECT_EQ(w.hash(ones.data()), w.ones);
    EXPECT_EQ(generic_hash_func(w.fn_type, counting.data()), w.counting);
  });
  EXPECT_EQ(software_hash(w.fn_type, counting), w.counting);
  EXPECT_EQ(software_hash(w.fn_type, ones), w.ones);
}

// Every key byte moves the hash and no byte behind the key does; the 144-bit
// form alone takes only the low half of its third word.
TEST_P(TableHash, DependsOnExactlyTheKeyBytes) {
  const width_case& w = GetParam();
  const key_bytes base = counting_key();
  const std::uint32_t expected = software_hash(w.fn_type, base);
  const std::uint32_t key_len = w.bits / 8;
  for (std::uint32_t i = 0; i < base.size(); ++i) {
    key_bytes changed = base;
    changed[i] ^= 0x5A;
    const bool ignored = i >= key_len || (w.fn_type == HASH_144B_TO_32B && (i == 8 || i == 9));
    if (ignored) {
      EXPECT_EQ(software_hash(w.fn_type, changed), expected) << "byte " << i;
    } else {
      EXPECT_NE(software_hash(w.fn_type, changed), expected) << "byte " << i;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Widths, TableHash, testing::ValuesIn(WIDTHS),
                         [](const testing::TestParamInfo<width_case>& p) {
                           return "bits" + std::to_string(p.param.bits);
                         });

TEST(TableHash, SelectorWithoutAWidthGivesAllOnes) {
  key_bytes k = counting_key();
  testkit::npu_harness h;
  h.on_thread([&](env_t) {
    EXPECT_EQ(generic_hash_func(HASH_INVALID_FUNC, k.data()), 0xFFFFFFFFu);
    EXPECT_EQ(generic_hash_func(static_cast<hash_func_type_en>(16), k.data()), 0xFFFFFFFFu);
  });
}

TEST(HashUnit, RegisterThirtyFiveAnswersTheFinalStep) {
  testkit::npu_harness h;
  h.on_thread([&](env_t) {
    EXPECT_EQ(hash_3_tuple(1, 2, 3), 0x36FF91DBu);
    EXPECT_EQ(hash_3_tuple(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF), 0x08EAF2E5u);
  });
}

struct bob_case {
  std::uint32_t length;
  std::uint32_t seed;
  std::uint32_t hash;
};

class BobHash : public testing::TestWithParam<bob_case> {};

TEST_P(BobHash, HashesWholeWordsOfTheKey) {
  const bob_case& c = GetParam();
  const key_bytes k = counting_key();
  EXPECT_EQ(bob_hash(k.data(), c.length, c.seed), c.hash);
}

INSTANTIATE_TEST_SUITE_P(Lengths, BobHash,
                         testing::Values(bob_case{0, 0, 0xDEADBEEF}, bob_case{0, 5, 0xDEADBEF4},
                                         bob_case{3, 7, 0xDEADBEF6}, bob_case{4, 0, 0x018D80A4},
                                         bob_case{8, 1, 0x2F94A649}, bob_case{12, 2, 0x87AE92D6},
                                         bob_case{13, 3, 0xC4402DFE}, bob_case{16, 4, 0xF237A0F3},
                                         bob_case{49, 0x1234, 0x8A674602}));

TEST(HashBits, EachUserTakesItsOwnBits) {
  EXPECT_EQ(hash_get_lag_bits(0xAB0000CD), 0xBCD);
  EXPECT_EQ(hash_get_sr_te_nrldi_bits(0x12345678), 0x12);
  EXPECT_EQ(hash_get_srv6_flow_label_bits(0xFFFFFFFF), 0xFFFFFu);
  EXPECT_EQ(hash_get_fab_rbh_bits(0x12345678), 0x78);
  EXPECT_EQ(hash_get_fab_rack_cluster_bits(0xFFC00000), 0xFF);
  EXPECT_EQ(hash_get_base_nrldi_bits(0x12345678), 0x56);
  EXPECT_EQ(hash_get_1st_rldi_bits(0x001FE000), 0xFF);
  EXPECT_EQ(hash_get_2nd_rldi_bits(0x12345678), 0x34);
  EXPECT_EQ(hash_get_nsh_sf_bits(0x00000FF0), 0xFF);
}

}  // namespace
