// The owners of the control side: a refused call leaves every table and
// pool as it was, what a removal frees is handed out again, and the chassis
// owner gives one index and writes one record on every NPU.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ctrl/page_descriptors.h"
#include "fwc_lag.h"
#include "testkit/npu_harness.h"
#include "testkit/param_names.h"
#include "testkit/routed_port.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using ctrl::error;

constexpr std::uint32_t PORT = 3;
constexpr std::uint32_t BUNDLE = 9;

bytes paged(model::npu& n, std::uint32_t tpd, std::uint32_t index, std::size_t len) {
  bytes out(len);
  n.memory().read(n.memory().translate(ctrl::paged_record_address(n, tpd, index).value()), out);
  return out;
}

ctrl::bundle two_members() {
  ctrl::bundle b;
  b.members = {{0x10, 1, false, false, 0}, {0x11, 2, false, false, 1}};
  return b;
}

// What the NPU holds where the refused calls would write, and what the pools
// hand out next.
struct snapshot {
  bytes uidb_record, chain_record, bundle_member;
  std::size_t routes;
  bool operator==(const snapshot&) const = default;
};

snapshot take(ctrl::npu_tables& t) {
  model::npu& n = t.npu();
  return {paged(n, TPD_IDX_UIDB_L3_ING, 1, 32), paged(n, ctrl::rldi_id::TPD, 1, 16),
          paged(n, TPD_IDX_LAG_ING, BUNDLE * ctrl::BUNDLE_MEMBER_BLOCK, 16), n.plu().routes()};
}

struct refusal {
  const char* what;
  std::function<error(ctrl::chassis_tables&)> call;
  error want;
};

ctrl::l3_interface l3(std::uint32_t handle) {
  ctrl::l3_interface c;
  c.if_handle = handle;
  return c;
}

std::vector<refusal> refusals() {
  const bytes chain(16, 0xAA);
  return {
      {"a removal of no interface", [](auto& c) { return c.npu(0).ifs().remove(1); }, error::not_found},
      {"a chain record never allocated", [=](auto& c) { return c.npu(0).records().write(ctrl::rldi_id{1}, chain); },
       error::not_found},
      {"a release of a chain record never allocated",
       [](auto& c) { return c.npu(0).records().release(ctrl::nrldi_id{1}); }, error::not_found},
      {"a chassis write of a record not allocated", [=](auto& c) { return c.write(ctrl::rldi_id{1}, chain); },
       error::not_found},
      {"a bundle of 65 members",
       [](auto& c) {
         ctrl::bundle b;
         b.members.resize(65);
         return c.npu(0).lags().write(BUNDLE, b);
       },
       error::bad_size},
      {"a chassis bundle with an NPU short", [](auto& c) { return c.write_bundle(BUNDLE, two_members(), {{0}}); },
       error::bad_size},
      {"a chassis bundle on an NPU the chassis lacks",
       [](auto& c) {
         return c.write_bundle(BUNDLE, two_members(), {{0, 2}});
       },
       error::out_of_range},
  };
}

class Refusals : public ::testing::TestWithParam<refusal> {};

TEST_P(Refusals, LeaveEveryTableAndPoolAsItWas) {
  testkit::npu_harness h(2);
  ctrl::npu_tables& t = h.tables(0);
  testkit::add_routed_port(t, PORT, {});  // UIDB 1 with handle 0x200 + PORT
  ASSERT_EQ(t.ifs().remove(1), error::none);
  const snapshot before = take(t);

  EXPECT_EQ(GetParam().call(h.chassis_tables()), GetParam().want);
  EXPECT_EQ(take(t), before);
  // The pools hand out what they would have handed out.
  EXPECT_EQ(t.ifs().add_physical_port(PORT, l3(0x300)).uidb_index, 1);
  EXPECT_EQ(t.records().allocate<ctrl::rldi_id>().id.index, 1u);
}

INSTANTIATE_TEST_SUITE_P(Calls, Refusals, ::testing::ValuesIn(refusals()), testkit::described<refusal>);

TEST(Pools, WhatARemovalFreesIsHandedOutNext) {
  testkit::npu_harness h;
  ctrl::npu_tables& t = h.tables();
  const ctrl::interface_added a = testkit::add_routed_port(t, 1);
  EXPECT_NE(a.stats.ingress, a.stats.egress);
  ASSERT_EQ(t.ifs().remove(a.uidb_index), error::none);
  const ctrl::interface_added c = t.ifs().add_physical_port(1, l3(0x777));
  EXPECT_EQ(std::pair(c.stats.ingress, c.stats.egress), std::pair(a.stats.ingress, a.stats.egress));

  // RLDI and RX_ADJ share a page descriptor: one pool, no index twice.
  const auto rldi = t.records().allocate<ctrl::rldi_id>();
  EXPECT_EQ(rldi.id.index, 1u);
  EXPECT_EQ(t.records().allocate<ctrl::rx_adj_id>().id.index, 2u);
  ASSERT_EQ(t.records().write(rldi.id, bytes(16, 0x5A)), error::none);
  ASSERT_EQ(t.records().release(rldi.id), error::none);
  EXPECT_EQ(paged(t.npu(), ctrl::rldi_id::TPD, 1, 16), bytes(16, 0));  // released records read as zeros
  EXPECT_EQ(t.records().allocate<ctrl::rx_adj_id>().id.index, 1u);
  EXPECT_EQ(t.records().allocate<ctrl::tx_adj_id>().id.index, 1u);  // a page of its own
}

TEST(ChassisTables, OneIndexAndOneRecordOnEveryNpu) {
  testkit::npu_harness h(3);
  ctrl::chassis_tables& c = h.chassis_tables();
  // NPU 1 holds index 1 of its own: the chassis index must be free on all.
  ASSERT_EQ(c.npu(1).records().allocate<ctrl::nrldi_id>().id.index, 1u);
  const auto id = c.allocate<ctrl::nrldi_id>();
  ASSERT_EQ(std::pair(id.err, id.id.index), std::pair(error::none, 2u));
  const bytes record(32, 0xC3);
  ASSERT_EQ(c.write(id.id, record), error::none);
  for (std::uint32_t n = 0; n < 3; ++n) EXPECT_EQ(paged(h.npu(n), ctrl::nrldi_id::TPD, 2, 32), record) << n;

  // One bundle, members in one order; member i local only on its NPU.
  const std::uint32_t owners[] = {2, 0};
  ASSERT_EQ(c.write_bundle(BUNDLE, two_members(), owners), error::none);
  for (std::uint32_t n = 0; n < 3; ++n) {
    for (std::uint32_t i = 0; i < 2; ++i) {
      lag_mem_info_fields_st m;
      const bytes got = paged(h.npu(n), TPD_IDX_LAG_ING, BUNDLE * ctrl::BUNDLE_MEMBER_BLOCK + i, sizeof m.bytes);
      std::copy(got.begin(), got.end(), m.bytes);
      EXPECT_EQ(lag_mem_info_fields_st::np_port_id::get(m), i + 1) << n << "/" << i;
      EXPECT_EQ(lag_mem_info_fields_st::bf::np_local::get(m), owners[i] == n ? 1u : 0u) << n << "/" << i;
    }
  }
}

}  // namespace
