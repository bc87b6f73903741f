// Exact-key tables in the catalogue: what the generator writes for their
// table lines and search rows (the rows it refuses stand with the others).
#include <gtest/gtest.h>

#include "emit.h"
#include "gen_fixture.h"

namespace {

using gen_test::contains;
using gen_test::generated;
using gen_test::joined;

generated generate(const std::string& tables, const std::string& rows) {
  return gen_test::generate(rows, gen_test::HASH_IDENTIFIERS, tables);
}
constexpr const char* TABLES = gen_test::HASH_TABLES;

constexpr const char* SEARCH_ROW = "MPLS_RPF__ING bucket=0x200 key=0x210 res=0x220 type=rpf_result live=g\n";

TEST(HashRows, ASearchRowGivesItsLookupsWithItsTagAndTheSearchFamily) {
  const generated g = generate(TABLES, SEARCH_ROW);
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::vector<std::string> names = gen::enum_names(g.cat);
  const std::vector<std::string> tail(names.end() - 5, names.end());
  EXPECT_EQ(tail, (std::vector<std::string>{"MPLS_RPF_BUCKET_0__ING", "MPLS_RPF_BUCKET_1__ING", "MPLS_RPF_BUCKET__ING",
                                            "MPLS_RPF_KEY__ING", "MPLS_RPF_RES__ING"}));
  const gen::outputs out = gen::emit(g.cat, g.lookups);
  EXPECT_TRUE(contains(out.ops_header,
                       "inline constexpr hash_search_desc_st HASH_SEARCH_MPLS_RPF__ING = {"
                       "HASH_TABLE_MPLS_RPF, ID_MPLS_RPF_BUCKET_0__ING, ID_MPLS_RPF_BUCKET_1__ING, "
                       "ID_MPLS_RPF_BUCKET__ING, ID_MPLS_RPF_KEY__ING, ID_MPLS_RPF_RES__ING, "
                       "0x200, 0x210, 16, 0x220};"));
  EXPECT_TRUE(contains(out.ops_header,
                       "inline void hash_search_part_1_ID_MPLS_RPF__ING(env_t env, void* key, "
                       "hash_search_context_st* context)"));
  EXPECT_TRUE(contains(out.ops_header, "inline rpf_result* lookup_result_ID_MPLS_RPF_RES__ING(env_t env)"));
  EXPECT_TRUE(contains(out.ops_header, "#define LOOKUP_HASH_SEARCH_ROWS(X) \\\n  X(MPLS_RPF__ING)\n"));
  EXPECT_TRUE(contains(out.source, "{ID_MPLS_RPF_KEY__ING, 0x210}"));
  EXPECT_TRUE(contains(out.ids_header, "LOOKUP_DBG_RES_COUNT = 3;"));
}

TEST(HashRows, TablesAndSpacesReachTheControlSide) {
  const generated g = generate(TABLES, "");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string tables = gen::emit(g.cat, g.lookups).tables_header;
  EXPECT_TRUE(contains(tables, "HASH_SPACE_A_BASE = 0x80000000;"));
  EXPECT_TRUE(contains(tables, "HASH_SPACE_BASE_ADDR_BUCKETS = 0x40000;"));
  EXPECT_TRUE(contains(tables,
                       "HASH_TABLE_MPLS_RPF = {\"MPLS_RPF\", 31, 32, HASH_SPACE_A_BASE, HASH_SPACE_A_BUCKETS, "
                       "8, 16, false, false};"));
  EXPECT_TRUE(contains(tables, "HASH_TABLE_HOST_HASH = {\"HOST_HASH\", 0, 0,"));
  EXPECT_TRUE(contains(tables, "std::array<lookup_hash_table_st, 3> LOOKUP_HASH_TABLES"));
}

TEST(HashRows, ATableInTheCallersSpaceTakesTheBaseInPartOne) {
  const generated g = generate(TABLES, "MAPT_LOGG_HASH__TAIL bucket=0x200 key=0x210 res=0x250 type=r live=t\n");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_TRUE(contains(ops,
                       "hash_search_context_st* context, memaddr_t base_addr) {\n"
                       "  hash_search_part_1_base_addr(env, HASH_SEARCH_MAPT_LOGG_HASH__TAIL, key, context, "
                       "base_addr);"));
  EXPECT_TRUE(contains(ops, "#define LOOKUP_HASH_SEARCH_ROWS(X)\n"));
}

}  // namespace
