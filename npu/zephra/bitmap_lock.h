// Bitmap locks: one bit per lock in a shared memory area (zephra_locks), set
// by the TLU's atomic OR and cleared by its atomic AND. The bit is the whole
// lock: nothing records its owner, and a release clears the bit whoever
// holds it. The catalogue generates acquire_lock_ID_<name> and
// release_lock_ID_<name> over the functions below, with each lock's family
// bitmap (LOCK_BITMAP_<family>) and request cell.
#pragma once

#include <cstddef>
#include <cstdint>

#include "be_types.h"
#include "dplane/infra/lookup_ids.h"
#include "dplane/infra/lookup_tables.h"
#include "fwc_types.h"

// A thread holds at most this many bitmap locks.
inline constexpr std::uint32_t MAX_HELD_BITMAP_LOCKS = 9;
// A waiting acquire tries this often; a lock still taken then stops the thread.
inline constexpr std::uint32_t BITMAP_LOCK_TRIES = 50;
// What an acquire without waiting answers for a taken lock.
inline constexpr lock_handle_t BITMAP_LOCK_TAKEN = 0xFFFFFFFF;

// The memory of the bitmaps, one bit per lock number.
struct zp_default_bitmap_lock_st {
  be_u32 words[2048];
};
struct zp_global_bitmap_lock_st {
  be_u32 words[4];
};
struct zp_mac_bitmap_lock_st {
  be_u32 words[2048];
};
struct zp_entry_bitmap_lock_st {
  be_u32 words[2048];
};
struct zp_mbx_bitmap_lock_st {
  be_u32 words[512];
};
struct zp_bitmap_lock_st_ {
  zp_default_bitmap_lock_st default_lock;
  zp_global_bitmap_lock_st global_lock;
  zp_mac_bitmap_lock_st mac_lock;
  zp_entry_bitmap_lock_st entry_lock;
  zp_mbx_bitmap_lock_st mbx_lock;
};
static_assert(offsetof(zp_bitmap_lock_st_, default_lock) == 0);
static_assert(offsetof(zp_bitmap_lock_st_, global_lock) == LOCK_BITMAP_GLOBAL - LOCK_BITMAP_DEFAULT);
static_assert(offsetof(zp_bitmap_lock_st_, mac_lock) == LOCK_BITMAP_MAC - LOCK_BITMAP_DEFAULT);
static_assert(offsetof(zp_bitmap_lock_st_, entry_lock) == LOCK_BITMAP_ENTRY - LOCK_BITMAP_DEFAULT);
static_assert(offsetof(zp_bitmap_lock_st_, mbx_lock) == LOCK_BITMAP_MBX - LOCK_BITMAP_DEFAULT);
static_assert(sizeof(zp_default_bitmap_lock_st) * 8 == 1u << LOCK_BITS_DEFAULT);
static_assert(sizeof(zp_mac_bitmap_lock_st) * 8 == 1u << LOCK_BITS_MAC);
static_assert(sizeof(zp_entry_bitmap_lock_st) * 8 == 1u << LOCK_BITS_ENTRY);
static_assert(sizeof(zp_mbx_bitmap_lock_st) * 8 == 1u << LOCK_BITS_MBX);
static_assert(sizeof(zp_global_bitmap_lock_st) * 8 == 1u << LOCK_BITS_GLOBAL);

// The lock number of each family from the caller's identifier, within
// length_bitmap bits. The default family hashes the identifier; the global
// family's numbers are single bits of its first word, 1 << id.
std::uint32_t default_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap);
std::uint32_t global_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap);
std::uint32_t mac_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap);
std::uint32_t entry_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap);
std::uint32_t mbx_lock_bitmap_hash(std::uint32_t original_lock_id, std::uint32_t length_bitmap);

// The two requests, on resource 120: an OR of the lock's bit into its word,
// and an AND that clears it; both answer the word's old value at resp_loc.
void bitmap_lock_req(env_t env, std::uint32_t mmap_lock_bitmap_base, std::uint32_t lock_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc);
void bitmap_unlock_req(env_t env, std::uint32_t mmap_lock_bitmap_base, lock_handle_t lock_handle, std::uint32_t req_loc,
                       std::uint32_t resp_loc);

// Where a lock's requests go: its lookup, its family's bitmap, its cell.
struct bitmap_lock_place_st {
  lookup_id_e lookup_id;
  std::uint32_t bitmap_base;
  std::uint32_t cell;
};

// Takes lock_number: returns it, or BITMAP_LOCK_TAKEN when the lock is taken
// and wait is 0. A tenth lock, and a lock still taken after the tries of a
// waiting acquire, stop the thread.
lock_handle_t bitmap_lock_acquire(env_t env, const bitmap_lock_place_st& place, std::uint32_t lock_number,
                                  std::uint32_t wait);
// Gives a held lock back; a release with no lock held stops the thread.
void bitmap_lock_release(env_t env, const bitmap_lock_place_st& place, lock_handle_t lock_handle);
