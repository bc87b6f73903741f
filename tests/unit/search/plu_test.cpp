// The PLU: keys as the front end lays them out, searches of routes and
// (S, G) entries through resource 200 and the templates, and the control
// side's writers with their refusals.
#include "npu/zephra/plu.h"

#include <functional>

#include "arch_tie.h"
#include "dplane/infra/lookup.h"
#include "search_test_util.h"

namespace {

using namespace st;
using bytes = std::vector<std::uint8_t>;
using ctrl::error;

const model::ip_bytes LINK_LOCAL = ipv6({0xfe80, 0, 0, 0, 0, 0, 0, 1});
const model::ip_bytes IN_48 = ipv6({0x2001, 0xdb8, 1, 0, 0, 0, 0, 9});

TEST(PluKeys, KeysHoldTheCodeTheVrfOrInterfaceAndTheAddress) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    plu_ipv4_global_unicast_addr(env, 0x0A010203, REQ, RESP);
    EXPECT_EQ(bytes_at(env, REQ, 7), bytes({0x01, 0x00, 0x00, 0x0A, 0x01, 0x02, 0x03}));
    // A link-local key leaves out the first address byte.
    plu_ipv6_ll_unicast_addr(env, 0x01020304, LINK_LOCAL.data(), REQ, RESP);
    bytes want = {0x0F, 0x01, 0x02, 0x03, 0x04};
    want.insert(want.end(), LINK_LOCAL.begin() + 1, LINK_LOCAL.end());
    EXPECT_EQ(bytes_at(env, REQ, 20), want);
  });
}

struct answer {
  std::uint32_t type;
  std::uint8_t leaf;  // tag of the leaf
  std::uint32_t length;
};
constexpr answer MISS{PLU_RESULT_NO_MATCH, 0, 0};
plu_result_st at_resp(env_t env) { return record_at<plu_result_st>(env, RESP); }

class PluRoutes : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(routes().add_vrf({7}), error::none);
    const std::pair<ctrl::route_prefix, std::uint8_t> added[] = {
        {ctrl::ipv4_prefix({0}, 0x0A000000, 8), 1},
        {ctrl::ipv4_prefix({0}, 0x0A010000, 16), 2},
        {ctrl::ipv4_prefix({0}, 0x0A010200, 24), 3},
        {ctrl::ipv4_prefix({7}, 0x0A010203, 32), 4},
        {ctrl::ipv6_prefix({0}, ipv6({0x2001, 0xdb8}), 32), 5},
        {ctrl::ipv6_prefix({0}, ipv6({0x2001, 0xdb8, 1}), 48), 6},
        {ctrl::ipv6_link_local_prefix(0x01020304, LINK_LOCAL, 128), 7}};
    for (const auto& [prefix, tag] : added) ASSERT_EQ(routes().add_prefix(prefix, leaf_of(tag)), error::none);
  }
  ctrl::plu_routes& routes() { return h.tables().routes(); }
  answer ask(const std::function<void(env_t)>& request) {
    answer a{};
    h.on_thread([&](env_t env) {
      request(env);
      const plu_result_st r = at_resp(env);
      a = {plu_result_st::result_type::get(r), *plu_result_st::leaf_data::data(r), plu_result_st::prefix_len::get(r)};
    });
    return a;
  }
  answer v4(std::uint16_t vrf, std::uint32_t addr) {
    return ask([&](env_t env) { plu_ipv4_vpn_unicast_addr(env, addr, vrf, REQ, RESP); });
  }
  answer v6(std::uint16_t vrf, const model::ip_bytes& addr) {
    return ask([&](env_t env) { plu_ipv6_vpn_unicast_addr(env, addr.data(), vrf, REQ, RESP); });
  }
  testkit::npu_harness h;
};

TEST_F(PluRoutes, Ipv4TakesTheLongestPrefixOfItsVrf) {
  const struct {
    std::uint16_t vrf;
    std::uint32_t addr;
    answer want;
  } rows[] = {
      {0, 0x0A010203, {PLU_RESULT_MATCH, 3, 24}},
      {0, 0x0A01FF01, {PLU_RESULT_MATCH, 2, 16}},
      {0, 0x0AFF0000, {PLU_RESULT_MATCH, 1, 8}},
      {0, 0x0B000001, MISS},
      {7, 0x0A010203, {PLU_RESULT_MATCH, 4, 32}},
      {7, 0x0A010204, MISS},
      {9, 0x0A010203, MISS},
  };
  for (const auto& r : rows) {
    const answer a = v4(r.vrf, r.addr);
    EXPECT_EQ(std::tie(a.type, a.leaf, a.length), std::tie(r.want.type, r.want.leaf, r.want.length))
        << std::hex << r.addr << " in VRF " << r.vrf;
  }
}

