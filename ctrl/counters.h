// Reading the program's counters from the control side.
#pragma once

#include <cstdint>

#include "model/npu.h"

namespace ctrl {

class counters {
 public:
  explicit counters(model::npu& n) : n_(n) {}

  // Global counter `index`: an event count, or a drop count by reason.
  std::uint64_t global(std::uint32_t index) const;
  // A statistics entry by the 24-bit index the program counts it under. A
  // relative index (bit 23 set) names a counter that every thread counts in
  // its own replica; the four replicas, 0x4004 entries apart, are added.
  model::stats_entry entry(std::uint32_t index) const;

 private:
  model::npu& n_;
};

}  // namespace ctrl
