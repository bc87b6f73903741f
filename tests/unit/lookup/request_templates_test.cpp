// The model's request templates: reads by address, the modulus reads that
// choose a record by remainder, bucket reads and increments. Paged reads run
// in the record coherency tests, through the lookups that use them.
#include "lookup_test_util.h"

namespace {

using namespace lt;

constexpr std::uint32_t SLOT = 0x100;
constexpr std::uint8_t UNTOUCHED = 0xEE;

struct address_read {
  const char* name;
  std::uint32_t entry;
  std::uint32_t bytes;  // delivered record bytes
  std::uint32_t unit;   // response bytes, whole 8-byte units
};

class TemplateReads : public testing::TestWithParam<address_read> {};

TEST_P(TemplateReads, DeliverTheRecordAndNothingPastTheResponse) {
  const address_read& p = GetParam();
  testkit::npu_harness h;
  record32 rec;
  for (std::uint32_t i = 0; i < rec.size(); ++i) rec[i] = static_cast<std::uint8_t>(0x40 + i);
  constexpr std::uint32_t ADDR = 0x40450000;
  ctrl::write_record(h.npu(), ADDR, rec);
  h.on_thread([&](env_t env) {
    std::uint8_t* slot = env_get_dmem_start(env) + SLOT;
    std::memset(slot, UNTOUCHED, 64);
    qrsc(rtt_index(0, p.entry), ADDR, SLOT, SLOT);
    for (std::uint32_t i = 0; i < p.bytes; ++i) EXPECT_EQ(slot[i], rec[i]) << "byte " << i;
    for (std::uint32_t i = p.bytes; i < p.unit; ++i) EXPECT_EQ(slot[i], 0) << "byte " << i;
    for (std::uint32_t i = p.unit; i < 64; ++i) EXPECT_EQ(slot[i], UNTOUCHED) << "byte " << i;
  });
}

INSTANTIATE_TEST_SUITE_P(Entries, TemplateReads,
                         testing::Values(address_read{"read8", 1, 8, 8}, address_read{"read32", 3, 32, 32},
                                         address_read{"read4", 4, 4, 8}, address_read{"uncached16", 6, 16, 16}),
                         [](const testing::TestParamInfo<address_read>& p) { return p.param.name; });

std::uint32_t word_at(env_t env, std::uint32_t loc) { return dma_cell_words(env, loc)[0].get(); }

// Members of 32 bytes behind tpd 7 and of 16 bytes behind tpd 6, from record
// 10 on, numbered by fill: the remainder picks the member after the first.
TEST(ModulusReads, RemainderPicksTheMemberAfterTheFirstRecord) {
  struct row {
    std::uint32_t num, denom, rem, quot;
  };
  const row rows[] = {{10, 3, 1, 3}, {7, 8, 7, 0}, {0xFFFFFFFF, 5, 0, 0x33333333}, {4, 1, 0, 4}};
  testkit::npu_harness h;
  for (std::uint32_t i = 0; i < 8; ++i) {
    ctrl::write_record(h.npu(), *ctrl::paged_record_address(h.npu(), 7, 10 + i),
                       live_record(static_cast<std::uint8_t>(i)));
    const record32 r = live_record(static_cast<std::uint8_t>(0x10 + i));
    ctrl::write_record(h.npu(), *ctrl::paged_record_address(h.npu(), 6, 10 + i), std::span(r).first(16));
  }
  for (const row& c : rows) {
    SCOPED_TRACE(testing::Message() << c.num << " / " << c.denom);
    h.on_thread([&](env_t env) {
      std::uint8_t* slot = env_get_dmem_start(env) + SLOT;
      std::memset(slot, UNTOUCHED, 64);
      lookup_mod_request(env, rtt_index(1, 9), lookup_mod_word(7, 10), c.num, c.denom, SLOT);
      EXPECT_EQ(word_at(env, SLOT), c.rem);
      EXPECT_EQ(word_at(env, SLOT + 4), c.quot);
      record32 member;
      std::memcpy(member.data(), slot + 16, member.size());
      EXPECT_EQ(member, live_record(static_cast<std::uint8_t>(c.rem)));
      EXPECT_EQ(slot[48], UNTOUCHED);

      std::memset(slot, UNTOUCHED, 64);
      lookup_mod_request(env, rtt_index(1, 8), lookup_mod_word(6, 10), c.num, c.denom, SLOT);
      EXPECT_EQ(word_at(env, SLOT), c.rem);
      EXPECT_EQ(slot[16], 0x90 + c.rem);
      EXPECT_EQ(slot[31], 0x10 + c.rem);
      EXPECT_EQ(slot[32], UNTOUCHED);
    });
  }
}

TEST(TemplateBuckets, BucketReadTakesTheRemainderBucket) {
  testkit::npu_harness h;
  constexpr std::uint32_t FIRST_BUCKET = 0x80000000;
  for (std::uint8_t b = 0; b < 4; ++b) {
    const record16 bucket = {b, b, b, b, b, b, b, b, b, b, b, b, b, b, b, static_cast<std::uint8_t>(0xF0 | b)};
    ctrl::write_record(h.npu(), FIRST_BUCKET + b * 16u, bucket);
  }
  h.on_thread([&](env_t env) {
    be_u32* w = dma_cell_words(env, SLOT);
    w[2] = 4;  // denom
    w[3] = 6;  // num
    qrsc(rtt_index(0, 0), FIRST_BUCKET, SLOT, SLOT);
    EXPECT_EQ(env_get_dmem_start(env)[SLOT], 2);
    EXPECT_EQ(env_get_dmem_start(env)[SLOT + 15], 0xF2);
  });
}

TEST(PageDescriptors, ControlSideRefusesWhatTheTluCannotHold) {
  testkit::npu_harness h;
  EXPECT_EQ(ctrl::write_page_descriptor(h.npu(), 64, 0x90000000, 32), ctrl::error::out_of_range);
  EXPECT_EQ(ctrl::write_page_descriptor(h.npu(), 9, 0x90000000, 0), ctrl::error::bad_size);
  EXPECT_FALSE(ctrl::paged_record_address(h.npu(), 9, 0).has_value());
  EXPECT_EQ(ctrl::paged_record_address(h.npu(), TPD_IDX_UIDB_L3_ING, 2), ctrl::PAGED_TABLES_BASE + 2 * 32);
}

#ifndef NDEBUG
TEST(TemplateReadsDeathTest, ReadThroughAnUnsetDescriptorStops) {
  use_threadsafe_death_tests();
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        h.on_thread([](env_t) { qrsc(rtt_index(0, 3), lookup_paged_word(9, 1), SLOT, SLOT); });
      },
      "request template 0/3: paged read through table page descriptor 9, which is not set");
}

TEST(TemplateReadsDeathTest, ModulusByZeroStops) {
  use_threadsafe_death_tests();
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        h.on_thread([](env_t env) { lookup_mod_request(env, rtt_index(1, 9), lookup_mod_word(7, 1), 5, 0, SLOT); });
      },
      "request template 1/9: read with modulus by a denominator of 0");
}
#endif

}  // namespace
