#include "counters.h"

#include "npu/zephra/stats.h"

namespace ctrl {

std::uint64_t counters::global(std::uint32_t index) const { return n_.stats().global(index); }

model::stats_entry counters::entry(std::uint32_t index) const {
  if (!(index & STATS_RELATIVE_INDEX)) return n_.stats().entry(index);
  model::stats_entry sum;
  for (std::uint32_t replica = 0; replica < STATS_REPLICAS; ++replica) {
    const model::stats_entry e = n_.stats().entry((index & STATS_RELATIVE_MASK) + replica * STATS_REPLICA_STRIDE);
    sum.packets += e.packets;
    sum.bytes += e.bytes;
  }
  return sum;
}

}  // namespace ctrl
