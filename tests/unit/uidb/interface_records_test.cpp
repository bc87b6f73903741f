// Interface records written by the control side, read back on an NPU thread
// through the program's own lookups: every field the caller set stands as
// set, and the fields the control side owns hold the interface's settings.
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <vector>

#include "dplane/infra/lookup.h"
#include "npu/zephra/pkt_buf.h"
#include "testkit/line_card.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using testkit::line_card;

constexpr std::uint32_t PORT = 5;

template <class R>
bytes bytes_of(const R& rec, std::size_t n = sizeof(R)) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  return bytes(p, p + n);
}

// A record with every bit set by a pattern of its own, as a caller's
// feature settings.
template <class R>
R patterned(std::uint8_t seed) {
  R rec;
  auto* p = reinterpret_cast<std::uint8_t*>(&rec);
  for (std::size_t i = 0; i < sizeof rec; ++i) p[i] = static_cast<std::uint8_t>(seed * 37 + i * 91 + (i >> 2));
  return rec;
}

class InterfaceRecords : public ::testing::Test {
 protected:
  void SetUp() override { card.add_port(PORT); }

  // Runs a read through the program's lookups on the NPU thread.
  template <class R, class Read>
  R read(Read read_fn) {
    R out{};
    card.harness().on_thread([&](env_t env) {
      lookup_dbg_new_pass(env);
      out = read_fn(env);
    });
    return out;
  }
  mark_bits_st marks(std::uint32_t index) {
    return read<mark_bits_st>([&](env_t env) {
      pkt_update_ing_mark_bits(env, index);
      return *pkt_rx_uidb_mark_bits(env);
    });
  }
  // The handle's entry in the interface-handle table, if a search finds it.
  std::optional<uidb_ifh_2_uidb_st> handle_entry(std::uint32_t if_handle) {
    std::optional<uidb_ifh_2_uidb_st> out;
    card.harness().on_thread([&](env_t env) {
      lookup_dbg_new_pass(env);
      uidb_ifh_2_uidb_key_st key;
      key.ifhandle = if_handle;
      hash_search_context_st ctx{};
      hash_search_part_1_ID_IFH_2_UIDB_KEY_TABLE(env, &key, &ctx);
      hash_search_part_2_ID_IFH_2_UIDB_KEY_TABLE(env, &key, &ctx);
      if (hash_search_part_3_ID_IFH_2_UIDB_KEY_TABLE(env, &key, &ctx) != HASH_SEARCH_RC_MATCH) return;
      uidb_ifh_2_uidb_st entry;
      std::memcpy(entry.bytes, lookup_result_ID_IFH_2_UIDB_KEY_TABLE_RES(env)->bytes, sizeof entry.bytes);
      out = entry;
    });
    return out;
  }

  line_card card;
};

// The record of lookup ID at index idx, as the program reads it.
#define RECORD(T, ID)                   \
  read<T>([&](env_t env) {              \
    lookup_request_ID_##ID(env, idx);   \
    lookup_wait_ID_##ID(env);           \
    return *lookup_result_ID_##ID(env); \
  })

ctrl::l3_interface full_l3() {
  ctrl::l3_interface c = line_card::routed(0x5001, true, false, true);
  c.vrf = 42;
  c.line_up = false;
  c.mtu = 9000;
  c.ingress = patterned<uidb_l3_ing_fields_st>(1);
  c.egress = patterned<uidb_l3_egr_fields_st>(2);
  c.egress_ext = patterned<uidb_ext_l3_egr_st>(3);
  c.ingress_ext = patterned<uidb_ext_l3_ing_st>(4);
  c.ingress_fast_ext = patterned<uidb_ext_l3_fast_ing_st>(5);
  c.egress_fast_ext = patterned<uidb_ext_l3_fast_egr_st>(6);
  c.subscriber_ext = patterned<uidb_bng_ext_l3_ing_st>(7);
  return c;
}