TEST_F(PluRoutes, Ipv6LinkLocalTemplateAndGeneratedFormsAnswerAlike) {
  const answer deep = v6(0, IN_48);
  EXPECT_EQ(deep.leaf, 6);
  EXPECT_EQ(deep.length, 48u);
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb8, 2})).leaf, 5);
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb9})).type, PLU_RESULT_NO_MATCH);
  EXPECT_EQ(v6(7, ipv6({0x2001, 0xdb8})).type, PLU_RESULT_NO_MATCH);
  h.on_thread([&](env_t env) {
    plu_ipv6_ll_unicast_addr(env, 0x01020304, LINK_LOCAL.data(), REQ, RESP);
    EXPECT_EQ(plu_result_st::prefix_len::get(at_resp(env)), 128u);
    plu_ipv6_ll_unicast_addr(env, 0x01020305, LINK_LOCAL.data(), REQ, RESP);
    EXPECT_EQ(plu_result_st::result_type::get(at_resp(env)), PLU_RESULT_NO_MATCH);
    plu_lookup_request_ipv4(env, rtt_index(1, 11), RESP, 0x0A010203, 7);
    EXPECT_EQ(*plu_result_st::leaf_data::data(at_resp(env)), 4);
    plu_lookup_request_ipv6(env, rtt_index(1, 12), RESP, IN_48.data(), 0);
    EXPECT_EQ(plu_result_st::prefix_len::get(at_resp(env)), 48u);

    lookup_request_ID_UC_DST_VPN_ING__IPV4(env, 0x0A010203, 7);
    lookup_wait_ID_UC_DST_VPN_ING__IPV4(env);
    EXPECT_EQ(plu_result_st::prefix_len::get(*lookup_result_ID_UC_DST_VPN_ING__IPV4(env)), 32u);
    lookup_request_ID_UC_DST_VPN_ING__IPV4(env, 0x0B000001, 7);
    lookup_wait_ID_UC_DST_VPN_ING__IPV4(env);
    EXPECT_EQ(plu_result_st::result_type::get(*lookup_result_ID_UC_DST_VPN_ING__IPV4(env)), PLU_RESULT_NO_MATCH);
    lookup_request_ID_UC_DST_VPN_ING__IPV6(env, IN_48.data(), 0);
    lookup_wait_ID_UC_DST_VPN_ING__IPV6(env);
    EXPECT_EQ(*plu_result_st::leaf_data::data(*lookup_result_ID_UC_DST_VPN_ING__IPV6(env)), 6);
  });
}

TEST_F(PluRoutes, ReplaceChangesTheLeafAndDeleteFallsBackToTheCoveringPrefix) {
  ASSERT_EQ(routes().replace_prefix(ctrl::ipv4_prefix({0}, 0x0A010200, 24), leaf_of(9)), error::none);
  EXPECT_EQ(v4(0, 0x0A010203).leaf, 9);
  ASSERT_EQ(routes().delete_prefix(ctrl::ipv4_prefix({0}, 0x0A010200, 24)), error::none);
  EXPECT_EQ(v4(0, 0x0A010203).leaf, 2);
  ASSERT_EQ(routes().delete_prefix(ctrl::ipv6_prefix({0}, ipv6({0x2001, 0xdb8}), 32)), error::none);
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb8, 1})).leaf, 6);
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb8, 2})).type, PLU_RESULT_NO_MATCH);
}

ctrl::group_key ipv4_group(ctrl::group_family family, std::uint32_t table, std::uint32_t s, std::uint32_t g) {
  ctrl::group_key k{family, table, {}, {}};
  for (int i = 0; i < 4; ++i) {
    k.src[i] = static_cast<std::uint8_t>(s >> (24 - 8 * i));
    k.grp[i] = static_cast<std::uint8_t>(g >> (24 - 8 * i));
  }
  return k;
}
const auto VRF = ctrl::group_family::ipv4_vrf;
const auto BRIDGE = ctrl::group_family::ipv4_bridge;

