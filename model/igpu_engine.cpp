#include "igpu_engine.h"

#include <string_view>

namespace model {

std::size_t igpu_engine::key_hash::operator()(const key& k) const {
  return std::hash<std::string_view>{}({reinterpret_cast<const char*>(k.data()), k.size()});
}

std::optional<igpu_engine::result> igpu_engine::search(std::uint32_t reader, const key& k) const {
  read_mostly_lock::reader guard(lock_, reader);
  const auto it = entries_.find(k);
  if (it == entries_.end()) return std::nullopt;
  return it->second;
}

void igpu_engine::write_entry(const key& k, const result& r) {
  read_mostly_lock::writer guard(lock_);
  entries_[k] = r;
}

bool igpu_engine::delete_entry(const key& k) {
  read_mostly_lock::writer guard(lock_);
  return entries_.erase(k) != 0;
}

}  // namespace model
