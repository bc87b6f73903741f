// Changing a protected record while threads read it. The record goes into
// the forward state (word 0 = 0, word 1 = the shadow's address, word 2 =
// 0x8BADF00D) after its old contents stand in a shadow copy, so a reader is
// sent to the shadow; the new contents are written with their first word
// last, which ends the forward state.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "model/npu.h"

namespace ctrl {

inline constexpr std::uint32_t PROTECTED_RECORD_BYTES = 32;
using protected_record = std::array<std::uint8_t, PROTECTED_RECORD_BYTES>;

// Shadow copies live in an area of their own, one 32-byte place each.
inline constexpr std::uint32_t SHADOW_AREA_BASE = 0x9F000000;
constexpr std::uint32_t shadow_address(std::uint32_t place) {
  return SHADOW_AREA_BASE + place * PROTECTED_RECORD_BYTES;
}

void enter_forward_state(model::npu& n, std::uint32_t record, std::uint32_t shadow);
void leave_forward_state(model::npu& n, std::uint32_t record, const protected_record& contents);

// Writes a whole record of any table: the first write of a record, or one
// that no thread reads yet.
void write_record(model::npu& n, std::uint32_t addr, std::span<const std::uint8_t> contents);

}  // namespace ctrl
