// The thread's list of lookups under coherency tracking: a lookup and the
// address it read. The forwarding paths take the address of a coherency
// re-read from their own request state and do not use it.
#pragma once

#include <cstdint>

#include "fwc_types.h"

// Empties the list, at context start.
void coherency_init(env_t env);
// Appends an entry; a full list takes no more.
void coherency_add_lookup(env_t env, std::uint32_t lookup_id, std::uint32_t addr);
// Removes the first entry of the lookup, moving the later ones down.
void coherency_delete_lookup(env_t env, std::uint32_t lookup_id);
// The address of the first entry of the lookup, or 0.
std::uint32_t coherency_find_lookup_addr(env_t env, std::uint32_t lookup_id);
