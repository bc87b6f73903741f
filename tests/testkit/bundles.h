// Test bundles as the control side writes them (ctrl::bundles).
#pragma once

#include <cstdint>

#include "ctrl/bundles.h"

namespace testkit {

// Member i of a test bundle goes to VQI VQI_BASE + i and port PORT_BASE + i.
inline constexpr std::uint32_t VQI_BASE = 0x500;
inline constexpr std::uint16_t PORT_BASE = 100;

inline ctrl::bundle bundle_of(std::uint32_t members, bool local = true, bool truncate_hash = false) {
  ctrl::bundle b;
  b.name_id = 0x77;
  b.truncate_hash = truncate_hash;
  for (std::uint32_t i = 0; i < members; ++i) {
    b.members.push_back(
        {VQI_BASE + i, static_cast<std::uint16_t>(PORT_BASE + i), local, false, static_cast<std::uint8_t>(i)});
  }
  return b;
}

}  // namespace testkit
