// The drop family at its edges: a kept packet against its final drop, the
// last copy of a replication, the capture filter of dropped packets, and the
// drops that count on the interface: l3_ing_drop, the early ingress drops and
// the egress drops, with their flow-export and mirror steps.
#include <gtest/gtest.h>

#include "dplane/infra/drop.h"
#include "dplane/infra/drop_paths.h"
#include "dplane/infra/lookup.h"
#include "npu/zephra/pkt_rx.h"
#include "platform/shared/placeholder.h"
#include "testkit/dispatch_probe.h"
#include "testkit/routed_port.h"

namespace {

using cf = common_flags_st;
using counters = std::vector<std::uint32_t>;
using dh = dist_hdr_line_st;

// The first interface the control side adds gets UIDB index 1.
constexpr std::uint32_t UIDB = 1;

testkit::dist_hdr packet_of(std::uint32_t len) {
  return testkit::line_packet().set<dh::pktlen>(len).set<dh::uidb_index>(UIDB);
}

std::string reached(const model::packet_outcome& o) {
  const char* name = unbuilt_handler_name(static_cast<std::uint32_t>(o.placeholder));
  return name ? name : "";
}

class DropFamily : public ::testing::Test {
 protected:
  model::packet_outcome one(std::function<void(env_t)> body, std::uint32_t len = 64) {
    testkit::probe_vector(h, testkit::TEST_VECTOR, std::move(body));
    return h.one(packet_of(len));
  }
  void set_up_interface(const ctrl::l3_interface& cfg) { stats = testkit::add_routed_port(h.tables(), 1, cfg).stats; }
  void set_up_interface(const uidb_l3_ing_fields_st& features = {}) {
    ctrl::l3_interface cfg;
    cfg.ingress = features;
    set_up_interface(cfg);
  }
  // Entry 8 of the interface's ingress block, behind its static entries.
  model::stats_entry interface_drops() { return h.tables().stats().entry(stats.ingress + 8); }

