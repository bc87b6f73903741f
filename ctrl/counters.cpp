#include "counters.h"

#include "npu/zephra/stats.h"

namespace ctrl {

std::uint64_t read_global_counter(model::npu& n, std::uint32_t index) { return n.stats().global(index); }

model::stats_entry read_stats_entry(model::npu& n, std::uint32_t index) {
  if (!(index & STATS_RELATIVE_INDEX)) return n.stats().entry(index);
  model::stats_entry sum;
  for (std::uint32_t replica = 0; replica < STATS_REPLICAS; ++replica) {
    const model::stats_entry e = n.stats().entry((index & STATS_RELATIVE_MASK) + replica * STATS_REPLICA_STRIDE);
    sum.packets += e.packets;
    sum.bytes += e.bytes;
  }
  return sum;
}

}  // namespace ctrl