TEST_F(PluRoutes, RefusalsLeaveTheTablesAsTheyWere) {
  const std::size_t before = h.npu().plu().routes();
  const ctrl::route_leaf l = leaf_of(0xEE);
  const ctrl::group_leaf g{};
  for (const auto& p : {ctrl::ipv4_prefix({0}, 0x0A010203, 33), ctrl::ipv6_prefix({0}, ipv6({0x2001}), 129)}) {
    EXPECT_EQ(routes().add_prefix(p, l), error::bad_prefix_length);
    EXPECT_EQ(routes().replace_prefix(p, l), error::bad_prefix_length);
  }
  for (std::uint32_t vrf : {5u, 0x10007u}) {
    EXPECT_EQ(routes().add_prefix(ctrl::ipv4_prefix({vrf}, 0x0A010203, 32), l), error::unknown_vrf);
    EXPECT_EQ(routes().replace_prefix(ctrl::ipv4_prefix({vrf}, 0x0A010203, 32), l), error::unknown_vrf);
  }
  EXPECT_EQ(routes().add_prefix(ctrl::ipv4_prefix({7}, 0x0A010203, 32), l), error::exists);
  EXPECT_EQ(routes().replace_prefix(ctrl::ipv4_prefix({0}, 0x0C000000, 8), l), error::not_found);
  EXPECT_EQ(routes().delete_prefix(ctrl::ipv4_prefix({0}, 0x0A010000, 17)), error::not_found);
  EXPECT_EQ(routes().delete_prefix(ctrl::ipv6_link_local_prefix(9, ipv6({0xfe80}), 64)), error::not_found);
  EXPECT_EQ(routes().add_vrf({7}), error::exists);
  EXPECT_EQ(routes().add_vrf({0x10000}), error::out_of_range);
  EXPECT_EQ(routes().add_group(ipv4_group(VRF, 3, 1, 2), g), error::unknown_vrf);
  EXPECT_EQ(routes().add_group(ipv4_group(BRIDGE, 0x1000000, 1, 2), g), error::out_of_range);
  EXPECT_EQ(routes().replace_group(ipv4_group(BRIDGE, 1, 1, 2), g), error::not_found);
  EXPECT_EQ(h.npu().plu().routes(), before);
  EXPECT_EQ(v4(0, 0x0A010203).leaf, 3);
  EXPECT_EQ(v4(7, 0x0A010203).leaf, 4);
}

TEST_F(PluRoutes, GroupsMatchSourceGroupAndTheirTableExactly) {
  using mc = plu_resp_mc_leaf_found_response_;
  const auto type = [](env_t env) { return mc::result_type::get(record_at<mc>(env, RESP)); };
  const auto leaf = leaf_of<ctrl::group_leaf>;
  ASSERT_EQ(routes().add_group(ipv4_group(VRF, 0, 0x0A000001, 0xE0010101), leaf(0x11)), error::none);
  ASSERT_EQ(routes().add_group(ipv4_group(VRF, 0, 0, 0xE0010101), leaf(0x22)), error::none);
  const ctrl::group_key k{ctrl::group_family::ipv6_bridge, 0x123456, ipv6({0x2001, 0xdb8, 0, 0, 0, 0, 0, 1}),
                          ipv6({0xff0e, 0, 0, 0, 0, 0, 0, 1})};
  ASSERT_EQ(routes().add_group(k, leaf(0x33)), error::none);
  h.on_thread([&](env_t env) {
    plu_ipv4_sg_vrf_multicast(env, 0, 0x0A000001, 0xE0010101, REQ, RESP);
    EXPECT_EQ(type(env), PLU_RESULT_MATCH);
    EXPECT_EQ(*dmem_at(env, RESP), 0x11);
    plu_ipv4_sg_vrf_multicast(env, 0, 0, 0xE0010101, REQ, RESP);
    EXPECT_EQ(*dmem_at(env, RESP), 0x22);
    plu_ipv4_sg_vrf_multicast(env, 0, 0x0A000002, 0xE0010101, REQ, RESP);
    EXPECT_EQ(type(env), PLU_RESULT_NO_MATCH);
    plu_l2m6_sg(env, 0x123456, k.src.data(), k.grp.data(), REQ, RESP);
    EXPECT_EQ(*dmem_at(env, RESP), 0x33);
    plu_l2m6_sg(env, 0x123457, k.src.data(), k.grp.data(), REQ, RESP);
    EXPECT_EQ(type(env), PLU_RESULT_NO_MATCH);
  });
  ASSERT_EQ(routes().delete_group(ipv4_group(VRF, 0, 0, 0xE0010101)), error::none);
  h.on_thread([&](env_t env) {
    plu_ipv4_sg_vrf_multicast(env, 0, 0, 0xE0010101, REQ, RESP);
    EXPECT_EQ(type(env), PLU_RESULT_NO_MATCH);
  });
}

#ifndef NDEBUG
TEST(PluDeathTest, MacSearchesAreNotServedByTheModel) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::uint8_t mac[6] = {0, 1, 2, 3, 4, 5};
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        h.on_thread([&](env_t env) { plu_mac_fwd_lookup(env, 1, mac, REQ, RESP); });
      },
      "PLU key code 12, which nothing serves");
}
#endif

}  // namespace
