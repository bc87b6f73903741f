#include "index_pool.h"

#include <algorithm>

namespace ctrl {

std::optional<std::uint32_t> index_pool::take() {
  const std::optional<std::uint32_t> index = lowest_free_from(first_);
  if (index) used_.insert(*index);
  return index;
}

std::optional<std::uint32_t> index_pool::lowest_free_from(std::uint32_t from) const {
  std::uint32_t index = std::max(from, first_);
  for (auto it = used_.lower_bound(index); it != used_.end() && *it == index; ++it) ++index;
  if (index >= end_) return std::nullopt;
  return index;
}

bool index_pool::take_at(std::uint32_t index) {
  if (index < first_ || index >= end_) return false;
  return used_.insert(index).second;
}

}  // namespace ctrl
