// Tail processing: the flags and locks that enabling and disabling leave, the
// order in which the owed functions run, and the epilog.
#include <gtest/gtest.h>

#include "dplane/infra/drop.h"
#include "dplane/infra/tail_proc.h"
#include "platform/shared/placeholder.h"
#include "testkit/dispatch_probe.h"

namespace {

using cf = common_flags_st;
using cf2 = common_flags2_st;

// The tail state of a packet: tail_processing, keep_gpm, and the two locks.
struct tail_state {
  std::uint32_t tail_processing, keep_gpm, next_flowlock_id, tail_flowlock_id;
  bool operator==(const tail_state&) const = default;
};

tail_state tail_state_of(env_t env) {
  const common_flags_st& f = *ps_get_common_flags(env);
  return {cf::tail_processing::get(f), cf::keep_gpm::get(f), *ps_get_next_flowlock_id(env),
          *ps_get_tail_flowlock_id(env)};
}

// An ordinary packet's flags: no tail owed, nothing kept.
void clear_tail_state(env_t env) {
  *ps_put_mod_common_flags(env) = {};
  *ps_put_mod_common_flags2(env) = {};
  *ps_put_mod_next_flowlock_id(env) = 0;
  *ps_put_mod_tail_flowlock_id(env) = 0;
  *ps_put_mod_tail_proc_enables(env) = 0;
}

constexpr std::uint32_t FLOWHASH = 0x1234;
constexpr std::uint16_t TAIL_LOCK = 768 + 0x34;
constexpr std::uint16_t LOOP_LOCK = 300;

TEST(EnableTail, APassAloneOnAnUnsampledPacketBringsFlowExportUnderTheFlowRecordsLock) {
  struct row {
    const char* name;
    std::uint32_t first;  // enabled before the pass, or 0
    std::uint32_t nf_sampled, reason_set_or_nonsampled;
    std::uint32_t enables;
    std::uint16_t lock;
  };
  constexpr std::uint32_t NF_HASH = 0x77;
  const row rows[] = {
      {"unsampled", 0, 0, 1, tail_proc_multipass | tail_proc_netflow, 768 + NF_HASH},
      {"unsampled behind another function", tail_proc_span, 0, 1,
       tail_proc_span | tail_proc_multipass | tail_proc_netflow, TAIL_LOCK},
      {"sampled", 0, 1, 1, tail_proc_multipass, TAIL_LOCK},
      {"no reason set", 0, 0, 0, tail_proc_multipass, TAIL_LOCK},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    h.on_thread([&](env_t env) {
      clear_tail_state(env);
      cf::nf_sampled::set(*ps_put_mod_common_flags(env), r.nf_sampled);
      cf2::nf_drop_reason_set_or_nonsampled::set(*ps_put_mod_common_flags2(env), r.reason_set_or_nonsampled);
      *ps_put_mod_nf_hash(env) = NF_HASH;
      if (r.first) enable_tail_processing(env, FLOWHASH, static_cast<tail_proc_func_e>(r.first));
      enable_tail_processing(env, FLOWHASH, tail_proc_multipass);
      EXPECT_EQ(*ps_get_tail_proc_enables(env), r.enables);
      EXPECT_EQ(*ps_get_next_flowlock_id(env), r.lock);
    });
  }
}

// The first call keeps the packet under the flow's tail lock, which later
// calls leave; taking back the only function leaves an ordinary packet, or
// the loop's lock in a replication loop.
TEST(EnableTail, TheFirstCallTakesTheTailLockAndTheLastTakenBackReturnsIt) {
  struct row {
    const char* name;
    bool in_loop;
    std::vector<tail_proc_func_e> enabled;  // the first with FLOWHASH, later ones with another hash
    bool disable_span;
    tail_state after;
    std::uint32_t enables_after;
  };
  const row rows[] = {
      {"first call", false, {tail_proc_span}, false, {1, 1, TAIL_LOCK, 0}, tail_proc_span},
      {"later call",
       false,
       {tail_proc_span, tail_proc_netflow},
       false,
       {1, 1, TAIL_LOCK, 0},
       tail_proc_span | tail_proc_netflow},
      {"only function taken back", false, {tail_proc_span}, true, {0, 0, 0, 0}, 0},
      {"taken back in a replication loop", true, {tail_proc_span}, true, {0, 1, LOOP_LOCK, LOOP_LOCK}, 0},
      {"one of two taken back",
       false,
       {tail_proc_span, tail_proc_netflow},
       true,
       {1, 1, TAIL_LOCK, 0},
       tail_proc_netflow},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    h.on_thread([&](env_t env) {
      clear_tail_state(env);
      if (r.in_loop) {
        cf::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
        *ps_put_mod_next_flowlock_id(env) = LOOP_LOCK;
      }
      for (std::size_t i = 0; i < r.enabled.size(); ++i) enable_tail_processing(env, i ? 0x99 : FLOWHASH, r.enabled[i]);
      if (r.disable_span) disable_tail_processing(env, tail_proc_span);
      EXPECT_EQ(tail_state_of(env), r.after);
      EXPECT_EQ(*ps_get_tail_proc_enables(env), r.enables_after);
      EXPECT_EQ(is_tail_processing_enabled(env, tail_proc_netflow) == TRUE, (r.enables_after & tail_proc_netflow) != 0);
    });
  }
}

// The epilog of a tail that did not end its packet, read between packets:
// none of these rows ends a packet.
TEST(TailEpilog, HandsTheBufferBackToItsLoopOrLeavesItToTheNextPass) {
  struct row {
    const char* name;
    std::uint16_t tail_lock;
    std::uint32_t do_multipass;
    tail_state after;
  };
  const row rows[] = {
      {"the loop's lock back", LOOP_LOCK, 0, {0, 1, LOOP_LOCK, LOOP_LOCK}},
      {"a pass follows: the buffer stays", 0, 1, {1, 0, TAIL_LOCK, 0}},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    h.on_thread([&](env_t env) {
      clear_tail_state(env);
      common_flags_st& f = *ps_put_mod_common_flags(env);
      cf::tail_processing::set(f, 1);
      cf::keep_gpm::set(f, 1);
      cf::in_tail_processing::set(f, 1);
      cf::do_multipass::set(f, r.do_multipass);
      *ps_put_mod_next_flowlock_id(env) = TAIL_LOCK;
      *ps_put_mod_tail_flowlock_id(env) = r.tail_lock;
      tail_processing_epilog(env, tail_proc_nsh);
      EXPECT_EQ(tail_state_of(env), r.after);
      EXPECT_EQ(cf::in_tail_processing::get(*ps_get_common_flags(env)), 0u);
      EXPECT_EQ(*ps_get_tail_proc_enables(env), tail_proc_nsh);
    });
  }
}

// ---- the tail of real packets; every tail function is still unbuilt, and
// ends its packet by a kept drop while keep_gpm is set, else by a free ----

// A function without a form on the path does not run: the buffer is left to the epilog.
TEST(TailRun, OwedFunctionsRunInTheSidesOrderAndTheLastEndsThePacket) {
  struct row {
    const char* name;
    std::uint32_t funcs;
    void (*tail)(env_t);
    std::vector<unbuilt_handler_e> order;  // the functions that run, in order
  };
  const row rows[] = {
      {"ingress",
       tail_proc_netflow | tail_proc_span | tail_proc_multipass,
       tail_processing_ipv4_ing,
       {UNBUILT_span_process_ing, UNBUILT_process_netflow, UNBUILT_multipass_ing_tail_proc}},
      {"egress",
       tail_proc_l2_learn | tail_proc_netflow | tail_proc_li_rep__l2,
       tail_processing_vpls_egr,
       {UNBUILT_process_netflow, UNBUILT_process_send_mac_notify_egr, UNBUILT_li_replication__l2}},
      {"the L2 form of the ACL log comes late",
       tail_proc_acl_log_punt | tail_proc_li_rep__l2,
       tail_processing_vpls_ing,
       {UNBUILT_li_replication__l2, UNBUILT_punt_process_acl_ing_L2}},
      {"no L2 form of lawful intercept", tail_proc_li_rep__l3, tail_processing_vpls_ing, {}},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    testkit::npu_harness fresh;  // counts of each function from zero
    testkit::probe_vector(fresh, testkit::TEST_VECTOR, [&](env_t env) {
      enable_tail_processing(env, FLOWHASH, static_cast<tail_proc_func_e>(r.funcs));
      r.tail(env);
    });
    const model::packet_outcome o = fresh.one(testkit::line_packet());
    EXPECT_EQ(o.end, model::packet_end::freed);
    EXPECT_EQ(o.placeholder, r.order.empty() ? -1 : static_cast<std::int32_t>(r.order.back()))
        << "the last function ends the packet";
    for (unbuilt_handler_e f : r.order) EXPECT_EQ(fresh.npu().placeholder_count(f), 1u) << unbuilt_handler_name(f);
  }
}

}  // namespace
