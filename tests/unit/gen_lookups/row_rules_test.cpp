// Rows that name what does not exist or give what their engine cannot take.
#include <gtest/gtest.h>

#include "gen_fixture.h"

namespace {

using gen_test::generate;
using gen_test::generated;
using gen_test::joined;

struct bad_row {
  const char* name;
  const char* rows;
  const char* message;
};

class RowRules : public testing::TestWithParam<bad_row> {};

TEST_P(RowRules, RefusesTheRow) {
  generated g;
  generate(g, GetParam().rows);
  ASSERT_EQ(g.errs.size(), 1u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find(GetParam().message), std::string::npos) << g.errs[0];
}

INSTANTIATE_TEST_SUITE_P(
    BadRows, RowRules,
    testing::Values(
        bad_row{"unknown_base", "UIDB_L9_ING__COMM slot=0x140 type=rec live=g",
                "base name UIDB_L9_ING is not in identifiers.txt"},
        bad_row{"unknown_tag", "UIDB_L3_ING__NOWHERE slot=0x140 type=rec live=g",
                "tag NOWHERE is not in identifiers.txt"},
        bad_row{"second_row", "STATS_INC_GLB_CNT__DEBUG cell=0x2D0\nSTATS_INC_GLB_CNT__DEBUG cell=0x2E0",
                "lookups.txt:2: ID_STATS_INC_GLB_CNT__DEBUG: has a second row"},
        bad_row{"engine_without_form", "UC_DST_VPN_ING__IPV4 slot=0x020 type=rec live=g",
                "the engine of UC_DST_VPN_ING has no code form yet"},
        bad_row{"hash_identifier_without_engine", "LPTS_HASH_KEY__IPV4 slot=0x060 type=rec live=g",
                "base name LPTS_HASH_KEY stands under no engine yet"},
        bad_row{"read_without_type", "UIDB_L3_ING__COMM slot=0x140 live=g", "needs type=<result type>"},
        bad_row{"read_without_slot", "UIDB_L3_ING__COMM type=rec live=g", "needs slot=<result slot>"},
        bad_row{"read_with_cell", "UIDB_L3_ING__COMM slot=0x140 cell=0x200 type=rec live=g",
                "takes no cell=: its request cell is its slot"},
        bad_row{"counter_without_cell", "STATS_INC_GLB_CNT__DEBUG", "needs cell=<request cell>"},
        bad_row{"counter_with_result", "STATS_ADD_INC__COMM cell=0x300 slot=0x300 type=rec live=g",
                "has no result: slot= and type= have no meaning"},
        bad_row{"group_without_occupant", "STATS_INC_GLB_CNT__DEBUG cell=0x2D0 live=g",
                "occupies no data memory, so live= has no meaning"},
        bad_row{"table_without_address", "REPNODE__COMM slot=0x0A0 type=rec live=g",
                "table REPNODE has no address in tables.txt"},
        bad_row{"view_of_nothing", "IP_LEAF_ING__IPV4 view=UC_DST_VPN_ING__IPV4 type=rec",
                "views ID_UC_DST_VPN_ING__IPV4, which is no lookup with a result of its own"},
        bad_row{"not_key_value", "UIDB_L3_ING__COMM slot", "'slot' is not key=value"},
        bad_row{"bad_number", "UIDB_L3_ING__COMM slot=0x14G type=rec live=g", "slot '0x14G' is not a number"},
        bad_row{"lock_acquire_alone", "MAC_LOCK__MN__ACQUIRE cell=0x020 live=g",
                "ID_MAC_LOCK__MN__ACQUIRE: lock MAC_LOCK__MN has no __RELEASE row"},
        bad_row{"lock_without_cell", "MAC_LOCK__MN__ACQUIRE live=g\nMAC_LOCK__MN__RELEASE cell=0x020 live=g",
                "a lock row needs cell=<request cell>"},
        bad_row{"lock_with_result",
                "MAC_LOCK__MN__ACQUIRE cell=0x020 slot=0x020 type=rec live=g\nMAC_LOCK__MN__RELEASE cell=0x020 live=g",
                "a lock row takes cell= and live= only"},
        bad_row{"lock_over_another_lookup",
                "PORT_CONFIG_ING__SAT slot=0x020 type=rec live=g\nMAC_LOCK__MN__ACQUIRE cell=0x020 live=g\n"
                "MAC_LOCK__MN__RELEASE cell=0x030 live=h",
                "cell 0x020..0x02F overlaps slot 0x020..0x02F of ID_PORT_CONFIG_ING__SAT"},
        bad_row{"conversion_without_cell", "FLOWLOCK_CONVERT__TAIL live=tail", "needs cell=<request cell>"}),
    [](const testing::TestParamInfo<bad_row>& p) { return p.param.name; });

TEST(RowRules, ModulusReadNeedsAPagedTable) {
  generated g;
  gen::parse_identifiers("[engine form=mod_read template=MOD_READ_16B]\nLAG_INFO_ING\n[tags]\nCOMM", "i", g.cat,
                         g.errs);
  gen::parse_tables("[direct]\n0x403A4200 16 LAG_INFO_ING", "t", g.cat, g.errs);
  gen::parse_lookups("LAG_INFO_ING__COMM slot=0x060 type=rec live=g", "l", g.cat, g.errs);
  g.lookups = gen::resolve(g.cat, g.errs);
  ASSERT_EQ(g.errs.size(), 1u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("a read with modulus needs a paged table, and LAG_INFO_ING is not one"), std::string::npos);
}

TEST(RowRules, TablesNameOnlyBaseNamesOnce) {
  generated g;
  gen::parse_identifiers(gen_test::IDENTIFIERS, "identifiers.txt", g.cat, g.errs);
  gen::parse_tables("[paged]\n0 32 UIDB_L3_ING NO_SUCH_TABLE\n1 32 UIDB_L3_ING\n1 16 TX_ADJ", "tables.txt", g.cat,
                    g.errs);
  ASSERT_EQ(g.errs.size(), 3u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("tables.txt:2: table NO_SUCH_TABLE is no base name"), std::string::npos);
  EXPECT_NE(g.errs[1].find("tables.txt:3: table UIDB_L3_ING has two addresses"), std::string::npos);
  EXPECT_NE(g.errs[2].find("tables.txt:4: page descriptor 1 has a second line"), std::string::npos);
}

// An engine takes its template, and with it the response size, from the
// template table only.
TEST(RowRules, EnginesNameTemplatesOfTheTable) {
  struct bad_engine {
    const char* text;
    const char* fault;
  };
  for (const bad_engine& c : {
           bad_engine{"[engine form=read template=TLU_READ_64B]\nX", "template 'TLU_READ_64B' is no row"},
           bad_engine{"[engine form=read template=TLU_READ_16B response=16]\nX", "takes the template's response"},
           bad_engine{"[engine form=read template=0.2]\nX", "template '0.2' is no row"},
       }) {
    generated g;
    gen::parse_identifiers(c.text, "identifiers.txt", g.cat, g.errs);
    ASSERT_EQ(g.errs.size(), 1u) << c.text << "\n" << joined(g.errs);
    EXPECT_NE(g.errs[0].find(c.fault), std::string::npos) << g.errs[0];
  }
}

TEST(RowRules, TemplateRowsAreWholeAndNamedOnce) {
  generated g;
  gen::parse_request_templates(
      "REQUEST_TEMPLATE(A, 0, 16, 8)\nREQUEST_TEMPLATE(B, 2, 1, 8)\n"
      "REQUEST_TEMPLATE(C, 0, 1)\nREQUEST_TEMPLATE(TLU_READ_16B, 0, 5, 16)",
      "request_templates.def", g.cat, g.errs);
  ASSERT_EQ(g.errs.size(), 4u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("request_templates.def:1: a template row is"), std::string::npos);
  EXPECT_NE(g.errs[1].find("request_templates.def:2: a template row is"), std::string::npos);
  EXPECT_NE(g.errs[2].find("request_templates.def:3: a template row is"), std::string::npos);
  EXPECT_NE(g.errs[3].find("request_templates.def:4: template 'TLU_READ_16B' stands twice"), std::string::npos);
}

}  // namespace
