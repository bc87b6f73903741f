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
