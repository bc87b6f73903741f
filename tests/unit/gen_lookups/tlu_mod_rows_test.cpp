// Rows of the TLU's paged modulus read (resource 120): the request it
// writes, and what its engine and table must be.
#include <gtest/gtest.h>

#include "emit.h"
#include "gen_fixture.h"

namespace {

using gen_test::joined;

gen_test::generated tlu_mod_rows(const std::string& engine_response, const std::string& tables,
                                 const std::string& rows) {
  gen_test::generated g;
  gen::parse_identifiers("[engine form=tlu_mod_read_paged resource=120 response=" + engine_response +
                             "]\nLAG_EGR\n[engine form=read template=TLU_READ_16B]\nLAG_INFO_EGR\n",
                         "identifiers.txt", g.cat, g.errs);
  gen::parse_tables(tables, "tables.txt", g.cat, g.errs);
  gen::parse_lookups(rows, "lookups.txt", g.cat, g.errs);
  g.lookups = gen::resolve(g.cat, g.errs);
  return g;
}

constexpr const char* PAGED = "[paged]\n4 16 LAG_EGR\n[direct]\n0x403A4200 16 LAG_INFO_EGR";

TEST(TluModRows, WritesTheLongCommandWithThePagedRecordAndTheSlotAsCell) {
  const auto g = tlu_mod_rows("16", PAGED, "LAG_EGR slot=0x0E0 type=lag_mem_info_fields_st live=egr");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_NE(ops.find("inline void lookup_request_ID_LAG_EGR(env_t env, std::uint32_t record_index, "
                     "std::uint32_t num, std::uint32_t denom) {"),
            std::string::npos)
      << ops;
  EXPECT_NE(ops.find("lookup_dbg_note_request(env, ID_LAG_EGR, 0x0E0, 16, 0x0E0, 16);"), std::string::npos);
  EXPECT_NE(ops.find("tlu_mod_read_16B_paging(env, record_index, 4, {denom, num}, {0x0E0, 0x0E0, "
                     "TLU_CACHE_PERIODIC});"),
            std::string::npos);
  EXPECT_NE(ops.find("lag_mem_info_fields_st* lookup_result_ID_LAG_EGR(env_t env)"), std::string::npos);
}

TEST(TluModRows, NeedsAPagedTable) {
  const auto g =
      tlu_mod_rows("16", "[direct]\n0x403A4200 16 LAG_EGR LAG_INFO_EGR", "LAG_EGR slot=0x0E0 type=rec live=egr");
  ASSERT_EQ(g.errs.size(), 1u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("a read with modulus needs a paged table, and LAG_EGR is not one"), std::string::npos);
}

TEST(TluModRows, AnswersWithTheRecordAlone) {
  const auto g = tlu_mod_rows("24", PAGED, "LAG_EGR slot=0x0E0 type=rec live=egr");
  ASSERT_EQ(g.errs.size(), 1u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("answers with the 16-byte record alone, and the engine says 24 bytes"), std::string::npos);
}

}  // namespace
