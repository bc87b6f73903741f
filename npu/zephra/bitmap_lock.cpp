#include "bitmap_lock.h"

#include "arch_tie.h"
#include "dma_common.h"
#include "dplane/infra/lookup_dbg.h"
#include "dplane/infra/ps.h"
#include "hash_fns.h"

namespace {

constexpr std::uint32_t LOCK_REQUEST_BYTES = 16;
constexpr std::uint32_t LOCK_RESPONSE_BYTES = 8;
constexpr std::uint32_t LOCK_OP_OR = mem_req_word0(0, MEM_OP_OR, true, true);
constexpr std::uint32_t LOCK_OP_AND = mem_req_word0(0, MEM_OP_AND, true, true);
static_assert(LOCK_OP_OR == 0x000F03CE && LOCK_OP_AND == 0x000F03C8);

constexpr std::uint32_t low_bits(std::uint32_t v, std::uint32_t bits) { return v & ((1u << bits) - 1); }
constexpr std::uint32_t word_address(std::uint32_t base, std::uint32_t lock) { return base + ((lock & ~31u) >> 3); }
constexpr std::uint32_t bit_of(std::uint32_t lock) { return 1u << (lock & 31); }

// One long TLU command: the operation on the lock's word, with its operand.
void lock_word_request(env_t env, std::uint32_t base, std::uint32_t lock, std::uint32_t op, std::uint32_t operand,
                       std::uint32_t req_loc, std::uint32_t resp_loc) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = TLU_CMD_ERC3;
  w[1] = word_address(base, lock);
  w[2] = op;
  w[3] = operand;
  dma_initiate(env, dma_build_cmd(RES_TLU_LONG, req_loc, LOCK_REQUEST_BYTES, resp_loc, LOCK_RESPONSE_BYTES));
}

std::uint32_t old_word(env_t env, std::uint32_t resp_loc) { return dma_cell_words(env, resp_loc)[0].get(); }

}  // namespace

std::uint32_t default_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap) {
  be_u32 key;
  key = original_lock_id;
  return low_bits(hash_32b_to_32b(key.b), length_bitmap);
}

std::uint32_t global_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap) {
  return low_bits(1u << (original_lock_id & 31), length_bitmap);
}

std::uint32_t mac_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap) {
  return low_bits(original_lock_id, length_bitmap);
}

std::uint32_t entry_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap) {
  return low_bits(original_lock_id, length_bitmap);
}

std::uint32_t mbx_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap) {
  return low_bits(original_lock_id, length_bitmap);
}

void bitmap_lock_req(env_t env, std::uint32_t mmap_lock_bitmap_base, std::uint32_t lock_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc) {
  lock_word_request(env, mmap_lock_bitmap_base, lock_id, LOCK_OP_OR, bit_of(lock_id), req_loc, resp_loc);
}

void bitmap_unlock_req(env_t env, std::uint32_t mmap_lock_bitmap_base, lock_handle_t lock_handle, std::uint32_t req_loc,
                       std::uint32_t resp_loc) {
  lock_word_request(env, mmap_lock_bitmap_base, lock_handle, LOCK_OP_AND, ~bit_of(lock_handle), req_loc, resp_loc);
}

// The lock number is computed once, before the tries.
lock_handle_t bitmap_lock_acquire(env_t env, const bitmap_lock_place_st& place, std::uint32_t lock_number,
                                  std::uint32_t wait) {
  std::uint32_t& held = *ps_put_mod_thread_lock_counter(env);
  if (held + 1 > MAX_HELD_BITMAP_LOCKS) power_trap("a thread took a tenth bitmap lock");
  for (std::uint32_t tries = 0; tries < BITMAP_LOCK_TRIES; ++tries) {
    lookup_dbg_note_request(env, place.lookup_id, place.cell, LOCK_REQUEST_BYTES, place.cell, 0);
    bitmap_lock_req(env, place.bitmap_base, lock_number, place.cell, place.cell);
    if (!(old_word(env, place.cell) & bit_of(lock_number))) {
      held += 1;
      return lock_number;
    }
    if (!wait) return BITMAP_LOCK_TAKEN;
  }
  power_trap("a bitmap lock stayed taken for 50 tries");
}

void bitmap_lock_release(env_t env, const bitmap_lock_place_st& place, lock_handle_t lock_handle) {
  std::uint32_t& held = *ps_put_mod_thread_lock_counter(env);
  if (held == 0) power_trap("a bitmap lock released with none held");
  lookup_dbg_note_request(env, place.lookup_id, place.cell, LOCK_REQUEST_BYTES, place.cell, 0);
  bitmap_unlock_req(env, place.bitmap_base, lock_handle, place.cell, place.cell);
  old_word(env, place.cell);  // the response says that the bit is clear
  held -= 1;
}
