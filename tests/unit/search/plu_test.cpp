// The PLU: keys as the front end lays them out, searches of routes and
// (S, G) entries through resource 200 and the templates, and the control
// side's writers with their refusals.
#include "npu/zephra/plu.h"

#include "arch_tie.h"
#include "dplane/infra/lookup.h"
#include "search_test_util.h"

namespace {

using namespace st;

using bytes = std::vector<std::uint8_t>;

TEST(PluKeys, Ipv4GlobalKeyHoldsCodeVrfAndTheAddressFromByteThree) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    plu_ipv4_global_unicast_addr(env, 0x0A010203, REQ, RESP);
    EXPECT_EQ(bytes_at(env, REQ, 7), bytes({0x01, 0x00, 0x00, 0x0A, 0x01, 0x02, 0x03}));
  });
}

TEST(PluKeys, LinkLocalKeyHoldsTheInterfaceAndLeavesOutTheFirstAddressByte) {
  testkit::npu_harness h;
  const auto addr = ipv6({0xfe80, 0, 0, 0, 0, 0, 0, 1});
  h.on_thread([&](env_t env) {
    plu_ipv6_ll_unicast_addr(env, 0x01020304, addr.data(), REQ, RESP);
    bytes want = {0x0F, 0x01, 0x02, 0x03, 0x04};
    want.insert(want.end(), addr.begin() + 1, addr.end());
    EXPECT_EQ(bytes_at(env, REQ, 20), want);
  });
}

struct answer {
  std::uint32_t type;
  std::uint8_t leaf;  // tag of the leaf
  std::uint32_t length;
};

answer answer_at(env_t env) {
  const auto r = record_at<plu_result_st>(env, RESP);
  return {plu_result_st::result_type::get(r), *plu_result_st::leaf_data::data(r), plu_result_st::prefix_len::get(r)};
}

class PluRoutes : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(tables().routes().add_vrf({7}), ctrl::error::none);
    add(ctrl::ipv4_prefix({0}, 0x0A000000, 8), 1);
    add(ctrl::ipv4_prefix({0}, 0x0A010000, 16), 2);
    add(ctrl::ipv4_prefix({0}, 0x0A010200, 24), 3);
    add(ctrl::ipv4_prefix({7}, 0x0A010203, 32), 4);
    add(ctrl::ipv6_prefix({0}, ipv6({0x2001, 0xdb8}), 32), 5);
    add(ctrl::ipv6_prefix({0}, ipv6({0x2001, 0xdb8, 1}), 48), 6);
    add(ctrl::ipv6_link_local_prefix(0x01020304, ipv6({0xfe80, 0, 0, 0, 0, 0, 0, 1}), 128), 7);
  }
  model::npu& n() { return h.npu(); }
  ctrl::npu_tables& tables() { return h.tables(); }
  void add(const ctrl::route_prefix& p, std::uint8_t tag) {
    ASSERT_EQ(tables().routes().add_prefix(p, leaf_of(tag)), ctrl::error::none);
  }
  answer search_v4(std::uint16_t vrf, std::uint32_t addr) {
    answer a{};
    h.on_thread([&](env_t env) {
      plu_ipv4_vpn_unicast_addr(env, addr, vrf, REQ, RESP);
      a = answer_at(env);
    });
    return a;
  }
  answer search_v6(std::uint16_t vrf, const model::ip_bytes& addr) {
    answer a{};
    h.on_thread([&](env_t env) {
      plu_ipv6_vpn_unicast_addr(env, addr.data(), vrf, REQ, RESP);
      a = answer_at(env);
    });
    return a;
  }
  testkit::npu_harness h;
};

struct v4_case {
  std::uint16_t vrf;
  std::uint32_t addr;
  answer want;
};

