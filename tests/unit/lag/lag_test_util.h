// Bundles on a harness NPU: bundles written through ctrl/bundles, program
// code run on the NPU thread while it holds a packet, and the counters read
// through the control side.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "ctrl/counters.h"
#include "dplane/infra/drop.h"
#include "dplane/infra/ps.h"
#include "testkit/bundles.h"
#include "testkit/dispatch_probe.h"

namespace lag_test {

using testkit::bundle_of;
using testkit::PORT_BASE;
using testkit::VQI_BASE;

class BundleTest : public ::testing::Test {
 protected:
  void add(std::uint32_t bundle_id, const ctrl::bundle& b) {
    ASSERT_EQ(h.tables().lags().write(bundle_id, b), ctrl::error::none);
  }
  // Runs body on the NPU thread with a packet of these bytes; a body that
  // does not end the packet has it freed without a counter.
  model::packet_outcome run(const std::function<void(env_t)>& body, std::vector<std::uint8_t> bytes = {}) {
    testkit::probe_vector(h, testkit::TEST_VECTOR, [body](env_t env) {
      common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
      body(env);
      common_flags_st::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
      drop_packet_no_counter(env);
    });
    bytes.resize(std::max<std::size_t>(bytes.size(), 64));
    return h.one(testkit::line_packet(), std::move(bytes));
  }
  std::uint64_t counter(std::uint32_t index) { return h.tables().stats().global(index); }

  testkit::npu_harness h;
};

}  // namespace lag_test
