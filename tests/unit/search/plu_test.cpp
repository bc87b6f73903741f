// The PLU: searches of routes and (S, G) entries through resource 200 and
// the generated lookups, the control side's writers with their refusals, and
// changes while a thread searches.
#include "npu/zephra/plu.h"

#include <atomic>
#include <thread>
#include <tuple>

#include "dplane/infra/lookup.h"
#include "search_test_util.h"

namespace {

using namespace st;
using ctrl::error;

const model::ip_bytes LINK_LOCAL = ipv6({0xfe80, 0, 0, 0, 0, 0, 0, 1});
const model::ip_bytes IN_48 = ipv6({0x2001, 0xdb8, 1, 0, 0, 0, 0, 9});

// Result type, the leaf's tag and the prefix length of an answer.
using answer = std::tuple<std::uint32_t, int, std::uint32_t>;
answer answer_of(const plu_result_st& r) {
  return {plu_result_st::result_type::get(r), *plu_result_st::leaf_data::data(r), plu_result_st::prefix_len::get(r)};
}
answer hit(int leaf, std::uint32_t length) { return {PLU_RESULT_MATCH, leaf, length}; }
const answer MISS{PLU_RESULT_NO_MATCH, 0, 0};

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
  template <class Request>
  answer ask(Request request) {
    answer a;
    h.on_thread([&](env_t env) {
      request(env);
      a = answer_of(record_at<plu_result_st>(env, RESP));
    });
    return a;
  }
  answer v4(std::uint16_t vrf, std::uint32_t addr) {
    return ask([&](env_t env) { plu_ipv4_vpn_unicast_addr(env, addr, vrf, REQ, RESP); });
  }
  answer v6(std::uint16_t vrf, const model::ip_bytes& addr) {
    return ask([&](env_t env) { plu_ipv6_vpn_unicast_addr(env, addr.data(), vrf, REQ, RESP); });
  }
  answer link_local(std::uint32_t ifh) {
    return ask([&](env_t env) { plu_ipv6_ll_unicast_addr(env, ifh, LINK_LOCAL.data(), REQ, RESP); });
  }
  testkit::npu_harness h;
};

TEST_F(PluRoutes, EachFormTakesTheLongestPrefixOfItsVrfOrInterface) {
  EXPECT_EQ(v4(0, 0x0A010203), hit(3, 24));
  EXPECT_EQ(v4(0, 0x0AFF0000), hit(1, 8));
  EXPECT_EQ(v4(0, 0x0B000001), MISS);
  EXPECT_EQ(v4(7, 0x0A010203), hit(4, 32));
  EXPECT_EQ(v4(9, 0x0A010203), MISS);
  EXPECT_EQ(v6(0, IN_48), hit(6, 48));
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb8, 2})), hit(5, 32));
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb9})), MISS);
  EXPECT_EQ(link_local(0x01020304), hit(7, 128));
  EXPECT_EQ(link_local(0x01020305), MISS);
  h.on_thread([&](env_t env) {
    lookup_request_ID_UC_DST_VPN_ING__IPV4(env, 0x0A010203, 7);
    lookup_wait_ID_UC_DST_VPN_ING__IPV4(env);
    EXPECT_EQ(answer_of(*lookup_result_ID_UC_DST_VPN_ING__IPV4(env)), hit(4, 32));
  });
}

TEST_F(PluRoutes, ReplaceChangesTheLeafAndDeleteFallsBackToTheCoveringPrefix) {
  ASSERT_EQ(routes().replace_prefix(ctrl::ipv4_prefix({0}, 0x0A010200, 24), leaf_of(9)), error::none);
  EXPECT_EQ(v4(0, 0x0A010203), hit(9, 24));
  ASSERT_EQ(routes().delete_prefix(ctrl::ipv4_prefix({0}, 0x0A010200, 24)), error::none);
  EXPECT_EQ(v4(0, 0x0A010203), hit(2, 16));
  ASSERT_EQ(routes().delete_prefix(ctrl::ipv6_prefix({0}, ipv6({0x2001, 0xdb8}), 32)), error::none);
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb8, 1})), hit(6, 48));
  EXPECT_EQ(v6(0, ipv6({0x2001, 0xdb8, 2})), MISS);
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
  }
  for (std::uint32_t vrf : {5u, 0x10007u}) {
    EXPECT_EQ(routes().add_prefix(ctrl::ipv4_prefix({vrf}, 0x0A010203, 32), l), error::unknown_vrf);
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
  EXPECT_EQ(v4(0, 0x0A010203), hit(3, 24));
  EXPECT_EQ(v4(7, 0x0A010203), hit(4, 32));
}

