// What the generator writes: the identifiers in their order, the operations
// each engine and protection call for, and the table addresses.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "emit.h"
#include "gen_fixture.h"

namespace {

using gen_test::generate;
using gen_test::generated;
using gen_test::joined;

using gen_test::contains;

TEST(Output, EnumHoldsEveryIdentifierOnceInGeneratorOrder) {
  const generated g = generate("UIDB_L3_ING__COMM slot=0x140 type=rec live=g\nTX_ADJ slot=0x1F0 type=rec live=g\n");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::vector<std::string> names = gen::enum_names(g.cat);
  const std::vector<std::string> head(names.begin(), names.begin() + 5);
  EXPECT_EQ(head, (std::vector<std::string>{"UIDB_L3_ING", "TX_ADJ", "GLOBAL_PKT_TRACE", "EGR_PORT_PART1", "REPNODE"}));
  // Hash families with each suffix, then locks, then the tagged rows.
  const std::vector<std::string> tail(names.end() - 4, names.end());
  EXPECT_EQ(tail, (std::vector<std::string>{"LPTS_HASH_MOD", "LPTS_HASH_KEY", "MAC_LOCK__MN", "UIDB_L3_ING__COMM"}));
  EXPECT_EQ(std::count(names.begin(), names.end(), "TX_ADJ"), 1);
  EXPECT_TRUE(contains(gen::emit(g.cat, g.lookups).ids_header, "  ID_UIDB_L3_ING = 0,\n"));
}

TEST(Output, ProtectedReadsWaitOnTheirRecordAndOthersDoNot) {
  const generated g = generate(
      "UIDB_L3_ING__COMM slot=0x140 type=uidb_rec live=g\n"
      "L3_NRLDI_ING__COMM slot=0x110 type=nrldi_rec live=g\n"
      "PORT_CONFIG_ING__SAT slot=0x020 type=port_rec live=g\n");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_TRUE(contains(ops, "if (lookup_record_word0(env, 0x140) != 0) return;"));
  EXPECT_TRUE(contains(ops, "lookup_coherency_reread(env, ID_UIDB_L3_ING__COMM, 0x140)"));
  // The record of a modulus read stands behind its 16-byte remainder block.
  EXPECT_TRUE(contains(ops, "if (lookup_record_word0(env, 0x110 + 16) != 0) return;"));
  EXPECT_TRUE(contains(ops, "lookup_coherency_reread(env, ID_L3_NRLDI_ING__COMM, 0x110 + 16)"));
  EXPECT_TRUE(contains(ops, "inline void lookup_wait_ID_PORT_CONFIG_ING__SAT(env_t) {}"));
  EXPECT_FALSE(contains(ops, "lookup_wait_cohfail_ID_PORT_CONFIG_ING__SAT"));
  EXPECT_TRUE(contains(ops, "qrsc(rtt_index(0, 3), lookup_paged_word(0, record_index), 0x140, 0x140);"));
  EXPECT_TRUE(
      contains(ops, "lookup_mod_request(env, rtt_index(1, 9), lookup_mod_word(7, record_index), num, denom, 0x110);"));
  EXPECT_TRUE(contains(ops, "qrsc(rtt_index(0, 2), 0x81540C00u + index * 16u, 0x020, 0x020);"));
}

TEST(Output, ViewsShareTheirLookupsWaitAndSlot) {
  const generated g = generate(
      "EGR_PORT_PART1__IPV4 slot=0x0A0 type=part1 live=g\n"
      "EGR_PORT_PART2__IPV4 view=EGR_PORT_PART1__IPV4 slot=0x0B0 type=part2\n");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_TRUE(contains(ops,
                       "inline void lookup_wait_cohfail_ID_EGR_PORT_PART2__IPV4(env_t env) { "
                       "lookup_wait_cohfail_ID_EGR_PORT_PART1__IPV4(env); }"));
  EXPECT_TRUE(contains(ops, "lookup_dbg_check_result(env, ID_EGR_PORT_PART2__IPV4, ID_EGR_PORT_PART1__IPV4, 0x0B0"));
  EXPECT_FALSE(contains(ops, "lookup_request_ID_EGR_PORT_PART2__IPV4"));
}

TEST(Output, CountersCellsAndPlatformForms) {
  const generated g = generate(
      "STATS_INC_GLB_CNT__DEBUG cell=0x2D0\n"
      "STATS_ADD_INC_SPLIT__COMM cell=0x310 live=all\n"
      "DROP_KEEP_PKT calls=npu_drop_keep_packet\n");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const gen::outputs out = gen::emit(g.cat, g.lookups);
  EXPECT_TRUE(contains(out.ops_header, "stats_glb_cnt_request(env, 0x2D0, stat_index);"));
  EXPECT_TRUE(contains(out.ops_header,
                       "inline void lookup_alloc_ID_STATS_ADD_INC_SPLIT__COMM(env_t env, std::uint32_t count)"));
  EXPECT_TRUE(contains(out.ops_header, "lookup_alloc_ref_ID_STATS_ADD_INC_SPLIT__COMM"));
  EXPECT_TRUE(contains(out.ops_header, "void npu_drop_keep_packet(env_t env);"));
  EXPECT_TRUE(contains(out.ops_header,
                       "inline void lookup_request_ID_DROP_KEEP_PKT(env_t env) { npu_drop_keep_packet(env); }"));
  EXPECT_TRUE(contains(out.source, "{ID_STATS_ADD_INC_SPLIT__COMM, 0x310}"));
  EXPECT_TRUE(contains(out.ids_header, "LOOKUP_DBG_REQ_COUNT = 1;"));
}

TEST(Output, TableAddressesForTheControlSide) {
  const generated g = generate("");
  const std::string tables = gen::emit(g.cat, g.lookups).tables_header;
  EXPECT_TRUE(contains(tables, "TPD_IDX_L3_NRLDI_ING = 7;"));
  EXPECT_TRUE(contains(tables, "TABLE_BASE_PORT_CONFIG_ING = 0x81540C00;"));
  EXPECT_TRUE(contains(tables, "TABLE_STRIDE_PORT_CONFIG_ING = 16;"));
  EXPECT_TRUE(contains(tables, "TABLE_ADDR_GLOBAL_PKT_TRACE = 0x40342040;"));
  EXPECT_TRUE(contains(tables, "    {0, 32},\n    {3, 16},\n    {7, 32},\n"));
}

TEST(Output, Ipv6RouteSearchTakesTheIpv6TemplateAndItsKeyBytes) {
  const generated g = generate(
      "UC_DST_VPN_ING__IPV4 slot=0x020 type=plu_result_st live=a\n"
      "UC_DST_VPN_ING__IPV6 family=ipv6 slot=0x020 type=plu_result_st live=b",
      gen_test::ROUTE_IDENTIFIERS, gen_test::ROUTE_TABLES);
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_TRUE(contains(ops, "plu_lookup_request_ipv4(env, rtt_index(1, 11), 0x020, ipv4_addr, vrf);"));
  EXPECT_TRUE(contains(ops,
                       "lookup_request_ID_UC_DST_VPN_ING__IPV6(env_t env, const std::uint8_t* ipv6_addr, "
                       "std::uint16_t vrf)"));
  EXPECT_TRUE(contains(ops, "lookup_dbg_note_request(env, ID_UC_DST_VPN_ING__IPV6, 0x020, 20, 0x020, 32);"));
  EXPECT_TRUE(contains(ops, "plu_lookup_request_ipv6(env, rtt_index(1, 12), 0x020, ipv6_addr, vrf);"));
}

TEST(Output, TluModulusReadWritesTheLongCommandWithThePagedRecordAndTheSlotAsCell) {
  const generated g = generate("LAG_EGR slot=0x0E0 type=lag_mem_info_fields_st live=egr",
                               gen_test::tlu_mod_identifiers("16"), gen_test::TLU_MOD_TABLES);
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_TRUE(contains(ops,
                       "inline void lookup_request_ID_LAG_EGR(env_t env, std::uint32_t record_index, "
                       "std::uint32_t num, std::uint32_t denom) {"));
  EXPECT_TRUE(contains(ops, "lookup_dbg_note_request(env, ID_LAG_EGR, 0x0E0, 16, 0x0E0, 16);"));
  EXPECT_TRUE(contains(ops,
                       "tlu_mod_read_16B_paging(env, record_index, 4, {denom, num}, {0x0E0, 0x0E0, "
                       "TLU_CACHE_PERIODIC});"));
  EXPECT_TRUE(contains(ops, "lag_mem_info_fields_st* lookup_result_ID_LAG_EGR(env_t env)"));
}

std::string file_text(const std::string& name) {
  std::ifstream in(name.starts_with("/") ? name : std::string(LC_CATALOGUE_DIR) + "/" + name);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

TEST(Output, TheProgramsCatalogueHoldsTogether) {
  gen::catalogue cat;
  gen::errors errs;
  gen::parse_request_templates(file_text(LC_REQUEST_TEMPLATES), "request_templates.def", cat, errs);
  gen::parse_identifiers(file_text("identifiers.txt"), "identifiers.txt", cat, errs);
  gen::parse_tables(file_text("tables.txt"), "tables.txt", cat, errs);
  gen::parse_lookups(file_text("lookups.txt"), "lookups.txt", cat, errs);
  const std::vector<gen::lookup> lookups = gen::resolve(cat, errs);
  ASSERT_TRUE(errs.empty()) << joined(errs);
  EXPECT_EQ(cat.ids.tags.size(), 656u);
  EXPECT_EQ(cat.ids.hash_ids.size(), 48u * 9u);
  EXPECT_EQ(cat.ids.protected_tables.size(), 28u);
  const std::vector<std::string> names = gen::enum_names(cat);
  for (const char* lock : {"HASH_MANAGEMENT_LOCK", "MEM_WRITE__NPU_MSG_WRITE", "MAC_ENTRY_LOCK__VPLS_ING"}) {
    EXPECT_EQ(std::count(names.begin(), names.end(), lock), 1) << lock;
  }
}

}  // namespace
