#pragma once

#include <gtest/gtest.h>

#include "ctrl/counters.h"
#include "dplane/infra/lookup.h"
#include "testkit/npu_harness.h"

namespace st {

inline model::stats_entry entry(testkit::npu_harness& h, std::uint32_t index) {
  return h.tables().stats().entry(index);
}

}  // namespace st

namespace model {
inline void PrintTo(const stats_entry& e, std::ostream* os) { *os << "{" << e.packets << " packets, " << e.bytes << " bytes}"; }
}  // namespace model
