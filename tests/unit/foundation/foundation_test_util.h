// Shared helpers of the foundation tests.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "dma_common.h"
#include "dplane/infra/ps.h"
#include "platform/shared/placeholder.h"
#include "testkit/dispatch_probe.h"
#include "testkit/npu_harness.h"

namespace ft {

using testkit::dist_hdr;
using dh = dist_hdr_line_st;
using cf = common_flags_st;
using cf2 = common_flags2_st;
using counters = std::vector<std::uint32_t>;

// Name of the unbuilt handler that ended the packet; empty if none did.
inline std::string reached(const model::packet_outcome& o) {
  const char* name = unbuilt_handler_name(static_cast<std::uint32_t>(o.placeholder));
  return name ? name : "";
}

struct expect_end {
  std::string handler;  // unbuilt handler reached, empty for none
  counters glb;         // global counters bumped while the packet was held
};

inline void expect_outcome(const model::packet_outcome& o, const expect_end& e) {
  EXPECT_EQ(o.end, model::packet_end::freed);
  EXPECT_EQ(reached(o), e.handler);
  EXPECT_EQ(o.global_counters, e.glb);
}

inline bool has_counter(const model::packet_outcome& o, std::uint32_t n) {
  return std::find(o.global_counters.begin(), o.global_counters.end(), n) != o.global_counters.end();
}

// Sets the global configuration register and lets the thread take it up, as
// it does at a packet boundary.
inline void apply_global_config(testkit::npu_harness& h, std::uint32_t cfg) {
  h.npu().set_global_config(cfg);
  h.on_thread([](env_t env) { dma_packet_send_wait(env); });
}

// The state a handler left behind, read on the thread after the packet ended.
inline common_flags_st flags_after(testkit::npu_harness& h) {
  common_flags_st f{};
  h.on_thread([&](env_t env) { f = *ps_get_common_flags(env); });
  return f;
}

inline std::uint32_t word_at(const void* p) {
  be_u32 w;
  std::copy_n(static_cast<const std::uint8_t*>(p), 4, w.b);
  return w.get();
}

}  // namespace ft
