// The model's request templates: reads by address and the modulus reads that
// choose a record by remainder. Paged reads run in the record coherency
// tests, through the lookups that use them.
#include "lookup_test_util.h"

namespace {

using namespace lt;

constexpr std::uint32_t SLOT = 0x100;
constexpr std::uint8_t UNTOUCHED = 0xEE;

// Each read delivers its record bytes, zero to the end of its 8-byte unit,
// and nothing past the response.
TEST(TemplateReads, DeliverTheRecordAndNothingPastTheResponse) {
  struct row {
    std::uint32_t entry, bytes, unit;
  };
  const row rows[] = {{1, 8, 8}, {3, 32, 32}, {4, 4, 8}, {6, 16, 16}};
  constexpr std::uint32_t ADDR = 0x40450000;
  record32 rec;
  for (std::uint32_t i = 0; i < rec.size(); ++i) rec[i] = static_cast<std::uint8_t>(0x40 + i);
  testkit::npu_harness h;
  ctrl::write_record(h.npu(), ADDR, rec);
  for (const row& p : rows) {
    SCOPED_TRACE("template entry " + std::to_string(p.entry));
    h.on_thread([&](env_t env) {
      std::uint8_t* slot = env_get_dmem_start(env) + SLOT;
      std::memset(slot, UNTOUCHED, 64);
      qrsc(rtt_index(0, p.entry), ADDR, SLOT, SLOT);
      std::vector<std::uint8_t> want(rec.begin(), rec.begin() + p.bytes);
      want.resize(p.unit, 0);
      want.resize(64, UNTOUCHED);
      EXPECT_EQ(std::vector<std::uint8_t>(slot, slot + 64), want);
    });
  }
}

std::uint32_t word_at(env_t env, std::uint32_t loc) { return dma_cell_words(env, loc)[0].get(); }

// Members of 32 bytes behind tpd 7, from record 10 on, numbered by fill: the
// remainder picks the member after the first.
TEST(ModulusReads, RemainderPicksTheMemberAfterTheFirstRecord) {
  struct row {
    std::uint32_t num, denom, rem, quot;
  };
  const row rows[] = {{10, 3, 1, 3}, {7, 8, 7, 0}, {0xFFFFFFFF, 5, 0, 0x33333333}, {4, 1, 0, 4}};
  testkit::npu_harness h;
  for (std::uint32_t i = 0; i < 8; ++i) {
    ctrl::write_record(h.npu(), *ctrl::paged_record_address(h.npu(), 7, 10 + i),
                       live_record(static_cast<std::uint8_t>(i)));
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
    });
  }
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
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        h.on_thread([](env_t) { qrsc(rtt_index(0, 3), lookup_paged_word(9, 1), SLOT, SLOT); });
      },
      "request template 0/3: paged read through table page descriptor 9, which is not set");
}

TEST(TemplateReadsDeathTest, ModulusByZeroStops) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        h.on_thread([](env_t env) { lookup_mod_request(env, rtt_index(1, 9), lookup_mod_word(7, 1), 5, 0, SLOT); });
      },
      "request template 1/9: read with modulus by a denominator of 0");
}
#endif

}  // namespace
