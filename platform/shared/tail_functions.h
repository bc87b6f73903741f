// The tail functions that the fixed orders of tail processing call (tail_functions.def).
#pragma once

#include <cstdint>

#include "fwc_types.h"

#define TAIL_FUNCTION(name, state) void name(env_t env, std::uint32_t funcs);
#include "tail_functions.def"
#undef TAIL_FUNCTION
