// The tail functions that later work builds (unbuilt_tail_functions.def).
#pragma once

#include <cstdint>

#include "fwc_types.h"

#define UNBUILT(name) void name(env_t env, std::uint32_t funcs);
#include "unbuilt_tail_functions.def"
#undef UNBUILT
