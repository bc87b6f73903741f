// The head allocator: blocks of 128 bytes from the buffer engine, the
// 384-byte limit, the per-feature areas and their limits, and a refusal.
#include <gtest/gtest.h>

#include <cstring>

#include "dplane/infra/drop.h"
#include "dplane/infra/ps.h"
#include "npu/zephra/pkt_mem_alloc.h"
#include "testkit/dispatch_probe.h"

namespace {

using cf = common_flags_st;
using counters = std::vector<std::uint32_t>;

// The thread's state as a packet of the given direction and handle would
// leave it, with no head blocks yet.
void as_packet(env_t env, bool ingress, std::uint32_t handle) {
  std::memset(env->dist_hdr, 0, sizeof env->dist_hdr);
  dist_hdr_line_st& hdr = *reinterpret_cast<dist_hdr_line_st*>(env->dist_hdr);
  dist_hdr_line_st::dst_format::set(hdr, ingress ? DST_FORMAT_LINE : DST_FORMAT_FABRIC);
  dist_hdr_line_st::gpm_pkt_handle::set(hdr, handle);
  *ps_put_mod_common_flags(env) = common_flags_st{};
}

std::uint32_t blocks(env_t env) { return cf::gpm_allocated::get(*ps_get_common_flags(env)); }

// The buffer engine checks each request's command, engine and segment: a
// wrong one for the direction or handle stops the test.
TEST(HeadAlloc, Of384TakesThreeBlocksOf385NothingAndASmallerOneNoMore) {
  for (const auto& [ingress, handle] : {std::pair(true, 1u), std::pair(false, 0x1FFFu)}) {
    SCOPED_TRACE(testing::Message() << "ingress " << ingress << " handle " << handle);
    testkit::npu_harness h;
    const auto requests = [&] { return h.npu().gpb().requests(); };
    h.on_thread([&](env_t env) {
      as_packet(env, ingress, handle);
      EXPECT_EQ(npu_alloc_packet_mem(env, 385), nullptr);
      EXPECT_EQ(npu_alloc_packet_mem(env, 0), nullptr);
      EXPECT_EQ(requests(), 0u);
      EXPECT_EQ(npu_alloc_packet_mem(env, 384), *ps_get_pkt_mem_start(env) - 384);
      EXPECT_EQ(blocks(env), 3u);
      EXPECT_EQ(requests(), 3u);
      EXPECT_EQ(npu_alloc_packet_mem_start(env), *ps_get_pkt_mem_start(env) - 384);
      EXPECT_EQ(npu_alloc_packet_mem_end(env), *ps_get_pkt_mem_start(env));
      EXPECT_EQ(npu_alloc_packet_mem(env, 129), *ps_get_pkt_mem_start(env) - 384)
          << "held blocks serve a smaller request";
      EXPECT_EQ(requests(), 3u);
    });
  }
}

// A feature's area below the packet memory, or a drop at the limits.
TEST(FeatureAreas, AreaOrDropAtTheLimits) {
  struct row {
    const char* name;
    packet_mem_feature feature;
    std::uint32_t size;
    std::uint32_t grants;    // the buffer engine's grants for the packet
    std::int32_t area;       // offset of the result from pkt_mem_start; 1 for none
    std::uint32_t blocks;    // head blocks held with the area
    std::uint64_t requests;  // blocks asked of the buffer engine
    counters drops;          // the packet's global counters
  };
  constexpr std::uint32_t ALL = 3;
  const row rows[] = {
      {"punt 96", PACKET_MEM_PUNT, 96, ALL, -96, 1, 1, {}},
      {"punt 97", PACKET_MEM_PUNT, 97, ALL, 1, 0, 0, {0x145}},
      {"li 80 takes two blocks", PACKET_MEM_LI, 80, ALL, -192, 2, 2, {}},
      {"li 81", PACKET_MEM_LI, 81, ALL, 1, 0, 0, {0x145}},
      {"tbpg 16", PACKET_MEM_TBPG, 16, ALL, -112, 1, 1, {}},
      {"tbpg 17", PACKET_MEM_TBPG, 17, ALL, 1, 0, 0, {0x145}},
      {"recycle refuses any size", PACKET_MEM_RECYCLE, 1, ALL, 1, 0, 0, {0x145}},
      {"invalid feature", PACKET_MEM_INVALID, 16, ALL, 1, 0, 0, {0x299}},
      {"size 0", PACKET_MEM_PUNT, 0, ALL, 1, 0, 0, {0x299}},
      {"li refused second block", PACKET_MEM_LI, 80, 1, 1, 0, 2, {0x299}},
  };
  for (const row& c : rows) {
    SCOPED_TRACE(c.name);
    testkit::npu_harness h;
    h.npu().gpb().limit_grants(c.grants);
    std::int32_t area_at = 1;
    std::uint32_t held = 0;
    testkit::probe_vector(h, testkit::TEST_VECTOR, [&](env_t env) {
      unsigned char* area = packet_mem_alloc(env, c.feature, c.size);
      if (!area) return;  // the allocator dropped the packet
      held = blocks(env);
      area_at = static_cast<std::int32_t>(area - *ps_get_pkt_mem_start(env));
      drop_packet_no_counter(env);
    });
    const model::packet_outcome o = h.one(testkit::line_packet());
    EXPECT_EQ(o.end, model::packet_end::freed);
    EXPECT_EQ(o.global_counters, c.drops);
    EXPECT_EQ(area_at, c.area);
    EXPECT_EQ(held, c.blocks);
    EXPECT_EQ(h.npu().gpb().requests(), c.requests);
  }
}

}  // namespace
