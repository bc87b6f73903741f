// Flow locks as the paths use them. A path sets next_flowlock_id first, then
// sends, drops or converts in keep form: the FLB lets packets that carry one
// lock number pass in the order they came to it, and packets of different
// numbers do not wait for one another. A non-keep send or drop ends the
// packet and with it its place in the order.
#pragma once

#include <cstdint>

#include "fwc_types.h"

// The lock number of `id` in `group` (npu_generate_flowlock).
std::uint16_t generate_flowlock(std::uint32_t group, std::uint32_t id);
// Converts the packet's lock to next_flowlock_id without touching the packet.
void simple_flowlock_convert(env_t env);
void flowlock_prepare(env_t env);
void flowlock_cleanup(env_t env);
