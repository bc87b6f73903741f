// Exact-key tables in the catalogue: their table lines, their search rows,
// and what the generator writes for them.
#include <gtest/gtest.h>

#include "emit.h"
#include "parse.h"
#include "resolve.h"

namespace {

constexpr const char* IDENTIFIERS = R"(
[engine form=read template=TLU_READ_32B]
UIDB_L3_ING
[hash_families]
MPLS_RPF HOST_HASH MAPT_LOGG_HASH
[hash_suffixes]
MOD BUCKET_0 BUCKET_1 BUCKET KEY KEY_TABLE_ID_ONLY RES REQUEST_UNUSED RESULT_UNUSED
[tags]
ING TAIL
)";

constexpr const char* TABLES = R"(
[paged]
0 32 UIDB_L3_ING
[hash_spaces]
A         0x80000000 0x100000
base_addr 0          0x40000
[hash_tables]
MPLS_RPF       31  32  A         8  16
MAPT_LOGG_HASH 60  392 base_addr 64 16 data_plane
HOST_HASH      -   -   A         16 16 data_plane
)";

struct generated {
  gen::catalogue cat;
  gen::errors errs;
  std::vector<gen::lookup> lookups;
};

generated generate(const std::string& tables, const std::string& rows) {
  generated g;
  gen::parse_request_templates("REQUEST_TEMPLATE(TLU_READ_32B, 0, 3, 32)", "request_templates.def", g.cat, g.errs);
  gen::parse_identifiers(IDENTIFIERS, "identifiers.txt", g.cat, g.errs);
  gen::parse_tables(tables, "tables.txt", g.cat, g.errs);
  gen::parse_lookups(rows, "lookups.txt", g.cat, g.errs);
  g.lookups = gen::resolve(g.cat, g.errs);
  return g;
}

std::string joined(const gen::errors& errs) {
  std::string all;
  for (const std::string& e : errs) all += e + "\n";
  return all;
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

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

struct bad_case {
  const char* name;
  const char* tables;
  const char* rows;
  const char* message;
};

class HashRowRules : public testing::TestWithParam<bad_case> {};

TEST_P(HashRowRules, RefusesAndSaysWhy) {
  const generated g = generate(GetParam().tables, GetParam().rows);
  ASSERT_FALSE(g.errs.empty());
  EXPECT_TRUE(contains(joined(g.errs), GetParam().message)) << joined(g.errs);
}

#define ONE_TABLE(line) "[hash_spaces]\nA 0x80000000 0x100000\n[hash_tables]\n" line "\n"

INSTANTIATE_TEST_SUITE_P(
    Bad, HashRowRules,
    testing::Values(
        bad_case{"no_result_cell", TABLES, "MPLS_RPF bucket=0x200 key=0x210 type=r live=g",
                 "needs bucket=, key= and res="},
        bad_case{"key_from_the_message", TABLES, "HOST_HASH bucket=0x200 key=0x210 res=0x220 type=r live=g",
                 "the message gives its key"},
        bad_case{"cells_overlap", TABLES,
                 "UIDB_L3_ING slot=0x200 type=r live=g\nMPLS_RPF bucket=0x220 key=0x210 res=0x230 type=r live=g",
                 "key 0x210..0x21F overlaps slot 0x200..0x21F of ID_UIDB_L3_ING"},
        bad_case{"past_reach", TABLES, "MPLS_RPF bucket=0x3F0 key=0x400 res=0x200 type=r live=g",
                 "reaches past the first 1024 bytes"},
        bad_case{"width_without_fold", ONE_TABLE("MPLS_RPF 31 36 A 8 16"), "", "no table hash folds a key of 36 bits"},
        bad_case{"single_with_short_key", ONE_TABLE("MPLS_RPF 31 32 A 8 16 single"), "",
                 "the single-entry form holds an 8-byte key"},
        bad_case{"unknown_space", ONE_TABLE("MPLS_RPF 31 32 C 8 16"), "", "no hash space C"}),
    [](const testing::TestParamInfo<bad_case>& p) { return std::string(p.param.name); });

}  // namespace
