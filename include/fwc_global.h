// Global configuration blocks.
#pragma once

#include "be_types.h"

// The packet-trace filter: up to four ports and three masked match words.
struct global_pkt_trace_entry_st {
  std::uint8_t np_port1;
  std::uint8_t np_port2;
  std::uint8_t np_port3;
  std::uint8_t np_port4;
  std::uint8_t offset1;
  std::uint8_t offset2;
  std::uint8_t offset3;
  std::uint8_t spare;
  be_u32 value1;
  be_u32 mask1;
  be_u32 value2;
  be_u32 mask2;
  be_u32 value3;
  be_u32 mask3;
};
static_assert(sizeof(global_pkt_trace_entry_st) == 32);

inline constexpr std::uint8_t PKT_TRACE_EMPTY_PORT = 0xFF;
