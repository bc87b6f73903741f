// Basic types shared by every part of the forwarding program.
#pragma once

#include <cstdint>

using boolean_t = std::uint32_t;  // 0 or 1
using memaddr_t = std::uint32_t;  // table-memory address
using lock_handle_t = std::uint32_t;

inline constexpr boolean_t FALSE = 0;
inline constexpr boolean_t TRUE = 1;

struct env_st;
using env_t = env_st*;

// What a function did with the packet: RC_SUCCESS lets the caller go on;
// the others tell it that the packet is finished, or how it is to be.
enum func_rc_e : std::uint32_t {
  RC_SUCCESS = 0,
  RC_PKT_DISPOSED = 1,
  RC_PKT_PUNT = 2,
  RC_PKT_DROP = 3,
  RC_FAIL = 4,
  RC_PKT_FWD_DONE = 5,
};
