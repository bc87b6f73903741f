// What the generator writes for a small catalogue: the operations each
// engine and protection call for, a hash search's identifiers, and the table
// addresses. The program's own catalogue is compiled and driven by the tests
// of each engine; these cases pin the generator's rules on inputs of their own.
#include <gtest/gtest.h>

#include "emit.h"
#include "gen_fixture.h"

namespace {

using gen_test::contains;
using gen_test::generate;
using gen_test::generated;
using gen_test::joined;

// The outputs of a catalogue the generator accepts.
gen::outputs emitted(const generated& g) {
  EXPECT_TRUE(g.errs.empty()) << joined(g.errs);
  return gen::emit(g.cat, g.lookups);
}

TEST(Output, ProtectedReadsWaitOnTheirRecordAndOthersDoNot) {
  const std::string ops = emitted(generate("UIDB_L3_ING__COMM slot=0x140 type=uidb_rec live=g\n"
                                           "L3_NRLDI_ING__COMM slot=0x110 type=nrldi_rec live=g\n"
                                           "PORT_CONFIG_ING__SAT slot=0x020 type=port_rec live=g\n"))
                              .ops_header;
  EXPECT_TRUE(contains(ops, "lookup_coherency_reread(env, ID_UIDB_L3_ING__COMM, 0x140)"));
  // The record of a modulus read stands behind its 16-byte remainder block.
  EXPECT_TRUE(contains(ops, "if (lookup_record_word0(env, 0x110 + 16) != 0) return;"));
  EXPECT_TRUE(contains(ops, "inline void lookup_wait_ID_PORT_CONFIG_ING__SAT(env_t) {}"));
  EXPECT_TRUE(contains(ops, "qrsc(rtt_index(0, 3), lookup_paged_word(0, record_index), 0x140, 0x140);"));
  EXPECT_TRUE(contains(ops, "qrsc(rtt_index(0, 2), 0x81540C00u + index * 16u, 0x020, 0x020);"));
}

TEST(Output, TableAddressesForTheControlSide) {
  const std::string tables = emitted(generate("")).tables_header;
  EXPECT_TRUE(contains(tables, "TPD_IDX_L3_NRLDI_ING = 7;"));
  EXPECT_TRUE(contains(tables, "TABLE_BASE_PORT_CONFIG_ING = 0x81540C00;"));
  EXPECT_TRUE(contains(tables, "TABLE_ADDR_GLOBAL_PKT_TRACE = 0x40342040;"));  // block 1 of stride 32
}

TEST(Output, HashSearchRowGivesItsLookupsAndItsTable) {
  const generated g = generate("MPLS_RPF__ING bucket=0x200 key=0x210 res=0x220 type=rpf_result live=g\n",
                               gen_test::HASH_IDENTIFIERS, gen_test::HASH_TABLES);
  const gen::outputs out = emitted(g);
  const std::vector<std::string> names = gen::enum_names(g.cat);
  EXPECT_EQ(std::vector<std::string>(names.end() - 5, names.end()),
            (std::vector<std::string>{"MPLS_RPF_BUCKET_0__ING", "MPLS_RPF_BUCKET_1__ING", "MPLS_RPF_BUCKET__ING",
                                      "MPLS_RPF_KEY__ING", "MPLS_RPF_RES__ING"}));
  EXPECT_TRUE(contains(out.ops_header,
                       "inline constexpr hash_search_desc_st HASH_SEARCH_MPLS_RPF__ING = {"
                       "HASH_TABLE_MPLS_RPF, ID_MPLS_RPF_BUCKET_0__ING, ID_MPLS_RPF_BUCKET_1__ING, "
                       "ID_MPLS_RPF_BUCKET__ING, ID_MPLS_RPF_KEY__ING, ID_MPLS_RPF_RES__ING, "
                       "0x200, 0x210, 16, 0x220};"));
  EXPECT_TRUE(contains(out.tables_header,
                       "HASH_TABLE_MPLS_RPF = {\"MPLS_RPF\", 31, 32, HASH_SPACE_A_BASE, HASH_SPACE_A_BUCKETS, "
                       "8, 16, false, false};"));
}

}  // namespace
