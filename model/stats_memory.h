// The statistics engine's memory: global event counters and packet/byte
// entries. Each entry keeps its packets and bytes as two 64-bit values.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace model {

inline constexpr std::uint32_t GLOBAL_COUNTER_BASE = 0x4AEA00;
inline constexpr std::uint32_t GLOBAL_COUNTER_COUNT = 1u << 13;
inline constexpr std::uint32_t STATS_ENTRY_BASE = 0x500000;
inline constexpr std::uint32_t STATS_ENTRY_STRIDE = 8;

struct stats_entry {
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
};

class stats_memory {
 public:
  void bump_global(std::uint32_t index) { globals_[index % GLOBAL_COUNTER_COUNT].fetch_add(1); }
  std::uint64_t global(std::uint32_t index) const { return globals_[index % GLOBAL_COUNTER_COUNT].load(); }

  void add(std::uint32_t entry, std::uint64_t bytes) {
    std::lock_guard lock(mutex_);
    stats_entry& e = entries_[entry];
    ++e.packets;
    e.bytes += bytes;
  }
  stats_entry entry(std::uint32_t index) const {
    std::lock_guard lock(mutex_);
    auto it = entries_.find(index);
    return it == entries_.end() ? stats_entry{} : it->second;
  }
  stats_entry read_clear(std::uint32_t index) {
    std::lock_guard lock(mutex_);
    stats_entry e = entries_[index];
    entries_[index] = {};
    return e;
  }

 private:
  std::array<std::atomic<std::uint64_t>, GLOBAL_COUNTER_COUNT> globals_{};
  mutable std::mutex mutex_;
  std::unordered_map<std::uint32_t, stats_entry> entries_;
};

}  // namespace model
