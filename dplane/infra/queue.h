// Index queues: rings of free table indices that the data plane hands out
// itself. The control block and the array stand in table memory and are
// shared by all threads; the count is taken with an atomic conditional
// subtract before a slot is taken, and slots with an atomic increment with
// wrap, so that the count never goes below zero and no two threads get the
// same slot.
#pragma once

#include <cstdint>

#include "be_types.h"
#include "fwc_types.h"

// The control block, 32 bytes in table memory.
struct q_index_q_st {
  be_u32 index_array;       // address of the array of free indices
  be_u32 index_array_size;  // entries in the array
  be_u32 pad1;
  be_u32 pad2;
  be_u32 free_count;
  be_u32 push_index;  // next slot to write
  be_u32 pop_index;   // next slot to read
  std::uint8_t oor_status;
  std::uint8_t pad3;
  be_u16 pad4;
};
static_assert(sizeof(q_index_q_st) == 32);

// The first 8 bytes of the control block, as ID_INDEX_Q_CONTROL reads them.
struct q_index_q_control_st {
  be_u32 index_array;
  be_u32 index_array_size;
};
static_assert(sizeof(q_index_q_control_st) == 8);

// The queues of the hash tables, one control block each.
inline constexpr memaddr_t HASH_INDEX_Q_BASE = 0x404ACA00;

// Writes the control block of a queue whose array holds `count` free
// indices from slot 0 on.
void q_index_q_init(env_t env, memaddr_t q, memaddr_t index_array, std::uint32_t index_array_size, std::uint32_t count);
// The next free index, or 0 when none is free.
std::uint32_t q_index_q_pop(env_t env, memaddr_t q);
void q_index_q_push(env_t env, memaddr_t q, std::uint32_t index);
// The same for an array in a memory that only takes 32-byte writes.
void q_index_q_push_32B(env_t env, memaddr_t q, std::uint32_t index);

std::uint32_t npu_index_q_pop(env_t env, std::uint32_t hash_tbl_id);
void npu_index_q_push(env_t env, std::uint32_t hash_tbl_id, std::uint32_t q_index);
