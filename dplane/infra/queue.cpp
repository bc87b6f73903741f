#include "queue.h"

#include <cstddef>
#include <cstring>

#include "dma_common.h"
#include "lookup.h"

namespace {

// The queue's own requests, beside the slots of ID_INDEX_Q_CONTROL__INDEXQ
// (0x3B0) and ID_INDEX_Q__INDEXQ (0x3E0).
constexpr std::uint32_t QUEUE_COUNT_CELL = 0x3A0;  // count, and 40-byte writes of a group
constexpr std::uint32_t QUEUE_SLOT_CELL = 0x3C0;   // 24-byte increment with wrap
constexpr std::uint32_t ENTRY_BYTES = 4;
constexpr std::uint32_t GROUP_BYTES = 32;
constexpr std::uint32_t GROUP_ENTRIES = GROUP_BYTES / ENTRY_BYTES;
constexpr dma_write_opts_st LANDED_AND_INVALIDATED = {FALSE, TRUE, TRUE};

constexpr memaddr_t field_addr(memaddr_t q, std::size_t offset) { return q + static_cast<memaddr_t>(offset); }

q_index_q_control_st read_control(env_t env, memaddr_t q) {
  lookup_request_ID_INDEX_Q_CONTROL__INDEXQ(env, q);
  lookup_wait_ID_INDEX_Q_CONTROL__INDEXQ(env);
  return *lookup_result_ID_INDEX_Q_CONTROL__INDEXQ(env);
}

struct physical_addr {
  std::uint32_t hi;
  std::uint32_t lo;
};

physical_addr translate(env_t env, memaddr_t vaddr) {
  physical_addr p{};
  dma_tmu_lpa(env, vaddr, RES_TLU_DIV, QUEUE_SLOT_CELL, &p.hi, &p.lo);
  return p;
}

// The old value of the ring index at p, which moves on by one with wrap.
std::uint32_t take_slot(env_t env, physical_addr p, std::uint32_t wrap) {
  dma_incr_wrap_4B_p(env, wrap, 0, p.hi, p.lo, QUEUE_SLOT_CELL, QUEUE_SLOT_CELL, TRUE);
  return dma_cell_words(env, QUEUE_SLOT_CELL)[0].get();
}

// The array is written before the count grows, so that a popper never sees
// a count ahead of the array.
void count_pushed(env_t env, memaddr_t q) {
  dma_tlu_incr_4B(env, field_addr(q, offsetof(q_index_q_st, free_count)), QUEUE_COUNT_CELL);
}

std::uint32_t take_push_slot(env_t env, memaddr_t q, const q_index_q_control_st& control) {
  return take_slot(env, translate(env, field_addr(q, offsetof(q_index_q_st, push_index))), control.index_array_size);
}

}  // namespace

void q_index_q_init(env_t env, memaddr_t q, memaddr_t index_array, std::uint32_t index_array_size,
                    std::uint32_t count) {
  q_index_q_st block{};
  block.index_array = index_array;
  block.index_array_size = index_array_size;
  block.free_count = count;
  block.push_index = index_array_size ? count % index_array_size : 0;
  dma_write_32B(env, q, RES_TLU_LONG_WRITE, reinterpret_cast<const std::uint8_t*>(&block), QUEUE_COUNT_CELL,
                QUEUE_COUNT_CELL, LANDED_AND_INVALIDATED);
}

std::uint32_t q_index_q_pop(env_t env, memaddr_t q) {
  dma_tlu_condsub_4B(env, field_addr(q, offsetof(q_index_q_st, free_count)), 1, QUEUE_COUNT_CELL, QUEUE_COUNT_CELL);
  const q_index_q_control_st control = read_control(env, q);
  const physical_addr pop_index = translate(env, field_addr(q, offsetof(q_index_q_st, pop_index)));
  if (dma_cell_words(env, QUEUE_COUNT_CELL)[0].get() == 0) return 0;
  const std::uint32_t slot = take_slot(env, pop_index, control.index_array_size);
  lookup_request_ID_INDEX_Q__INDEXQ(env, control.index_array + slot * ENTRY_BYTES);
  lookup_wait_ID_INDEX_Q__INDEXQ(env);
  return lookup_result_ID_INDEX_Q__INDEXQ(env)->get();
}

void q_index_q_push(env_t env, memaddr_t q, std::uint32_t index) {
  const q_index_q_control_st control = read_control(env, q);
  const std::uint32_t slot = take_push_slot(env, q, control);
  dma_write_4B(env, control.index_array + slot * ENTRY_BYTES, RES_TLU_LONG_WRITE, index, QUEUE_COUNT_CELL,
               QUEUE_COUNT_CELL, LANDED_AND_INVALIDATED);
  count_pushed(env, q);
}

void q_index_q_push_32B(env_t env, memaddr_t q, std::uint32_t index) {
  const q_index_q_control_st control = read_control(env, q);
  const std::uint32_t slot = take_push_slot(env, q, control);
  const memaddr_t group = control.index_array + slot / GROUP_ENTRIES * GROUP_BYTES;
  dma_read_32B(env, group, RES_TLU_LONG, QUEUE_COUNT_CELL, QUEUE_COUNT_CELL);
  be_u32 entries[GROUP_ENTRIES];
  std::memcpy(entries, dma_cell_words(env, QUEUE_COUNT_CELL), sizeof entries);
  entries[slot % GROUP_ENTRIES] = index;
  dma_write_32B(env, group, RES_TLU_LONG_WRITE, reinterpret_cast<const std::uint8_t*>(entries), QUEUE_COUNT_CELL,
                QUEUE_COUNT_CELL, LANDED_AND_INVALIDATED);
  count_pushed(env, q);
}

std::uint32_t npu_index_q_pop(env_t env, std::uint32_t hash_tbl_id) {
  return q_index_q_pop(env, HASH_INDEX_Q_BASE + hash_tbl_id * sizeof(q_index_q_st));
}

void npu_index_q_push(env_t env, std::uint32_t hash_tbl_id, std::uint32_t q_index) {
  q_index_q_push_32B(env, HASH_INDEX_Q_BASE + hash_tbl_id * sizeof(q_index_q_st), q_index);
}
