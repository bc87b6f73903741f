// Rows of the PLU's route searches: the IPv6 search of a table named for
// both families, and what family=ipv6 cannot stand on.
#include <gtest/gtest.h>

#include "emit.h"
#include "gen_fixture.h"

namespace {

using gen_test::joined;

constexpr const char* ROUTE_ENGINES = R"(
[engine form=plu_ipv4 template=PLU_IPV4_SEARCH]
UC_DST_VPN_ING
[engine form=plu_ipv6 template=PLU_IPV6_SEARCH]
IPV6_UC_DST_VPN_EGR
[engine form=read template=TLU_READ_32B]
TX_ADJ
[tags]
IPV4 IPV6 COMM
)";

gen_test::generated route_rows(const std::string& rows) {
  gen_test::generated g;
  gen::parse_identifiers(ROUTE_ENGINES, "identifiers.txt", g.cat, g.errs);
  gen::parse_tables("[direct]\n0x40500000 32 TX_ADJ", "tables.txt", g.cat, g.errs);
  gen::parse_lookups(rows, "lookups.txt", g.cat, g.errs);
  g.lookups = gen::resolve(g.cat, g.errs);
  return g;
}

TEST(RouteRows, Ipv6FamilyTakesTheIpv6TemplateAndItsKeyBytes) {
  const auto g = route_rows(
      "UC_DST_VPN_ING__IPV4 slot=0x020 type=plu_result_st live=a\n"
      "UC_DST_VPN_ING__IPV6 family=ipv6 slot=0x020 type=plu_result_st live=b");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_NE(ops.find("plu_lookup_request_ipv4(env, rtt_index(1, 11), 0x020, ipv4_addr, vrf);"), std::string::npos);
  EXPECT_NE(ops.find("lookup_request_ID_UC_DST_VPN_ING__IPV6(env_t env, const std::uint8_t* ipv6_addr, "
                     "std::uint16_t vrf)"),
            std::string::npos);
  EXPECT_NE(ops.find("lookup_dbg_note_request(env, ID_UC_DST_VPN_ING__IPV6, 0x020, 20, 0x020, 32);"),
            std::string::npos);
  EXPECT_NE(ops.find("plu_lookup_request_ipv6(env, rtt_index(1, 12), 0x020, ipv6_addr, vrf);"), std::string::npos);
}

TEST(RouteRows, Ipv6FamilyBelongsToRouteSearchesAlone) {
  const auto g = route_rows("TX_ADJ__COMM family=ipv6 slot=0x020 type=rec live=a");
  ASSERT_EQ(g.errs.size(), 1u) << joined(g.errs);
  EXPECT_NE(g.errs[0].find("family=ipv6 belongs to the IPv4 route searches"), std::string::npos);
}

TEST(RouteRows, TheKeyOfALiveSearchKeepsOthersOut) {
  const auto g = route_rows(
      "UC_DST_VPN_ING__IPV6 family=ipv6 slot=0x020 type=plu_result_st live=a\n"
      "TX_ADJ__COMM slot=0x030 type=rec live=a");
  EXPECT_NE(joined(g.errs).find("slot 0x030..0x04F overlaps cell 0x020..0x033 of ID_UC_DST_VPN_ING__IPV6"),
            std::string::npos)
      << joined(g.errs);
}

}  // namespace
