// The member choice at ingress: by hash modulo the member count, truncated
// for a bundle that asks for it, written with its VQI into the fabric header;
// from a receive adjacency, by the packet's raw hash, a hash the adjacency
// pins, or (MGSCP) the hash of one address of the packet.
#include "ctrl/page_descriptors.h"
#include "ctrl/protected_records.h"
#include "dplane/infra/hash_bits.h"
#include "dplane/infra/load_balance.h"
#include "dplane/infra/lookup.h"
#include "dplane/lag/lag_ing.h"
#include "dplane/lag/lag_l3_adj_ing.h"
#include "fab_hdr.h"
#include "lag_test_util.h"
#include "pktlib/packet_builder.h"

namespace {

using namespace lag_test;
using adj_st = rxadj_fields_st;

constexpr std::uint32_t ADJ = 21;
constexpr std::uint16_t BUNDLE = 300;
constexpr std::uint32_t MEMBERS = 61;
constexpr std::uint32_t RAW_HASH = 0x0A0000F3;  // bundle bits 0xAF3
constexpr std::uint32_t IPV4 = 0x0001;
constexpr std::uint32_t IPV6 = 0x0002;
constexpr std::uint32_t ADDR_HASH = LAG_THREAD_MGSCP_ADDR_HASH;

const std::vector<std::uint8_t> V4 =
    pkt::builder().ipv4(pkt::ip4("198.51.100.7"), pkt::ip4("203.0.113.200")).udp(4000, 53).build();
const std::vector<std::uint8_t> V6 =
    pkt::builder().ipv6(pkt::ip6("2001:db8::17"), pkt::ip6("2001:db8:5::1")).udp(4000, 53).build();

enum class hash_from { raw, pinned, v4_dst, v4_src, v6_dst, v6_src };

// On the NPU's thread: the address hashes use its hash engine.
std::uint32_t expected_hash(hash_from from, std::uint8_t pinned) {
  const auto* v4 = reinterpret_cast<const ipv4_hdr_st*>(V4.data());
  const auto* v6 = reinterpret_cast<const ipv6_hdr_st*>(V6.data());
  const std::uint32_t hashes[] = {hash_get_lag_bits(RAW_HASH), pinned,
                                  hash_lb_ipv4_dst_addr(v4),   hash_lb_ipv4_src_addr(v4),
                                  hash_lb_ipv6_dst_addr(v6),   hash_lb_ipv6_src_addr(v6)};
  return hashes[static_cast<int>(from)];
}

class Adjacency : public BundleTest {
 protected:
  void write_adjacency(const adj_st& adj) {
    ctrl::write_record(h.npu(), ctrl::paged_record_address(h.npu(), TPD_IDX_RX_ADJ_ING, ADJ).value(), adj.bytes);
  }
  static adj_st bundle_adjacency() {
    adj_st adj{};
    adj_st::rx_lag_adj::set(adj, 1);
    adj_st::rx::lag_id::set(adj, BUNDLE);
    return adj;
  }
  static void read_adjacency(env_t env) {
    lookup_request_ID_RX_ADJ_ING__COMM(env, ADJ);
    lookup_wait_ID_RX_ADJ_ING__COMM(env);
  }
};

struct adj_case {
  const char* name;
  bool mgscp_en;
  bool rx_lag_hash_en;
  std::uint8_t lag_byte;  // lag_hash, or rhb_hash_select with MGSCP
  std::uint32_t thread_bits;
  hash_from from;
  bool counted;  // global counter 0x11B
};

TEST_F(Adjacency, ChoosesTheMemberByTheAdjacencysHash) {
  const adj_case cases[] = {
      {"raw_hash", false, false, 0x2B, IPV4 | ADDR_HASH, hash_from::raw, false},
      {"pinned_by_the_adjacency", false, true, 0x2B, IPV4 | ADDR_HASH, hash_from::pinned, false},
      {"mgscp_without_the_thread_bit", true, false, LAG_RHB_DST_ADDR, IPV4, hash_from::raw, true},
      {"mgscp_ipv4_destination", true, false, LAG_RHB_DST_ADDR, IPV4 | ADDR_HASH, hash_from::v4_dst, false},
      {"mgscp_ipv4_source", true, true, LAG_RHB_SRC_ADDR, IPV4 | ADDR_HASH, hash_from::v4_src, false},
      {"mgscp_ipv6_destination", true, false, LAG_RHB_DST_ADDR, IPV6 | ADDR_HASH, hash_from::v6_dst, false},
      {"mgscp_ipv6_source", true, false, LAG_RHB_SRC_ADDR, IPV6 | ADDR_HASH, hash_from::v6_src, false},
      {"mgscp_other_select", true, false, 3, IPV4 | ADDR_HASH, hash_from::raw, false}};
  add(BUNDLE, bundle_of(MEMBERS));
  for (const adj_case& c : cases) {
    SCOPED_TRACE(c.name);
    adj_st adj = bundle_adjacency();
    adj_st::mgscp_en::set(adj, c.mgscp_en);
    adj_st::rx_lag_hash_en::set(adj, c.rx_lag_hash_en);
    adj_st::lag::lag_hash::set(adj, c.lag_byte);
    write_adjacency(adj);
    const std::uint64_t counted_before = counter(CNT_LAG_MGSCP_RAW_HASH);
    std::array<std::uint8_t, 32> fab{};
    func_rc_e rc = RC_FAIL;
    std::uint32_t member = 0;
    std::uint32_t raw_member = 0;
    run([&](env_t env) {
      member = expected_hash(c.from, c.lag_byte) % MEMBERS;
      raw_member = expected_hash(hash_from::raw, 0) % MEMBERS;
      *ps_put_mod_ing_fwd_thread_bits(env) = c.thread_bits;
      read_adjacency(env);
      rc = lag_process_l3_adj_ing(env, ((c.thread_bits & IPV6) ? V6 : V4).data(), fab.data(), RAW_HASH);
    });
    EXPECT_TRUE(c.from == hash_from::raw || member != raw_member) << "a case that the raw hash would pass";
    ASSERT_EQ(rc, RC_SUCCESS);
    EXPECT_EQ(fab[14], member);
    EXPECT_EQ(dc3_nph_fields::dc3_fgid_or_sfp::get(fab), VQI_BASE + member);
    EXPECT_EQ(counter(CNT_LAG_MGSCP_RAW_HASH) - counted_before, c.counted ? 1u : 0u);
  }
}

// ---- the common choice and the L3 form ----

// 0xBCD is 3021: 3021 mod 7 = 4, while its low byte 0xCD, 205, mod 7 = 2.
// With the bundle gone, the choice drops.
TEST_F(BundleTest, TheCommonChoiceTakesTheRemainderAndItsVqi) {
  const struct {
    std::uint32_t members;
    bool truncate_hash;
    std::uint32_t lag_hash;
    std::uint8_t member;
  } cases[] = {
      {7, false, 0xBCD, 4}, {7, true, 0xBCD, 2}, {1, false, 0xFFF, 0}, {64, false, 0xFFF, 63}, {0, false, 0xBCD, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.members);
    if (c.members == 0) h.tables().lags().remove(BUNDLE);
    if (c.members != 0) add(BUNDLE, bundle_of(c.members, true, c.truncate_hash));
    func_rc_e rc = RC_FAIL;
    std::uint32_t vqi = 0;
    std::uint8_t lagm = 0xFF;
    run([&](env_t env) { rc = lag_process_common_ing(env, BUNDLE, c.lag_hash, &vqi, &lagm); });
    EXPECT_EQ(rc, c.members ? RC_SUCCESS : RC_PKT_DROP);
    EXPECT_EQ(counter(DROP_LAG_ING_INVALID), c.members ? 0u : 1u);
    if (c.members != 0) {
      EXPECT_EQ(std::pair(lagm, vqi), std::pair(c.member, VQI_BASE + c.member));
    }
  }
}

// The L3 form writes the member into its own byte of the header and the VQI
// into the low 11 bits of the destination, and leaves the rest alone.
TEST_F(BundleTest, TheL3FormWritesMemberAndVqiIntoTheHeaderAndNothingElse) {
  ctrl::bundle b = bundle_of(5);
  b.members[3].vqi = 0x7A5;
  add(BUNDLE, b);
  std::array<std::uint8_t, 32> fab{};
  fab.fill(0xFF);
  fab[14] = 0xC0;  // the reserved bits of the member byte are set and stay so
  std::array<std::uint8_t, 32> expected = fab;
  expected[14] = 0xC0 | 3;  // lag bits 0xA03 = 2563, mod 5 = 3
  expected[22] = 0xF7;      // the top three bits belong to the source port
  expected[23] = 0xA5;
  func_rc_e rc = RC_FAIL;
  run([&](env_t env) { rc = lag_process_l3_ing(env, fab.data(), BUNDLE, 0x0A000003); });
  ASSERT_EQ(rc, RC_SUCCESS);
  EXPECT_EQ(fab, expected);
}

}  // namespace
