// The statistics engine's request and answer formats.
#pragma once

#include "be_types.h"

// The cell of a pair request: word 0 stands for the template's command (the
// entry's address), the byte count at byte 8.
struct stats_add_request_st {
  be_u32 address;
  be_u32 reserved;
  be_u32 count;
  be_u32 pad;
};
static_assert(sizeof(stats_add_request_st) == 16);

// A pair as the read-and-clear returns it: the low 32 bits of each count.
struct stats_counter_pair_st {
  be_u32 packets;
  be_u32 bytes;
};
static_assert(sizeof(stats_counter_pair_st) == 8);
