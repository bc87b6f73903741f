// The generator refuses rows that a compiler would let through: cells and
// slots that are misaligned, out of DMA reach, or overlapping another lookup
// of a live group. Each message names the row, its file line and the rule.
#include <gtest/gtest.h>

#include "gen_fixture.h"

namespace {

using gen_test::generate;
using gen_test::generated;
using gen_test::joined;

struct bad_rows {
  const char* name;
  const char* rows;
  const char* message;  // expected within the one message
};

class LayoutChecks : public testing::TestWithParam<bad_rows> {};

TEST_P(LayoutChecks, RefusesTheRowAndSaysWhy) {
  generated g;
  generate(g, GetParam().rows);
  ASSERT_EQ(g.errs.size(), 1u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find(GetParam().message), std::string::npos) << g.errs[0];
}

INSTANTIATE_TEST_SUITE_P(
    BadRows, LayoutChecks,
    testing::Values(
        bad_rows{"misaligned_slot", "UIDB_L3_ING__COMM slot=0x148 type=rec live=g",
                 "lookups.txt:1: ID_UIDB_L3_ING__COMM: slot 0x148 is not a multiple of 16"},
        bad_rows{"misaligned_cell", "STATS_ADD_INC__COMM cell=0x308 live=g",
                 "ID_STATS_ADD_INC__COMM: cell 0x308 is not a multiple of 16"},
        bad_rows{"misaligned_counter_cell", "STATS_INC_GLB_CNT__DEBUG cell=0x2D4",
                 "cell 0x2D4 is not a multiple of 16"},
        bad_rows{"slot_past_reach", "UIDB_L3_ING__COMM slot=0x3F0 type=rec live=g",
                 "slot 0x3F0 with 32 bytes reaches past the first 1024 bytes"},
        bad_rows{"cell_past_reach", "STATS_ADD_INC__COMM cell=0x400 live=g",
                 "cell 0x400 lies outside the first 1024 bytes"},
        bad_rows{"slot_over_slot",
                 "UIDB_L3_ING__COMM slot=0x140 type=rec live=g\nTX_ADJ__COMM slot=0x150 type=rec live=h,g",
                 "lookups.txt:2: ID_TX_ADJ__COMM: slot 0x150..0x16F overlaps slot 0x140..0x15F of "
                 "ID_UIDB_L3_ING__COMM, both live in group g"},
        bad_rows{"cell_over_slot", "UIDB_L3_ING__COMM slot=0x140 type=rec live=g\nSTATS_ADD_INC__COMM cell=0x150 live=g",
                 "cell 0x150..0x15B overlaps slot 0x140..0x15F of ID_UIDB_L3_ING__COMM, both live in group g"},
        bad_rows{"all_meets_every_group",
                 "UIDB_L3_ING__COMM slot=0x140 type=rec live=g\nSTATS_ADD_INC__COMM cell=0x140 live=all",
                 "overlaps slot 0x140..0x15F of ID_UIDB_L3_ING__COMM, both live in group all"},
        // The re-read of a protected record takes 32 bytes, more than the 16-byte read.
        bad_rows{"protected_read_reserves_its_reread",
                 "NHINDEX__COMM slot=0x100 type=rec live=g\nPORT_CONFIG_ING__SAT slot=0x110 type=rec live=g",
                 "slot 0x110..0x11F overlaps slot 0x100..0x11F of ID_NHINDEX__COMM"},
        // A read with modulus answers 16 bytes of remainder and the 32-byte record.
        bad_rows{"modulus_read_covers_its_record",
                 "L3_NRLDI_ING__COMM slot=0x110 type=rec live=g\nUIDB_L3_ING__COMM slot=0x130 type=rec live=g",
                 "slot 0x130..0x14F overlaps slot 0x110..0x13F of ID_L3_NRLDI_ING__COMM"},
        bad_rows{"occupies_without_group", "UIDB_L3_ING__COMM slot=0x140 type=rec",
                 "occupies data memory but names no live group"}),
    [](const testing::TestParamInfo<bad_rows>& p) { return p.param.name; });

TEST(LayoutChecks, LookupsOfDifferentGroupsShareSlots) {
  generated g;
  generate(g,
           "GLOBAL_PKT_TRACE slot=0x020 type=rec live=loop\n"
           "PORT_CONFIG_ING__SAT slot=0x020 type=rec live=sat_ing\n"
           "L3_NRLDI_ING__COMM slot=0x110 type=rec live=l3\n"
           "UIDB_L3_ING__COMM slot=0x140 type=rec live=l3\n"
           "STATS_INC_GLB_CNT__DEBUG cell=0x140\n");
  EXPECT_TRUE(g.errs.empty()) << joined(g.errs);
  EXPECT_EQ(g.lookups.size(), 5u);
}

TEST(LayoutChecks, EveryOverlapOfARowIsReported) {
  generated g;
  generate(g,
           "UIDB_L3_ING__COMM slot=0x140 type=rec live=a\n"
           "TX_ADJ__COMM slot=0x140 type=rec live=b\n"
           "STATS_ADD_INC__COMM cell=0x150 live=a,b\n");
  ASSERT_EQ(g.errs.size(), 2u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("of ID_UIDB_L3_ING__COMM, both live in group a"), std::string::npos);
  EXPECT_NE(g.errs[1].find("of ID_TX_ADJ__COMM, both live in group b"), std::string::npos);
}

}  // namespace
