// The handlers that the packet loop reaches by name (handlers.def), built or
// placeholder, and the types their parameters use.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "placeholder.h"

// Paths of the protocol bodies that the exception handlers enter.
enum ipv4_ing_path_e : std::uint32_t { IPV4_ING_PATH_MAIN = 0 };
enum ipv6_ing_path_e : std::uint32_t { IPV6_ING_PATH_MAIN = 0 };
enum mpls_ing_path_e : std::uint32_t { MPLS_ING_PATH_MAIN = 0 };
enum ipm4_ing_path_e : std::uint32_t { IPM4_ING_REG = 0 };
enum ipm6_ing_path_e : std::uint32_t { IPM6_ING_REG = 0 };

// What a copy of an inline replication must keep (special_inline_state_e).
enum special_inline_state_e : std::uint32_t {
  REP_STATE_HEADER_OVERWRITE = 1,
  REP_STATE_GPM_ALLOCATED = 2,
  REP_STATE_UNUSED_15 = 32768,
};

#define HANDLER(name, state, ret, params) ret name params;
#include "handlers.def"
#undef HANDLER