TEST_F(PluRoutes, Ipv4TakesTheLongestPrefixOfItsVrf) {
  const v4_case cases[] = {
      {0, 0x0A010203, {PLU_RESULT_MATCH, 3, 24}}, {0, 0x0A01FF01, {PLU_RESULT_MATCH, 2, 16}},
      {0, 0x0AFF0000, {PLU_RESULT_MATCH, 1, 8}},  {0, 0x0B000001, {PLU_RESULT_NO_MATCH, 0, 0}},
      {7, 0x0A010203, {PLU_RESULT_MATCH, 4, 32}}, {7, 0x0A010204, {PLU_RESULT_NO_MATCH, 0, 0}},
      {9, 0x0A010203, {PLU_RESULT_NO_MATCH, 0, 0}},
  };
  for (const v4_case& c : cases) {
    const answer a = search_v4(c.vrf, c.addr);
    EXPECT_EQ(a.type, c.want.type) << std::hex << c.addr << " in VRF " << c.vrf;
    EXPECT_EQ(a.leaf, c.want.leaf) << std::hex << c.addr << " in VRF " << c.vrf;
    EXPECT_EQ(a.length, c.want.length) << std::hex << c.addr << " in VRF " << c.vrf;
  }
}

TEST_F(PluRoutes, Ipv6TakesTheLongestPrefixAndMissesWithTypeThree) {
  const answer deep = search_v6(0, ipv6({0x2001, 0xdb8, 1, 0, 0, 0, 0, 9}));
  EXPECT_EQ(deep.leaf, 6);
  EXPECT_EQ(deep.length, 48u);
  EXPECT_EQ(search_v6(0, ipv6({0x2001, 0xdb8, 2})).leaf, 5);
  EXPECT_EQ(search_v6(0, ipv6({0x2001, 0xdb9})).type, PLU_RESULT_NO_MATCH);
  EXPECT_EQ(search_v6(7, ipv6({0x2001, 0xdb8})).type, PLU_RESULT_NO_MATCH);
}

TEST_F(PluRoutes, TemplateFormsAnswerAsTheDirectRequests) {
  h.on_thread([&](env_t env) {
    plu_lookup_request_ipv4(env, rtt_index(1, 11), RESP, 0x0A010203, 7);
    EXPECT_EQ(answer_at(env).leaf, 4);
    const auto addr = ipv6({0x2001, 0xdb8, 1, 0, 0, 0, 0, 9});
    plu_lookup_request_ipv6(env, rtt_index(1, 12), RESP, addr.data(), 0);
    EXPECT_EQ(answer_at(env).leaf, 6);
    EXPECT_EQ(answer_at(env).length, 48u);
  });
}

TEST_F(PluRoutes, GeneratedLookupsAnswerTheLeafOrNoRoute) {
  h.on_thread([&](env_t env) {
    lookup_request_ID_UC_DST_VPN_ING__IPV4(env, 0x0A010203, 7);
    lookup_wait_ID_UC_DST_VPN_ING__IPV4(env);
    const plu_result_st* hit = lookup_result_ID_UC_DST_VPN_ING__IPV4(env);
    EXPECT_EQ(plu_result_st::result_type::get(*hit), PLU_RESULT_MATCH);
    EXPECT_EQ(plu_result_st::prefix_len::get(*hit), 32u);

    lookup_request_ID_UC_DST_VPN_ING__IPV4(env, 0x0B000001, 7);
    EXPECT_EQ(plu_result_st::result_type::get(*lookup_result_ID_UC_DST_VPN_ING__IPV4(env)), PLU_RESULT_NO_MATCH);

    const auto addr = ipv6({0x2001, 0xdb8, 1, 0, 0, 0, 0, 9});
    lookup_request_ID_UC_DST_VPN_ING__IPV6(env, addr.data(), 0);
    EXPECT_EQ(*plu_result_st::leaf_data::data(*lookup_result_ID_UC_DST_VPN_ING__IPV6(env)), 6);
  });
}

TEST_F(PluRoutes, LinkLocalRoutesBelongToTheirInterface) {
  const auto addr = ipv6({0xfe80, 0, 0, 0, 0, 0, 0, 1});
  h.on_thread([&](env_t env) {
    plu_ipv6_ll_unicast_addr(env, 0x01020304, addr.data(), REQ, RESP);
    EXPECT_EQ(answer_at(env).leaf, 7);
    EXPECT_EQ(answer_at(env).length, 128u);
    plu_ipv6_ll_unicast_addr(env, 0x01020305, addr.data(), REQ, RESP);
    EXPECT_EQ(answer_at(env).type, PLU_RESULT_NO_MATCH);
  });
}

