// The drop core: the flow-export reason, the pass that a drop cancels, traced
// drops and the free request.
#include <gtest/gtest.h>

#include <array>

#include "dplane/infra/drop.h"
#include "dplane/infra/tail_proc.h"
#include "foundation_test_util.h"

namespace {

using namespace ft;

TEST(Drop, FlowExportKeepsTheFirstReasonOfASampledPacket) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    auto reset = [&](std::uint32_t sampled) {
      cf::nf_sampled::set(*ps_put_mod_common_flags(env), sampled);
      cf2::nf_drop_reason_set_or_nonsampled::set(*ps_put_mod_common_flags2(env), 0);
      *ps_put_mod_nf_status(env) = {};
    };
    reset(1);
    record_netflow_drop_reason(env, NF_DROP_REASON_ACL_DENY);
    record_netflow_drop_reason(env, NF_DROP_REASON_BAD_TTL);
    cf::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
    drop_packet(env, 0x100);                           // the drop's own reason comes later too
    EXPECT_EQ(ps_get_nf_status(env)->bytes[3], 0x81);  // fwdg_status drop (2), reason ACL deny (1)
    EXPECT_EQ(cf2::nf_drop_reason_set_or_nonsampled::get(*ps_get_common_flags2(env)), 1u);

    reset(0);
    record_netflow_drop_reason(env, NF_DROP_REASON_ACL_DENY);
    EXPECT_EQ(ps_get_nf_status(env)->bytes[3], 0);
    EXPECT_EQ(cf2::nf_drop_reason_set_or_nonsampled::get(*ps_get_common_flags2(env)), 0u);
  });
}

TEST(Drop, DropCancelsAQueuedPassOutsideTailProcessingOnly) {
  struct row {
    const char* name;
    std::uint32_t tail_processing, in_tail, enables;
    std::uint32_t enables_after, tail_processing_after;
  };
  const row rows[] = {
      {"pass and flow export queued", 1, 0, tail_proc_multipass | tail_proc_netflow, tail_proc_netflow, 1},
      {"inside tail processing", 1, 1, tail_proc_multipass, tail_proc_multipass, 1},
      {"no tail owed", 0, 0, tail_proc_multipass, tail_proc_multipass, 0},
      {"only the pass queued", 1, 0, tail_proc_multipass, 0, 0},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    h.on_thread([&](env_t env) {
      common_flags_st& f = *ps_put_mod_common_flags(env);
      f = {};
      cf::tail_processing::set(f, r.tail_processing);
      cf::in_tail_processing::set(f, r.in_tail);
      *ps_put_mod_tail_proc_enables(env) = r.enables;
      *ps_put_mod_tail_flowlock_id(env) = 0;
      check_multipass_drop(env);
      EXPECT_EQ(*ps_get_tail_proc_enables(env), r.enables_after);
      EXPECT_EQ(cf::tail_processing::get(*ps_get_common_flags(env)), r.tail_processing_after);
    });
  }
}

TEST(Drop, TracedDropCountsItsSideAndItsReason) {
  testkit::npu_harness h;
  apply_global_config(h, 1u << 14);
  // Fourth slot used, no match word: every line packet is traced.
  std::array<std::uint8_t, 32> entry{0xFF, 0xFF, 0xFF, 0x00};
  h.npu().memory().write(0x40342040, entry);
  EXPECT_EQ(h.one(dist_hdr::line(15).set<dh::logical_port>(3)).global_counters, (counters{3 + 16, 0x295, 96}));

  std::vector<std::uint8_t> frame(32, 0);
  frame[8] = 0x40;  // ptrace, type 0
  EXPECT_EQ(h.one(dist_hdr::fabric(), frame).global_counters, (counters{0x66, 0x294, 100}));
}

TEST(Drop, FreeRequestNamesTheSideAndTheBufferHandle) {
  struct row {
    const char* name;
    dist_hdr hdr;
    std::uint32_t word0;
  };
  const row rows[] = {
      {"line", dist_hdr::line(15), 0x00000C14},
      {"fabric", dist_hdr::fabric(), 0x00000C15},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    auto hdr = r.hdr;
    h.one(hdr.set<dh::gpm_pkt_handle>(0x1ABC).set<dh::igpb_queue>(0x7F), std::vector<std::uint8_t>(32, 0));
    h.on_thread([&](env_t env) {
      const be_u32* req = dma_cell_words(env, 0x20);
      EXPECT_EQ(req[0].get(), r.word0);
      EXPECT_EQ(req[1].get(), 0u);
      EXPECT_EQ(req[2].get(), 0x1ABCu << 16);
    });
  }
}

}  // namespace
