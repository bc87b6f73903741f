// A memory word of 4 or 8 bytes, stored big-endian as table memory and the
// engines' answers hold it.
#pragma once

#include <cstdint>

#include "be_types.h"

namespace model {

inline std::uint64_t load_word(const std::uint8_t* p, unsigned width) {
  if (width == sizeof(be_u64)) return reinterpret_cast<const be_u64*>(p)->get();
  return reinterpret_cast<const be_u32*>(p)->get();
}

inline void store_word(std::uint8_t* p, unsigned width, std::uint64_t v) {
  if (width == sizeof(be_u64)) return reinterpret_cast<be_u64*>(p)->set(v);
  reinterpret_cast<be_u32*>(p)->set(static_cast<std::uint32_t>(v));
}

}  // namespace model