TEST_F(PluRoutes, GroupsMatchSourceGroupAndTheirTableExactly) {
  using mc = plu_resp_mc_leaf_found_response_;
  const auto found = [](env_t env) { return mc::result_type::get(record_at<mc>(env, RESP)) == PLU_RESULT_MATCH; };
  const auto leaf = leaf_of<ctrl::group_leaf>;
  ASSERT_EQ(routes().add_group(ipv4_group(VRF, 0, 0x0A000001, 0xE0010101), leaf(0x11)), error::none);
  ASSERT_EQ(routes().add_group(ipv4_group(VRF, 0, 0, 0xE0010101), leaf(0x22)), error::none);
  const ctrl::group_key k{ctrl::group_family::ipv6_bridge, 0x123456, ipv6({0x2001, 0xdb8, 0, 0, 0, 0, 0, 1}),
                          ipv6({0xff0e, 0, 0, 0, 0, 0, 0, 1})};
  ASSERT_EQ(routes().add_group(k, leaf(0x33)), error::none);
  h.on_thread([&](env_t env) {
    plu_ipv4_sg_vrf_multicast(env, 0, 0x0A000001, 0xE0010101, REQ, RESP);
    EXPECT_TRUE(found(env) && *dmem_at(env, RESP) == 0x11);
    plu_ipv4_sg_vrf_multicast(env, 0, 0, 0xE0010101, REQ, RESP);
    EXPECT_TRUE(found(env) && *dmem_at(env, RESP) == 0x22);
    plu_ipv4_sg_vrf_multicast(env, 0, 0x0A000002, 0xE0010101, REQ, RESP);
    EXPECT_FALSE(found(env));
    plu_l2m6_sg(env, 0x123456, k.src.data(), k.grp.data(), REQ, RESP);
    EXPECT_TRUE(found(env) && *dmem_at(env, RESP) == 0x33);
    plu_l2m6_sg(env, 0x123457, k.src.data(), k.grp.data(), REQ, RESP);
    EXPECT_FALSE(found(env));
  });
}

// The control side changes routes while an NPU thread searches: every
// search sees each change whole or not at all. The leaf of a /8, /24 or /32
// carries its length.
TEST(PluConcurrency, SearchesSeeEachChangeWholeOrNotAtAll) {
  testkit::npu_harness h;
  ctrl::plu_routes& routes = h.tables().routes();
  ASSERT_EQ(routes.add_prefix(ctrl::ipv4_prefix({0}, 0x0A000000, 8), leaf_of(8)), error::none);
  std::atomic<bool> done{false};
  std::thread control([&] {
    for (std::uint32_t i = 0; i < 200; ++i) {
      const std::uint32_t net = 0x0A000000 | ((i % 64) << 16);
      routes.add_prefix(ctrl::ipv4_prefix({0}, net, 24), leaf_of(24));
      routes.add_prefix(ctrl::ipv4_prefix({0}, net | 5, 32), leaf_of(32));
      routes.replace_prefix(ctrl::ipv4_prefix({0}, net | 5, 32), leaf_of(32));
      routes.delete_prefix(ctrl::ipv4_prefix({0}, net, 24));
      routes.delete_prefix(ctrl::ipv4_prefix({0}, net | 5, 32));
    }
    done = true;
  });
  h.on_thread([&](env_t env) {
    for (std::uint32_t k = 0; !done; ++k) {
      plu_ipv4_global_unicast_addr(env, 0x0A000000 | ((k % 64) << 16) | (k % 2 ? 5 : 9), REQ, RESP);
      const auto r = record_at<plu_result_st>(env, RESP);
      ASSERT_EQ(plu_result_st::result_type::get(r), PLU_RESULT_MATCH);
      const std::uint8_t* leaf = plu_result_st::leaf_data::data(r);
      for (std::uint32_t b = 0; b < PLU_LEAF_DATA_BYTES; ++b) ASSERT_EQ(leaf[b], plu_result_st::prefix_len::get(r));
    }
  });
  control.join();
  EXPECT_EQ(h.npu().plu().routes(), 1u);
}

}  // namespace
