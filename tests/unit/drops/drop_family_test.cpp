// The drop family at its edges: a kept packet against the drop that ends it,
// the capture filter of dropped packets, and the drops that count on the
// interface with their flow-export and mirror steps.
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

class DropFamily : public ::testing::Test {
 protected:
  model::packet_outcome one(std::function<void(env_t)> body, std::uint32_t len = 64) {
    testkit::probe_vector(h, testkit::TEST_VECTOR, std::move(body));
    return h.one(testkit::line_packet().set<dh::pktlen>(len).set<dh::uidb_index>(UIDB));
  }
  void set_up_interface(const ctrl::l3_interface& cfg) { stats = testkit::add_routed_port(h.tables(), 1, cfg).stats; }
  // Entry 8 of the interface's ingress block, behind its static entries.
  model::stats_entry interface_drops() { return h.tables().stats().entry(stats.ingress + 8); }

  testkit::npu_harness h;
  ctrl::interface_stats stats;
};

void keep(env_t env, std::uint32_t on) { cf::keep_gpm::set(*ps_put_mod_common_flags(env), on); }

// A kept packet lives on through its drops, marked as not sent, until the
// final drop or a return to the main loop while a tail is owed ends it.
TEST_F(DropFamily, AKeptPacketCountsEachDropAndEndsAtAnEndingOne) {
  std::uint32_t not_sent = 0;
  model::packet_outcome o = one([&](env_t env) {
    keep(env, 1);
    drop_packet(env, 0x101);
    drop_packet(env, 0x102);
    not_sent = span_flags_st::egr_not_xmitted::get(*ps_get_span_flags(env));
    keep(env, 0);
    drop_packet(env, 0x103);
  });
  EXPECT_EQ(o.end, model::packet_end::freed);
  EXPECT_EQ(o.global_counters, (counters{0x101, 0x102, 0x103}));
  EXPECT_EQ(o.drop_counter, 0x103u);
  EXPECT_EQ(not_sent, 1u);

  o = one([](env_t env) {
    keep(env, 1);
    cf::tail_processing::set(*ps_put_mod_common_flags(env), 1);
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

TEST_F(DropFamily, CaptureFilterTakesOnlyWhatTheRegisterAsksFor) {
  struct row {
    const char* name;
    std::uint32_t filter;
    bool traced;
    bool moved_start;  // the packet's start lies in the next 256 bytes
    bool captured;
  };
  const row rows[] = {
      {"no filter", 0, false, false, true},
      {"reason matches", BY_REASON | reason_field(0x150), false, false, true},
      {"reason differs", BY_REASON | reason_field(0x151), false, false, false},
      {"interface matches", BY_INTERFACE | interface_field(UIDB), false, false, true},
      {"interface differs", BY_INTERFACE | interface_field(UIDB + 1), false, false, false},
      {"traced only, traced", TRACED_ONLY, true, false, true},
      {"traced only, untraced", TRACED_ONLY, false, false, false},
      {"start beyond the first 256 bytes", 0, false, true, false},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    h.npu().set_drop_capture(r.filter);
    const model::packet_outcome o = one([&](env_t env) {
      cf::pkt_trace_on::set(*ps_put_mod_common_flags(env), r.traced);
      if (r.moved_start) *ps_put_mod_pkt_start(env) += 256;
      drop_packet(env, 0x150);
    });
    EXPECT_EQ(o.captured_drop, r.captured ? std::optional<std::uint32_t>(0x150) : std::nullopt);
  }
  // Kept drops and drops without a reason are not captured.
  h.npu().set_drop_capture(0);
  EXPECT_FALSE(one([](env_t env) {
                 keep(env, 1);
                 drop_packet(env, 0x105);
                 keep(env, 0);
                 drop_packet_no_counter(env);
               }).captured_drop.has_value());
  // A fabric packet is no interface's packet.
  h.npu().set_drop_capture(BY_INTERFACE | interface_field(0));
  std::vector<std::uint8_t> frame(64, 0);  // NPH type 0: the bad-type drop
  EXPECT_FALSE(h.one(testkit::dist_hdr::fabric(), frame).captured_drop.has_value());
}

// ---- drops that count on the interface ----

enum class drop_kind { l3_ing, early, early_without_stats, flow_export_only };

// The drop of each kind, after the path has asked for its interface record.
void drop_of(env_t env, drop_kind kind, bool injected) {
  inject_flags_st::injected_pkt::set(*ps_put_mod_inject_flags(env), injected);
  if (kind == drop_kind::l3_ing) return l3_ing_drop(env, FALSE, 150, 0x589);
  lookup_request_ID_UIDB_L3_ING__COMM(env, pkt_get_rx_uidb_index(env));
  if (kind == drop_kind::flow_export_only) {
    cf::nf_sampled::set(*ps_put_mod_common_flags(env), 1);
    return early_drop_packet_ing__NETFLOW(env, 90, NF_DROP_REASON_BAD_TTL, 0x1D9, TRUE);
  }
  early_drop_packet_ing__IPV4(env, 90, NF_DROP_REASON_BAD_TTL, 0x1D8, kind == drop_kind::early);
}

// The interface drops count on the interface when asked, unless injected;
// the early drop also reaches flow export and mirror when the interface has
// them. The flow-export reason itself is checked with the drop core.
TEST_F(DropFamily, InterfaceDropsCountOnTheInterfaceUnlessInjected) {
  ctrl::l3_interface cfg;
  uidb_l3_ing_fields_st::ipv4::nf_en::set(cfg.ingress, 1);
  uidb_l3_ing_fields_st::span_en::set(cfg.ingress, 1);
  set_up_interface(cfg);
  struct row {
    drop_kind kind;
    bool injected;
    std::uint32_t glb;
    model::stats_entry on_interface;  // after the row
    std::uint64_t flow_export;        // flow-export and mirror steps reached so far
  };
  const row rows[] = {
      {drop_kind::l3_ing, false, 0x589, {1, 150}, 0}, {drop_kind::l3_ing, true, 0x589, {1, 150}, 0},
      {drop_kind::early, false, 0x1D8, {2, 240}, 1},  {drop_kind::early_without_stats, false, 0x1D8, {2, 240}, 2},
      {drop_kind::early, true, 0x1D8, {2, 240}, 2},   {drop_kind::flow_export_only, false, 0x1D9, {2, 240}, 2},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(testing::Message() << "kind " << static_cast<int>(r.kind) << " injected " << r.injected);
    EXPECT_EQ(one([&](env_t env) { drop_of(env, r.kind, r.injected); }, 90).global_counters, counters{r.glb});
    EXPECT_EQ(interface_drops(), r.on_interface);
    EXPECT_EQ(h.npu().placeholder_count(UNBUILT_ipv4_ing_netflow_part_1_2), r.flow_export);
    EXPECT_EQ(h.npu().placeholder_count(UNBUILT_span_capture_ipv4_ing), r.flow_export);
  }
}

}  // namespace