TEST_F(PluRoutes, ReplaceChangesTheLeafAndDeleteFallsBackToTheCoveringPrefix) {
  ASSERT_EQ(tables().routes().replace_prefix(ctrl::ipv4_prefix({0}, 0x0A010200, 24), leaf_of(9)), ctrl::error::none);
  EXPECT_EQ(search_v4(0, 0x0A010203).leaf, 9);
  ASSERT_EQ(tables().routes().delete_prefix(ctrl::ipv4_prefix({0}, 0x0A010200, 24)), ctrl::error::none);
  EXPECT_EQ(search_v4(0, 0x0A010203).leaf, 2);
  ASSERT_EQ(tables().routes().delete_prefix(ctrl::ipv6_prefix({0}, ipv6({0x2001, 0xdb8}), 32)), ctrl::error::none);
  EXPECT_EQ(search_v6(0, ipv6({0x2001, 0xdb8, 1})).leaf, 6);
  EXPECT_EQ(search_v6(0, ipv6({0x2001, 0xdb8, 2})).type, PLU_RESULT_NO_MATCH);
}

struct refusal {
  const char* name;
  ctrl::route_prefix prefix;
  ctrl::error want;
};

class PluRouteRefusals : public PluRoutes, public testing::WithParamInterface<refusal> {};

TEST_P(PluRouteRefusals, LeaveTheTablesAsTheyWere) {
  const refusal& r = GetParam();
  const std::size_t routes = n().plu().routes();
  EXPECT_EQ(tables().routes().add_prefix(r.prefix, leaf_of(0xEE)), r.want);
  if (r.want != ctrl::error::exists) {
    EXPECT_EQ(tables().routes().replace_prefix(r.prefix, leaf_of(0xEE)), r.want);
  }
  EXPECT_EQ(n().plu().routes(), routes);
  EXPECT_EQ(search_v4(0, 0x0A010203).leaf, 3);
  EXPECT_EQ(search_v4(7, 0x0A010203).leaf, 4);
}

INSTANTIATE_TEST_SUITE_P(
    Input, PluRouteRefusals,
    testing::Values(refusal{"Ipv4LongerThan32", ctrl::ipv4_prefix({0}, 0x0A010203, 33), ctrl::error::bad_prefix_length},
                    refusal{"Ipv6LongerThan128", ctrl::ipv6_prefix({0}, ipv6({0x2001}), 129),
                            ctrl::error::bad_prefix_length},
                    refusal{"VrfNotAdded", ctrl::ipv4_prefix({5}, 0x0A010203, 32), ctrl::error::unknown_vrf},
                    refusal{"VrfPastSixteenBits", ctrl::ipv4_prefix({0x10007}, 0x0A010203, 32), ctrl::error::unknown_vrf},
                    refusal{"PrefixThereAlready", ctrl::ipv4_prefix({7}, 0x0A010203, 32), ctrl::error::exists}),
    [](const testing::TestParamInfo<refusal>& p) { return p.param.name; });

TEST_F(PluRoutes, ChangesOfAbsentRoutesAreRefused) {
  EXPECT_EQ(tables().routes().replace_prefix(ctrl::ipv4_prefix({0}, 0x0C000000, 8), leaf_of(1)), ctrl::error::not_found);
  EXPECT_EQ(tables().routes().delete_prefix(ctrl::ipv4_prefix({0}, 0x0A010000, 17)), ctrl::error::not_found);
  EXPECT_EQ(tables().routes().delete_prefix(ctrl::ipv6_link_local_prefix(9, ipv6({0xfe80}), 64)), ctrl::error::not_found);
  EXPECT_EQ(tables().routes().add_vrf({7}), ctrl::error::exists);
  EXPECT_EQ(tables().routes().add_vrf({0x10000}), ctrl::error::out_of_range);
}

