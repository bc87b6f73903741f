// A handler of the tests in the ingress table: a line packet with vector 0
// runs the test's body on the NPU thread while the thread holds the packet.
// The body must end the packet, as every handler does.
#pragma once

#include <functional>

#include "platform/varn/entry_points.h"
#include "testkit/npu_harness.h"

namespace testkit {

inline std::function<void(env_t)>& test_body() {
  static std::function<void(env_t)> body;
  return body;
}

inline void test_handler(env_t env, boolean_t) { test_body()(env); }

// Puts the test handler at vector 0 of NPU 0's threads (the table is shared
// by all threads and filled when they start).
inline void install_test_handler(npu_harness& h, std::function<void(env_t)> body) {
  test_body() = std::move(body);
  h.on_thread([](env_t) { ing_ep.entry_point[0] = &test_handler; });
}

// A line packet of the ingress buffer with a valid vector 0 and this handle.
inline dist_hdr line_packet(std::uint32_t handle = 1) {
  return dist_hdr::line(0).set<dist_hdr_line_st::gpm_pkt_handle>(handle).set<dist_hdr_line_st::pktlen>(64);
}

}  // namespace testkit
