// The generator refuses what a compiler would let through: names that do not
// exist, rows their engine cannot take, cells and slots misaligned, out of
// DMA reach or overlapping another lookup of a live group, and catalogues
// that do not hold together. Each message names the row, its line and the rule.
#include <gtest/gtest.h>

#include "gen_fixture.h"

namespace {

using gen_test::generate;
using gen_test::generated;
using gen_test::joined;

struct refused {
  const char* name;
  const char* rows;
  const char* message;  // expected within the messages
  std::string identifiers = gen_test::IDENTIFIERS;
  std::string tables = gen_test::TABLES;
  std::size_t errors = 1;  // 0: any number
};

class RefusedRows : public testing::TestWithParam<refused> {};

TEST_P(RefusedRows, SayWhy) {
  const refused& r = GetParam();
  const generated g = generate(r.rows, r.identifiers, r.tables);
  ASSERT_FALSE(g.errs.empty());
  if (r.errors) {
    EXPECT_EQ(g.errs.size(), r.errors) << joined(g.errs);
  }
  EXPECT_TRUE(gen_test::contains(joined(g.errs), r.message)) << joined(g.errs);
}

using gen_test::HASH_IDENTIFIERS;
using gen_test::HASH_TABLES;
using gen_test::ROUTE_IDENTIFIERS;
using gen_test::ROUTE_TABLES;
using gen_test::tlu_mod_identifiers;
using gen_test::TLU_MOD_TABLES;

#define ONE_HASH_TABLE(line) "[hash_spaces]\nA 0x80000000 0x100000\n[hash_tables]\n" line "\n"
constexpr const char* LOCK_ROWS = "MAC_LOCK__MN__ACQUIRE cell=0x020 live=g\nMAC_LOCK__MN__RELEASE cell=0x020 live=g\n";

INSTANTIATE_TEST_SUITE_P(
    Names, RefusedRows,
    testing::Values(
        refused{"unknown_base", "UIDB_L9_ING__COMM slot=0x140 type=rec live=g",
                "base name UIDB_L9_ING is not in identifiers.txt"},
        refused{"unknown_tag", "UIDB_L3_ING__NOWHERE slot=0x140 type=rec live=g",
                "tag NOWHERE is not in identifiers.txt"},
        refused{"second_row", "STATS_INC_GLB_CNT__DEBUG cell=0x2D0\nSTATS_INC_GLB_CNT__DEBUG cell=0x2E0",
                "lookups.txt:2: ID_STATS_INC_GLB_CNT__DEBUG: has a second row"},
        refused{"engine_without_form", "UC_DST_VPN_ING__IPV4 slot=0x020 type=rec live=g",
                "the engine of UC_DST_VPN_ING has no code form yet"},
        refused{"hash_identifier_without_engine", "LPTS_HASH_KEY__IPV4 slot=0x060 type=rec live=g",
                "base name LPTS_HASH_KEY stands under no engine yet"},
        refused{"table_without_address", "REPNODE__COMM slot=0x0A0 type=rec live=g",
                "table REPNODE has no address in tables.txt"},
        refused{"view_of_nothing", "IP_LEAF_ING__IPV4 view=UC_DST_VPN_ING__IPV4 type=rec",
                "views ID_UC_DST_VPN_ING__IPV4, which is no lookup with a result of its own"},
        refused{"not_key_value", "UIDB_L3_ING__COMM slot", "'slot' is not key=value"},
        refused{"bad_number", "UIDB_L3_ING__COMM slot=0x14G type=rec live=g", "slot '0x14G' is not a number"},
        refused{"locks_section_without_family", "", "identifiers.txt:1: a locks section names its family",
                "[locks]\nMAC_LOCK__MN", "", 0},
        refused{"lock_family_without_bitmap", LOCK_ROWS, "lock family mac has no bitmap in tables.txt",
                "[engine resource=120]\nMAC_LOCK\n[tags]\nMN__ACQUIRE MN__RELEASE\n[locks family=mac]\nMAC_LOCK__MN",
                "", 0}),
    [](const testing::TestParamInfo<refused>& p) { return p.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Engines, RefusedRows,
    testing::Values(
        refused{"read_without_type", "UIDB_L3_ING__COMM slot=0x140 live=g", "needs type=<result type>"},
        refused{"read_without_slot", "UIDB_L3_ING__COMM type=rec live=g", "needs slot=<result slot>"},
        refused{"read_with_cell", "UIDB_L3_ING__COMM slot=0x140 cell=0x200 type=rec live=g",
                "takes no cell=: its request cell is its slot"},
        refused{"counter_without_cell", "STATS_INC_GLB_CNT__DEBUG", "needs cell=<request cell>"},
        refused{"counter_with_result", "STATS_ADD_INC__COMM cell=0x300 slot=0x300 type=rec live=g",
                "has no result: slot= and type= have no meaning"},
        refused{"group_without_occupant", "STATS_INC_GLB_CNT__DEBUG cell=0x2D0 live=g",
                "occupies no data memory, so live= has no meaning"},
        refused{"occupant_without_group", "UIDB_L3_ING__COMM slot=0x140 type=rec",
                "occupies data memory but names no live group"},
        refused{"lock_acquire_alone", "MAC_LOCK__MN__ACQUIRE cell=0x020 live=g",
                "ID_MAC_LOCK__MN__ACQUIRE: lock MAC_LOCK__MN has no __RELEASE row"},
        refused{"lock_without_cell", "MAC_LOCK__MN__ACQUIRE live=g\nMAC_LOCK__MN__RELEASE cell=0x020 live=g",
                "a lock row needs cell=<request cell>"},
        refused{"lock_with_result",
                "MAC_LOCK__MN__ACQUIRE cell=0x020 slot=0x020 type=rec live=g\nMAC_LOCK__MN__RELEASE cell=0x020 live=g",
                "a lock row takes cell= and live= only"},
        refused{"modulus_read_of_a_direct_table", "LAG_INFO_ING__COMM slot=0x060 type=rec live=g",
                "a read with modulus needs a paged table, and LAG_INFO_ING is not one",
                "[engine form=mod_read template=MOD_READ_16B]\nLAG_INFO_ING\n[tags]\nCOMM",
                "[direct]\n0x403A4200 16 LAG_INFO_ING"},
        refused{"tlu_modulus_read_of_a_direct_table", "LAG_EGR slot=0x0E0 type=rec live=egr",
                "a read with modulus needs a paged table, and LAG_EGR is not one", tlu_mod_identifiers("16"),
                "[direct]\n0x403A4200 16 LAG_EGR LAG_INFO_EGR"},
        refused{"tlu_modulus_read_answers_the_record_alone", "LAG_EGR slot=0x0E0 type=rec live=egr",
                "answers with the 16-byte record alone, and the engine says 24 bytes", tlu_mod_identifiers("24"),
                TLU_MOD_TABLES},
        refused{"ipv6_family_on_a_plain_read", "TX_ADJ__COMM family=ipv6 slot=0x020 type=rec live=a",
                "family=ipv6 belongs to the IPv4 route searches", ROUTE_IDENTIFIERS, ROUTE_TABLES},
        refused{"hash_without_result_cell", "MPLS_RPF bucket=0x200 key=0x210 type=r live=g",
                "needs bucket=, key= and res=", HASH_IDENTIFIERS, HASH_TABLES, 0},
        refused{"hash_key_from_the_message", "HOST_HASH bucket=0x200 key=0x210 res=0x220 type=r live=g",
                "the message gives its key", HASH_IDENTIFIERS, HASH_TABLES, 0},
        refused{"hash_width_without_fold", "", "no table hash folds a key of 36 bits", HASH_IDENTIFIERS,
                ONE_HASH_TABLE("MPLS_RPF 31 36 A 8 16"), 0},
        refused{"hash_single_with_short_key", "", "the single-entry form holds an 8-byte key", HASH_IDENTIFIERS,
                ONE_HASH_TABLE("MPLS_RPF 31 32 A 8 16 single"), 0},
        refused{"hash_unknown_space", "", "no hash space C", HASH_IDENTIFIERS, ONE_HASH_TABLE("MPLS_RPF 31 32 C 8 16"),
                0}),
    [](const testing::TestParamInfo<refused>& p) { return p.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Layout, RefusedRows,
    testing::Values(
        refused{"misaligned_slot", "UIDB_L3_ING__COMM slot=0x148 type=rec live=g",
                "lookups.txt:1: ID_UIDB_L3_ING__COMM: slot 0x148 is not a multiple of 16"},
        refused{"misaligned_cell", "STATS_ADD_INC__COMM cell=0x308 live=g",
                "ID_STATS_ADD_INC__COMM: cell 0x308 is not a multiple of 16"},
        refused{"slot_past_reach", "UIDB_L3_ING__COMM slot=0x3F0 type=rec live=g",
                "slot 0x3F0 with 32 bytes reaches past the first 1024 bytes"},
        refused{"cell_past_reach", "STATS_ADD_INC__COMM cell=0x400 live=g",
                "cell 0x400 lies outside the first 1024 bytes"},
        refused{"hash_past_reach", "MPLS_RPF bucket=0x3F0 key=0x400 res=0x200 type=r live=g",
                "reaches past the first 1024 bytes", HASH_IDENTIFIERS, HASH_TABLES, 0},
        refused{"slot_over_slot",
                "UIDB_L3_ING__COMM slot=0x140 type=rec live=g\nTX_ADJ__COMM slot=0x150 type=rec live=h,g",
                "lookups.txt:2: ID_TX_ADJ__COMM: slot 0x150..0x16F overlaps slot 0x140..0x15F of "
                "ID_UIDB_L3_ING__COMM, both live in group g"},
        refused{"cell_over_slot", "UIDB_L3_ING__COMM slot=0x140 type=rec live=g\nSTATS_ADD_INC__COMM cell=0x150 live=g",
                "cell 0x150..0x15B overlaps slot 0x140..0x15F of ID_UIDB_L3_ING__COMM, both live in group g"},
        refused{"all_meets_every_group",
                "UIDB_L3_ING__COMM slot=0x140 type=rec live=g\nSTATS_ADD_INC__COMM cell=0x140 live=all",
                "overlaps slot 0x140..0x15F of ID_UIDB_L3_ING__COMM, both live in group all"},
        // The re-read of a protected record takes 32 bytes, more than the 16-byte read.
        refused{"protected_read_reserves_its_reread",
                "NHINDEX__COMM slot=0x100 type=rec live=g\nPORT_CONFIG_ING__SAT slot=0x110 type=rec live=g",
                "slot 0x110..0x11F overlaps slot 0x100..0x11F of ID_NHINDEX__COMM"},
        // A read with modulus answers 16 bytes of remainder and the 32-byte record.
        refused{"modulus_read_covers_its_record",
                "L3_NRLDI_ING__COMM slot=0x110 type=rec live=g\nUIDB_L3_ING__COMM slot=0x130 type=rec live=g",
                "slot 0x130..0x14F overlaps slot 0x110..0x13F of ID_L3_NRLDI_ING__COMM"},
        refused{"lock_over_another_lookup",
                "PORT_CONFIG_ING__SAT slot=0x020 type=rec live=g\nMAC_LOCK__MN__ACQUIRE cell=0x020 live=g\n"
                "MAC_LOCK__MN__RELEASE cell=0x030 live=h",
                "cell 0x020..0x02F overlaps slot 0x020..0x02F of ID_PORT_CONFIG_ING__SAT"},
        refused{"hash_cells_over_a_slot",
                "UIDB_L3_ING slot=0x200 type=r live=g\nMPLS_RPF bucket=0x220 key=0x210 res=0x230 type=r live=g",
                "key 0x210..0x21F overlaps slot 0x200..0x21F of ID_UIDB_L3_ING", HASH_IDENTIFIERS, HASH_TABLES, 0},
        refused{"route_key_over_a_slot",
                "UC_DST_VPN_ING__IPV6 family=ipv6 slot=0x020 type=plu_result_st live=a\n"
                "TX_ADJ__COMM slot=0x030 type=rec live=a",
                "slot 0x030..0x04F overlaps cell 0x020..0x033 of ID_UC_DST_VPN_ING__IPV6", ROUTE_IDENTIFIERS,
                ROUTE_TABLES, 0}),
    [](const testing::TestParamInfo<refused>& p) { return p.param.name; });

TEST(RefusedRows, EveryOverlapOfARowIsReported) {
  const generated g = generate(
      "UIDB_L3_ING__COMM slot=0x140 type=rec live=a\n"
      "TX_ADJ__COMM slot=0x140 type=rec live=b\n"
      "STATS_ADD_INC__COMM cell=0x150 live=a,b\n");
  ASSERT_EQ(g.errs.size(), 2u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("of ID_UIDB_L3_ING__COMM, both live in group a"), std::string::npos);
  EXPECT_NE(g.errs[1].find("of ID_TX_ADJ__COMM, both live in group b"), std::string::npos);
}

TEST(RefusedRows, TablesNameOnlyBaseNamesOnce) {
  const generated g =
      generate("", gen_test::IDENTIFIERS, "[paged]\n0 32 UIDB_L3_ING NO_SUCH_TABLE\n1 32 UIDB_L3_ING\n1 16 TX_ADJ");
  ASSERT_EQ(g.errs.size(), 3u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("tables.txt:2: table NO_SUCH_TABLE is no base name"), std::string::npos);
  EXPECT_NE(g.errs[1].find("tables.txt:3: table UIDB_L3_ING has two addresses"), std::string::npos);
  EXPECT_NE(g.errs[2].find("tables.txt:4: page descriptor 1 has a second line"), std::string::npos);
}

}  // namespace
