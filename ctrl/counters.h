// Reading the program's counters from the control side.
#pragma once

#include <cstdint>

#include "model/npu.h"

namespace ctrl {

// Global counter n: an event count, or a drop count by reason.
std::uint64_t read_global_counter(model::npu& n, std::uint32_t index);

// A statistics entry by the 24-bit index the program counts it under. A
// relative index (bit 23 set) names a counter that every thread counts in
// its own replica; the four replicas, 0x4004 entries apart, are added.
model::stats_entry read_stats_entry(model::npu& n, std::uint32_t index);

}  // namespace ctrl
