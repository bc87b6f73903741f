#include "stats_memory.h"

#include <new>

namespace model {

stats_memory::stats_memory()
    : entries_(static_cast<std::uint64_t*>(std::calloc(2 * std::size_t{STATS_ENTRY_COUNT}, sizeof(std::uint64_t)))) {
  if (!entries_) throw std::bad_alloc();
}

bool stats_memory::contains(paddr_t addr) {
  const auto within = [addr](paddr_t base, std::uint32_t count) {
    return addr >= base && addr < base + paddr_t{count} * STATS_ENTRY_STRIDE;
  };
  return within(GLOBAL_COUNTER_BASE, GLOBAL_COUNTER_COUNT) || within(STATS_ENTRY_BASE, STATS_ENTRY_COUNT);
}

std::optional<std::uint32_t> stats_memory::global_index_at(paddr_t addr) {
  if (addr < GLOBAL_COUNTER_BASE || (addr - GLOBAL_COUNTER_BASE) % STATS_ENTRY_STRIDE != 0) return std::nullopt;
  const paddr_t index = (addr - GLOBAL_COUNTER_BASE) / STATS_ENTRY_STRIDE;
  if (index >= GLOBAL_COUNTER_COUNT) return std::nullopt;
  return static_cast<std::uint32_t>(index);
}

std::optional<std::uint32_t> stats_memory::entry_index_at(paddr_t addr) {
  if (addr < STATS_ENTRY_BASE || (addr - STATS_ENTRY_BASE) % STATS_ENTRY_STRIDE != 0) return std::nullopt;
  const paddr_t index = (addr - STATS_ENTRY_BASE) / STATS_ENTRY_STRIDE;
  if (index >= STATS_ENTRY_COUNT) return std::nullopt;
  return static_cast<std::uint32_t>(index);
}

void stats_memory::add(std::uint32_t entry, std::uint64_t count) {
  packets(entry).fetch_add(1, std::memory_order_relaxed);
  bytes(entry).fetch_add(count, std::memory_order_relaxed);
}

stats_entry stats_memory::entry(std::uint32_t index) const {
  if (index >= STATS_ENTRY_COUNT) return {};
  return {packets(index).load(std::memory_order_relaxed), bytes(index).load(std::memory_order_relaxed)};
}

stats_entry stats_memory::read_clear(std::uint32_t index) {
  return {packets(index).exchange(0), bytes(index).exchange(0)};
}

}  // namespace model
