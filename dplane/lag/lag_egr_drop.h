// Dropping a packet whose egress bundle member failed, per egress path
// (lag_egr_drop_kinds.def), with the counter that base_egr_lag_process
// reported. Each ends the packet and gives RC_PKT_DROP.
#pragma once

#include <cstdint>

#include "fwc_types.h"

#define LAG_EGR_DROP_KIND(kind, drop) func_rc_e l3_egr_lag_drop_##kind(env_t env, std::uint32_t drop_counter_index);
#include "lag_egr_drop_kinds.def"
#undef LAG_EGR_DROP_KIND