class PluGroups : public testing::Test {
 protected:
  model::npu& n() { return h.npu(); }
  ctrl::npu_tables& tables() { return h.tables(); }
  std::uint8_t group_search(std::uint16_t vrf, std::uint32_t s, std::uint32_t g, std::uint32_t* type) {
    std::uint8_t first = 0;
    h.on_thread([&](env_t env) {
      plu_ipv4_sg_vrf_multicast(env, vrf, s, g, REQ, RESP);
      const auto r = record_at<plu_resp_mc_leaf_found_response_>(env, RESP);
      *type = plu_resp_mc_leaf_found_response_::result_type::get(r);
      first = r.bytes[0];
    });
    return first;
  }
  static ctrl::group_key ipv4_group(ctrl::group_family family, std::uint32_t table, std::uint32_t s, std::uint32_t g) {
    ctrl::group_key k{family, table, {}, {}};
    for (int i = 0; i < 4; ++i) {
      k.src[i] = static_cast<std::uint8_t>(s >> (24 - 8 * i));
      k.grp[i] = static_cast<std::uint8_t>(g >> (24 - 8 * i));
    }
    return k;
  }
  static ctrl::group_leaf group_leaf_of(std::uint8_t tag) {
    ctrl::group_leaf l;
    l.fill(tag);
    return l;
  }
  testkit::npu_harness h;
};

TEST_F(PluGroups, SourceAndGroupMatchExactly) {
  ASSERT_EQ(tables().routes().add_group(ipv4_group(ctrl::group_family::ipv4_vrf, 0, 0x0A000001, 0xE0010101), group_leaf_of(0x11)),
            ctrl::error::none);
  ASSERT_EQ(tables().routes().add_group(ipv4_group(ctrl::group_family::ipv4_vrf, 0, 0, 0xE0010101), group_leaf_of(0x22)),
            ctrl::error::none);
  std::uint32_t type = 0;
  EXPECT_EQ(group_search(0, 0x0A000001, 0xE0010101, &type), 0x11);
  EXPECT_EQ(type, PLU_RESULT_MATCH);
  EXPECT_EQ(group_search(0, 0, 0xE0010101, &type), 0x22);
  group_search(0, 0x0A000002, 0xE0010101, &type);
  EXPECT_EQ(type, PLU_RESULT_NO_MATCH);
  ASSERT_EQ(tables().routes().delete_group(ipv4_group(ctrl::group_family::ipv4_vrf, 0, 0, 0xE0010101)), ctrl::error::none);
  group_search(0, 0, 0xE0010101, &type);
  EXPECT_EQ(type, PLU_RESULT_NO_MATCH);
}

TEST_F(PluGroups, BridgeDomainEntriesOfIpv6AreFoundByTheirDomain) {
  const ctrl::group_key k{ctrl::group_family::ipv6_bridge, 0x123456, ipv6({0x2001, 0xdb8, 0, 0, 0, 0, 0, 1}),
                          ipv6({0xff0e, 0, 0, 0, 0, 0, 0, 1})};
  ASSERT_EQ(tables().routes().add_group(k, group_leaf_of(0x33)), ctrl::error::none);
  h.on_thread([&](env_t env) {
    plu_l2m6_sg(env, 0x123456, k.src.data(), k.grp.data(), REQ, RESP);
    EXPECT_EQ(*dmem_at(env, RESP), 0x33);
    plu_l2m6_sg(env, 0x123457, k.src.data(), k.grp.data(), REQ, RESP);
    using mc = plu_resp_mc_leaf_found_response_;
    EXPECT_EQ(mc::result_type::get(record_at<mc>(env, RESP)), PLU_RESULT_NO_MATCH);
  });
}

TEST_F(PluGroups, RefusalsNameWhatIsWrong) {
  EXPECT_EQ(tables().routes().add_group(ipv4_group(ctrl::group_family::ipv4_vrf, 3, 1, 2), group_leaf_of(1)), ctrl::error::unknown_vrf);
  EXPECT_EQ(tables().routes().add_group(ipv4_group(ctrl::group_family::ipv4_bridge, 0x1000000, 1, 2), group_leaf_of(1)),
            ctrl::error::out_of_range);
  EXPECT_EQ(tables().routes().replace_group(ipv4_group(ctrl::group_family::ipv4_bridge, 1, 1, 2), group_leaf_of(1)), ctrl::error::not_found);
}

#ifndef NDEBUG
TEST(PluDeathTest, MacSearchesAreNotServedByTheModel) {
  use_threadsafe_death_tests();
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
