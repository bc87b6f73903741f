// Process-wide table of lookup request cells and result slots, for a debugger.
#pragma once

#include "fwc_types.h"

void lookup_dbg_initialize(env_t env);