TEST_F(InterfaceRecords, L3SubinterfaceRecordsHoldTheCallersFieldsAndTheInterfacesSettings) {
  const ctrl::l3_interface c = full_l3();
  const auto added = card.ifs().add_vlan_subinterface(PORT, {{0x88a8, 200}, {0x8100, 300}}, c);
  ASSERT_EQ(added.err, ctrl::error::none);
  const std::uint16_t idx = added.uidb_index;

  using ing = uidb_l3_ing_fields_st;
  ing want_ing = c.ingress;
  ing::coherency::set(want_ing, 1);
  ing::l2_uidb::set(want_ing, 0);
  ing::line_status_up::set(want_ing, 0);
  ing::global_int::set(want_ing, 0);
  ing::table_id::set(want_ing, 42);
  ing::uidb_ifhandle::set(want_ing, 0x5001);
  ing::stats_p::set(want_ing, added.stats.ingress);
  EXPECT_EQ(bytes_of(RECORD(ing, UIDB_L3_ING__COMM)), bytes_of(want_ing));

  using egr = uidb_l3_egr_fields_st;
  egr want_egr = c.egress;
  egr::coherency_always_1::set(want_egr, 1);
  egr::line_status_up::set(want_egr, 0);
  egr::global_int::set(want_egr, 0);
  egr::ext_req::set(want_egr, 1);
  egr::fast_ext_req::set(want_egr, 1);
  egr::out_if::port_id::set(want_egr, PORT);
  egr::stats_p::set(want_egr, added.stats.egress);
  egr::vlan_tag1_en::set(want_egr, 1);
  egr::tag1::tpid::set(want_egr, 0x88a8);
  egr::tag1::tid::vlan::set(want_egr, 200);
  egr::vlan_tag2_en::set(want_egr, 1);
  egr::tag2::tpid::set(want_egr, 0x8100);
  egr::tag2::tid::vlan::set(want_egr, 300);
  EXPECT_EQ(bytes_of(RECORD(egr, UIDB_L3_EGR__COMM)), bytes_of(want_egr));

  uidb_ext_l3_egr_st want_egr_ext = c.egress_ext;
  uidb_ext_l3_egr_st::coherency_always_1::set(want_egr_ext, 1);
  uidb_ext_l3_egr_st::ipmtu::set(want_egr_ext, 9000);
  uidb_ext_l3_egr_st::uidb_ifhandle::set(want_egr_ext, 0x5001);
  EXPECT_EQ(bytes_of(RECORD(uidb_ext_l3_egr_st, UIDB_EXT_L3_EGR__COMM)), bytes_of(want_egr_ext));
  uidb_ext_l3_ing_st want_ext = *c.ingress_ext;
  uidb_ext_l3_ing_st::coherency_always_1::set(want_ext, 1);
  EXPECT_EQ(bytes_of(RECORD(uidb_ext_l3_ing_part1_st, UIDB_EXT_L3_ING__COMM)),
            bytes_of(want_ext, sizeof(uidb_ext_l3_ing_part1_st)));
  uidb_bng_ext_l3_ing_st want_bng = *c.subscriber_ext;
  uidb_bng_ext_l3_ing_st::coherency_always_1::set(want_bng, 1);
  EXPECT_EQ(bytes_of(RECORD(uidb_bng_ext_l3_ing_st, UIDB_BNG_EXT_L3_ING)), bytes_of(want_bng));

  using m = mark_bits_st::l3;
  const mark_bits_st got_marks = marks(idx);
  EXPECT_EQ((std::vector<std::uint32_t>{m::rt_v4::get(got_marks), m::rt_v6::get(got_marks), m::rt_mpls::get(got_marks),
                                        m::l2_uidb::get(got_marks), m::line_status_up::get(got_marks),
                                        m::ipv4_en::get(got_marks), m::ipv6_en::get(got_marks),
                                        m::mpls_en::get(got_marks), m::fast_ext_req::get(got_marks),
                                        m::ext_req::get(got_marks), m::read_bng_uidb_ext::get(got_marks),
                                        m::global_vrf::get(got_marks), m::uidb_maintenance_mode::get(got_marks)}),
            (std::vector<std::uint32_t>{1, 0, 1, 0, 0, 1, 0, 1, 1, 1, 1, 0, 0}));

  const auto entry = handle_entry(0x5001);
  ASSERT_TRUE(entry);
  EXPECT_EQ(uidb_ifh_2_uidb_st::valid::get(*entry), 1u);
  EXPECT_EQ(uidb_ifh_2_uidb_st::match::get(*entry), 1u);
  EXPECT_EQ(uidb_ifh_2_uidb_st::bvi::get(*entry), 0u);
  EXPECT_EQ(uidb_ifh_2_uidb_st::uidb_index::get(*entry), idx);
}