  testkit::npu_harness h;
  ctrl::interface_stats stats;
};

TEST_F(DropFamily, AKeptPacketCountsEachDropAndEndsAtTheFinalOne) {
  std::uint32_t not_sent = 0;
  const model::packet_outcome o = one([&](env_t env) {
    cf::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
    drop_packet(env, 0x101);
    drop_packet(env, 0x102);
    not_sent = span_flags_st::egr_not_xmitted::get(*ps_get_span_flags(env));
    cf::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
    drop_packet(env, 0x103);
  });
  EXPECT_EQ(o.end, model::packet_end::freed);
  EXPECT_EQ(o.global_counters, (counters{0x101, 0x102, 0x103}));
  EXPECT_EQ(o.drop_counter, 0x103u);
  EXPECT_EQ(not_sent, 1u) << "a kept packet is marked as not sent";
}

TEST_F(DropFamily, TheLastCopyOfAReplicationFreesTheKeptBuffer) {
  const model::packet_outcome o = one([](env_t env) {
    cf::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
    drop_packet_no_counter_mcast(env);
  });
  EXPECT_EQ(o.end, model::packet_end::freed);
  EXPECT_TRUE(o.global_counters.empty());
}

TEST_F(DropFamily, ReturnToMainEndsAKeptPacketOwingTail) {
  const model::packet_outcome o = one([](env_t env) {
    common_flags_st& f = *ps_put_mod_common_flags(env);
    cf::keep_gpm::set(f, 1);
    cf::tail_processing::set(f, 1);
    drop_packet_return_to_main(env, 0x104);
  });
  EXPECT_EQ(o.end, model::packet_end::freed);
  EXPECT_EQ(o.global_counters, (counters{0x104}));
}

// ---- the capture filter (register 137) ----

constexpr std::uint32_t BY_REASON = 1u << 0;
constexpr std::uint32_t BY_INTERFACE = 1u << 1;
constexpr std::uint32_t TRACED_ONLY = 1u << 2;
constexpr std::uint32_t reason_field(std::uint32_t r) { return r << 3; }
constexpr std::uint32_t interface_field(std::uint32_t uidb) { return uidb << 16; }

struct capture_case {
  const char* name;
  std::uint32_t filter;
  std::uint32_t reason;
  bool traced;
  bool moved_start;  // the packet's start lies in the next 256 bytes
  bool captured;
};

class CaptureFilter : public ::testing::TestWithParam<capture_case> {};

TEST_P(CaptureFilter, TakesOnlyWhatTheRegisterAsksFor) {
  const capture_case& c = GetParam();
  testkit::npu_harness h;
  h.npu().set_drop_capture(c.filter);
  testkit::probe_vector(h, testkit::TEST_VECTOR, [&](env_t env) {
    cf::pkt_trace_on::set(*ps_put_mod_common_flags(env), c.traced);
    if (c.moved_start) *ps_put_mod_pkt_start(env) += 256;
    drop_packet(env, c.reason);
  });
  const model::packet_outcome o = h.one(packet_of(64));
  EXPECT_EQ(o.captured_drop, c.captured ? std::optional<std::uint32_t>(c.reason) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Filters, CaptureFilter,
    ::testing::Values(
        capture_case{"no_filter", 0, 0x150, false, false, true},
        capture_case{"reason_matches", BY_REASON | reason_field(0x150), 0x150, false, false, true},
        capture_case{"reason_differs", BY_REASON | reason_field(0x151), 0x150, false, false, false},
        capture_case{"interface_matches", BY_INTERFACE | interface_field(UIDB), 0x150, false, false, true},
        capture_case{"interface_differs", BY_INTERFACE | interface_field(UIDB + 1), 0x150, false, false, false},
        capture_case{"traced_only_and_traced", TRACED_ONLY, 0x150, true, false, true},
        capture_case{"traced_only_untraced", TRACED_ONLY, 0x150, false, false, false},
        capture_case{"start_beyond_the_first_256_bytes", 0, 0x150, false, true, false}),
    [](const ::testing::TestParamInfo<capture_case>& p) { return p.param.name; });

TEST(CaptureFilterOf, AFabricPacketIsNoInterfacesPacket) {
  testkit::npu_harness h;
  h.npu().set_drop_capture(BY_INTERFACE | interface_field(0));
  std::vector<std::uint8_t> frame(64, 0);
  frame[8] = 0;  // NPH type 0: the bad-type drop
  EXPECT_FALSE(h.one(testkit::dist_hdr::fabric(), frame).captured_drop.has_value());
}

TEST_F(DropFamily, KeptDropsAndDropsWithoutReasonAreNotCaptured) {
  h.npu().set_drop_capture(0);
  const model::packet_outcome o = one([](env_t env) {
    cf::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
    drop_packet(env, 0x105);
    cf::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
    drop_packet_no_counter(env);
  });
  EXPECT_FALSE(o.captured_drop.has_value());
  EXPECT_FALSE(o.drop_counter.has_value());
}

// ---- drops that count on the interface ----

// The early drop of a path that has asked for its interface record.
void early_ipv4_drop(env_t env, boolean_t need_stats) {
  lookup_request_ID_UIDB_L3_ING__COMM(env, pkt_get_rx_uidb_index(env));
  early_drop_packet_ing__IPV4(env, 90, NF_DROP_REASON_BAD_TTL, 0x1D8, need_stats);
}

void injected(env_t env) { inject_flags_st::injected_pkt::set(*ps_put_mod_inject_flags(env), 1); }

// The interface drops count on the interface when asked, unless injected;
// the early drop also reaches flow export and mirror when the interface has
// them. The flow-export reason itself is checked with the drop core.
TEST_F(DropFamily, InterfaceDropsCountOnTheInterfaceUnlessInjected) {
  uidb_l3_ing_fields_st features{};
  uidb_l3_ing_fields_st::ipv4::nf_en::set(features, 1);
  uidb_l3_ing_fields_st::span_en::set(features, 1);
  set_up_interface(features);
  struct row {
    const char* name;
    void (*body)(env_t);
    counters glb;
    model::stats_entry on_interface;  // after the row
    std::uint64_t flow_export;        // flow-export and mirror steps reached so far
  };
  const row rows[] = {
      {"l3_ing_drop", [](env_t env) { l3_ing_drop(env, FALSE, 150, 0x589); }, {0x589}, {1, 150}, 0},
      {"injected l3_ing_drop",
       [](env_t env) {
         injected(env);
         l3_ing_drop(env, FALSE, 150, 0x589);
       },
       {0x589},
       {1, 150},
       0},
      {"early drop", [](env_t env) { early_ipv4_drop(env, TRUE); }, {0x1D8}, {2, 240}, 1},
      {"early drop without stats", [](env_t env) { early_ipv4_drop(env, FALSE); }, {0x1D8}, {2, 240}, 2},
      {"injected early drop",
       [](env_t env) {
         injected(env);
         early_ipv4_drop(env, TRUE);
       },
       {0x1D8},
       {2, 240},
       2},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(one(r.body, 90).global_counters, r.glb);
    EXPECT_EQ(interface_drops(), r.on_interface);
    EXPECT_EQ(h.npu().placeholder_count(UNBUILT_ipv4_ing_netflow_part_1_2), r.flow_export);
    EXPECT_EQ(h.npu().placeholder_count(UNBUILT_span_capture_ipv4_ing), r.flow_export);
  }
}

TEST_F(DropFamily, NetflowFormsOnlyDrop) {
  const model::packet_outcome o = one([](env_t env) {
    cf::nf_sampled::set(*ps_put_mod_common_flags(env), 1);
    early_drop_packet_ing__NETFLOW(env, 90, NF_DROP_REASON_BAD_TTL, 0x1D9, TRUE);
  });
  EXPECT_EQ(o.global_counters, (counters{0x1D9}));
}

TEST_F(DropFamily, EgressDropReachesFlowExportOnAnInterfaceWithIt) {
  uidb_l3_egr_fields_st egress{};
  uidb_l3_egr_fields_st::mpls_nf_en::set(egress, 1);
  ctrl::l3_interface cfg;
  cfg.egress = egress;
  set_up_interface(cfg);
  const model::packet_outcome o = one([](env_t env) {
    lookup_request_ID_UIDB_L3_EGR__COMM(env, UIDB);
    drop_packet_egr_common__MPLS(env, FALSE, NF_DROP_REASON_BAD_OUTPUT_IF, 0x5AA);
  });
  EXPECT_EQ(o.global_counters, (counters{0x5AA}));
  EXPECT_EQ(reached(o), "mpls_egr_netflow_part_1");
}

}  // namespace
