// Shared helpers of the lookup tests: records in table memory, slots read
// back as bytes.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "ctrl/counters.h"
#include "ctrl/page_descriptors.h"
#include "ctrl/protected_records.h"
#include "dplane/infra/lookup.h"
#include "testkit/npu_harness.h"

namespace lt {

using record32 = std::array<std::uint8_t, 32>;
using record16 = std::array<std::uint8_t, 16>;

constexpr std::uint32_t GLB_CNT_SHADOW_READ = 0xB7;

// A record in a live state: its first bit, the coherency bit, is set.
inline record32 live_record(std::uint8_t fill) {
  record32 r;
  r.fill(fill);
  r[0] = static_cast<std::uint8_t>(0x80 | fill);
  return r;
}

template <class Rec>
std::array<std::uint8_t, sizeof(Rec)> bytes_of(const Rec& rec) {
  std::array<std::uint8_t, sizeof(Rec)> out;
  std::memcpy(out.data(), &rec, sizeof(Rec));
  return out;
}

inline std::uint32_t uidb_l3_ing_address(testkit::npu_harness& h, std::uint32_t index) {
  return *ctrl::paged_record_address(h.npu(), TPD_IDX_UIDB_L3_ING, index);
}

inline std::uint32_t port_config_address(std::uint32_t port) {
  return TABLE_BASE_PORT_CONFIG_ING + port * TABLE_STRIDE_PORT_CONFIG_ING;
}

inline std::uint64_t shadow_reads(testkit::npu_harness& h) { return h.tables().stats().global(GLB_CNT_SHADOW_READ); }

}  // namespace lt