TEST_F(InterfaceRecords, AbsentExtensionsStandAsZerosWithTheirRequestBitsClear) {
  const std::uint16_t idx = card.ifs().add_physical_port(PORT, line_card::routed(0x5002, true, true, true)).uidb_index;
  EXPECT_EQ(bytes_of(RECORD(uidb_ext_l3_fast_ing_st, UIDB_EXT_L3_FAST_ING__COMM)), bytes(8, 0));
  using m = mark_bits_st::l3;
  const mark_bits_st got = marks(idx);
  EXPECT_EQ((std::vector<std::uint32_t>{m::ext_req::get(got), m::fast_ext_req::get(got), m::read_bng_uidb_ext::get(got),
                                        m::global_vrf::get(got)}),
            (std::vector<std::uint32_t>{0, 0, 0, 1}));
  using egr = uidb_l3_egr_fields_st;
  const egr e = RECORD(egr, UIDB_L3_EGR__COMM);
  EXPECT_EQ((std::vector<std::uint32_t>{egr::fast_ext_req::get(e), egr::vlan_tag1_en::get(e), egr::global_int::get(e)}),
            (std::vector<std::uint32_t>{0, 0, 1}));
}

TEST_F(InterfaceRecords, L2BridgePortIngressRecordAndMarks) {
  ctrl::l2_interface c;
  c.if_handle = 0x6001;
  c.service = ctrl::l2_service::bridge;
  c.bd_id = 0x1234;
  c.ingress = patterned<uidb_l2_ing_st>(11);
  c.ingress_ext = patterned<uidb_ext_l2_ing_st>(13);  // sets the extension request mark
  const auto added = card.ifs().add_l2_port(PORT, {{0x8100, 10}}, c);
  ASSERT_EQ(added.err, ctrl::error::none);
  const std::uint16_t idx = added.uidb_index;

  using ing = uidb_l2_ing_st;
  ing want_ing = c.ingress;
  ing::vpws::coherency::set(want_ing, 1);
  ing::vpws::l2_uidb::set(want_ing, 1);
  ing::vpws::vpls::set(want_ing, 1);
  ing::vpls::bd_id::set(want_ing, 0x1234);
  ing::stats_p::set(want_ing, added.stats.ingress);
  EXPECT_EQ(bytes_of(RECORD(ing, UIDB_L2_ING)), bytes_of(want_ing));
  using m = mark_bits_st::l2;
  const mark_bits_st got = marks(idx);
  EXPECT_EQ((std::vector<std::uint32_t>{m::l2_uidb::get(got), m::vpls::get(got), m::line_status_up::get(got),
                                        m::ext_req::get(got), m::uidb_maintenance_mode::get(got)}),
            (std::vector<std::uint32_t>{1, 1, 1, 1, 0}));
}

TEST_F(InterfaceRecords, UpdateRewritesRecordsMarksAndHandle) {
  const std::uint16_t idx =
      card.ifs().add_physical_port(PORT, line_card::routed(0x5003, true, false, false)).uidb_index;
  ctrl::l3_interface next = line_card::routed(0x5004, false, true, false);
  next.vrf = 9;
  ASSERT_EQ(card.ifs().update(idx, next), ctrl::error::none);
  using ing = uidb_l3_ing_fields_st;
  const ing got_ing = RECORD(ing, UIDB_L3_ING__COMM);
  EXPECT_EQ(ing::table_id::get(got_ing), 9u);
  EXPECT_EQ(ing::uidb_ifhandle::get(got_ing), 0x5004u);
  using m = mark_bits_st::l3;
  const mark_bits_st got = marks(idx);
  EXPECT_EQ(
      (std::vector<std::uint32_t>{m::ipv4_en::get(got), m::ipv6_en::get(got), m::uidb_maintenance_mode::get(got)}),
      (std::vector<std::uint32_t>{0, 1, 0}));
  EXPECT_FALSE(handle_entry(0x5003));
  ASSERT_TRUE(handle_entry(0x5004));
  EXPECT_EQ(uidb_ifh_2_uidb_st::uidb_index::get(*handle_entry(0x5004)), idx);
}

TEST_F(InterfaceRecords, RemoveLeavesNoRecordNoHandleAndNoPlace) {
  const std::uint16_t idx = card.ifs().add_physical_port(PORT, line_card::routed(0x5005, true, true, true)).uidb_index;
  ASSERT_EQ(card.ifs().remove(idx), ctrl::error::none);
  // No wait: a cleared record has no coherency bit to wait on.
  const auto ing = read<uidb_l3_ing_fields_st>([&](env_t env) {
    lookup_request_ID_UIDB_L3_ING__COMM(env, idx);
    return *lookup_result_ID_UIDB_L3_ING__COMM(env);
  });
  EXPECT_EQ(bytes_of(ing), bytes(32, 0));
  EXPECT_EQ(bytes_of(marks(idx)), bytes(4, 0));
  EXPECT_FALSE(handle_entry(0x5005));
  EXPECT_EQ(card.ifs().remove(idx), ctrl::error::not_found);
  EXPECT_EQ(card.ifs().add_physical_port(PORT, line_card::routed(0x5006, true, true, true)).uidb_index, idx);
}

}  // namespace
