// Indexes of a table handed out lowest first and taken back when their
// entry goes, so that a freed index is the next one reused.
#pragma once

#include <cstdint>
#include <optional>
#include <set>

namespace ctrl {

class index_pool {
 public:
  // The indexes first to first + count - 1.
  index_pool(std::uint32_t first, std::uint32_t count) : first_(first), end_(first + count) {}

  std::optional<std::uint32_t> take();
  // The lowest free index at or past `from`.
  std::optional<std::uint32_t> lowest_free_from(std::uint32_t from) const;
  // False when the index is outside the pool or in use.
  bool take_at(std::uint32_t index);
  // False when the index is not in use.
  bool give(std::uint32_t index) { return used_.erase(index) == 1; }
  bool in_use(std::uint32_t index) const { return used_.count(index) == 1; }

 private:
  std::uint32_t first_;
  std::uint32_t end_;
  std::set<std::uint32_t> used_;
};

}  // namespace ctrl
