// The statistics engine's memory: global event counters and packet/byte
// entries. The program reaches them by physical address (global counter n at
// 0x4AEA00 + n * 8, entry n at 0x500000 + n * 8); the model keeps each entry
// as two 64-bit counts, which the control side reads whole.
//
// Concurrency: every count is an atomic word, so updates from any thread need
// no lock. read_clear exchanges the two counts of an entry one after the
// other: a packet counted between the two exchanges shows in the next read,
// and nothing counted is lost.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

#include "table_memory.h"

namespace model {

inline constexpr std::uint32_t GLOBAL_COUNTER_BASE = 0x4AEA00;
inline constexpr std::uint32_t GLOBAL_COUNTER_COUNT = 1u << 13;
inline constexpr std::uint32_t STATS_ENTRY_BASE = 0x500000;
inline constexpr std::uint32_t STATS_ENTRY_STRIDE = 8;
inline constexpr std::uint32_t STATS_ENTRY_COUNT = 1u << 20;

struct stats_entry {
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
  bool operator==(const stats_entry&) const = default;
};

class stats_memory {
 public:
  stats_memory();

  // Whether a physical address lies in statistics memory.
  static bool contains(paddr_t addr);
  // The counter a physical address names, if it names one.
  static std::optional<std::uint32_t> global_index_at(paddr_t addr);
  static std::optional<std::uint32_t> entry_index_at(paddr_t addr);

  // Indexes must lie below GLOBAL_COUNTER_COUNT and STATS_ENTRY_COUNT.
  void bump_global(std::uint32_t index) { globals_[index].fetch_add(1, std::memory_order_relaxed); }
  std::uint64_t global(std::uint32_t index) const {
    return index < GLOBAL_COUNTER_COUNT ? globals_[index].load(std::memory_order_relaxed) : 0;
  }
  std::uint64_t read_clear_global(std::uint32_t index) { return globals_[index].exchange(0); }

  // Counts one packet of `bytes` bytes.
  void add(std::uint32_t entry, std::uint64_t bytes);
  stats_entry entry(std::uint32_t index) const;
  stats_entry read_clear(std::uint32_t index);

 private:
  struct free_delete {
    void operator()(std::uint64_t* p) const { std::free(p); }
  };
  std::atomic_ref<std::uint64_t> packets(std::uint32_t index) const { return std::atomic_ref(entries_[2 * index]); }
  std::atomic_ref<std::uint64_t> bytes(std::uint32_t index) const { return std::atomic_ref(entries_[2 * index + 1]); }

  std::array<std::atomic<std::uint64_t>, GLOBAL_COUNTER_COUNT> globals_{};
  // Zeroed pages from the system, touched only where counted.
  std::unique_ptr<std::uint64_t[], free_delete> entries_;
};

}  // namespace model
