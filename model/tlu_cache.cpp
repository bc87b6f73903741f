#include "tlu_cache.h"

#include <algorithm>
#include <cstring>

namespace model {

void tlu_cache::set_strict(bool on) {
  std::lock_guard lock(mutex_);
  lines_.clear();
  strict_.store(on, std::memory_order_release);
}

const tlu_cache::line& tlu_cache::line_at(paddr_t line_addr) {
  auto [it, missed] = lines_.try_emplace(line_addr);
  if (missed) memory_.read(line_addr, it->second);
  return it->second;
}

void tlu_cache::read(paddr_t addr, std::span<std::uint8_t> out, bool allocate) {
  if (!allocate || !strict()) return memory_.read(addr, out);
  std::lock_guard lock(mutex_);
  std::size_t done = 0;
  while (done < out.size()) {
    const paddr_t a = (addr + done) & PADDR_MASK;
    const paddr_t in_line = a % LINE_BYTES;
    const std::size_t len = std::min<std::size_t>(out.size() - done, LINE_BYTES - in_line);
    std::memcpy(out.data() + done, line_at(a - in_line).data() + in_line, len);
    done += len;
  }
}

void tlu_cache::invalidate(paddr_t addr) {
  std::lock_guard lock(mutex_);
  lines_.erase((addr & PADDR_MASK) / LINE_BYTES * LINE_BYTES);
}

void tlu_cache::invalidate_range(paddr_t addr, std::size_t size) {
  if (!strict() || size == 0) return;
  const paddr_t first = (addr & PADDR_MASK) / LINE_BYTES;
  const paddr_t last = ((addr + size - 1) & PADDR_MASK) / LINE_BYTES;
  std::lock_guard lock(mutex_);
  for (paddr_t l = first; l <= last; ++l) lines_.erase(l * LINE_BYTES);
}

std::size_t tlu_cache::lines() const {
  std::lock_guard lock(mutex_);
  return lines_.size();
}

}  // namespace model
