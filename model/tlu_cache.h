// The TLU's cache in front of table memory. By default the model keeps no
// copies and every read sees memory. In strict mode it behaves as a real
// cache does toward a careless writer: a read with allocation fills 64-byte
// lines, later reads with allocation answer from the line, stale or not,
// until an invalidate of an address in the line drops it. A writer that
// forgets to invalidate is then caught by the reader seeing old data.
// Reads without allocation go past the cache to memory.
//
// Concurrency: `strict_` is an atomic flag read without a lock; the lines
// are guarded by `mutex_`, which is held for the whole of a line fill, so a
// line is never seen half filled. Table memory is read under the mutex; its
// own page locks are taken inside it, never the other way round.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>
#include <unordered_map>

#include "table_memory.h"

namespace model {

class tlu_cache {
 public:
  static constexpr paddr_t LINE_BYTES = 64;

  explicit tlu_cache(const table_memory& memory) : memory_(memory) {}

  void set_strict(bool on);
  bool strict() const { return strict_.load(std::memory_order_acquire); }

  // Reads out.size() bytes at addr; with `allocate`, through the cache.
  void read(paddr_t addr, std::span<std::uint8_t> out, bool allocate);
  // Drops the line that holds addr.
  void invalidate(paddr_t addr);
  // Drops every line that the range touches.
  void invalidate_range(paddr_t addr, std::size_t size);
  std::size_t lines() const;

 private:
  using line = std::array<std::uint8_t, LINE_BYTES>;
  const line& line_at(paddr_t line_addr);

  const table_memory& memory_;
  std::atomic<bool> strict_{false};
  mutable std::mutex mutex_;
  std::unordered_map<paddr_t, line> lines_;  // by line address
};

}  // namespace model
