// The global counter numbers, drop counters included, by name: one constant
// per row of global_counters.def, and for a block its first number and size.
#pragma once

#include <cstdint>

enum global_counter_e : std::uint32_t {
#define GLOBAL_COUNTER(name, number, meaning) name = number,
#define GLOBAL_COUNTER_RANGE(name, first, count, meaning) name = first,
#include "global_counters.def"
#undef GLOBAL_COUNTER
#undef GLOBAL_COUNTER_RANGE
};

#define GLOBAL_COUNTER(name, number, meaning)
#define GLOBAL_COUNTER_RANGE(name, first, count, meaning) inline constexpr std::uint32_t name##_COUNT = count;
#include "global_counters.def"
#undef GLOBAL_COUNTER
#undef GLOBAL_COUNTER_RANGE
