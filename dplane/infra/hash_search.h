// The search of the exact-key tables, in three parts that a path spreads over
// its body so that the reads overlap with its other work:
//   part 1  hash the key, ask for the home bucket
//   part 2  look at the bucket (and its chain), ask for the entry whose
//           signature fits
//   part 3  compare the entry's table id and key; on a mismatch go on from
//           the next entry
// The catalogue generates, per table and tag, the lookups <T>_BUCKET_0,
// _BUCKET_1, _BUCKET, _KEY, _RES and hash_search_part_N_ID_<T>, which call
// these with the table's description and its cells. The search of a table
// that the data plane writes keeps where it stands for the write operations:
// its context must be the search_ctx of a hash_manage_context_st.
#pragma once

#include <cstdint>

#include "dplane/infra/hash.h"
#include "dplane/infra/lookup_support.h"
#include "fwc_hash.h"

// A search row of the catalogue: the table and where its reads land.
struct hash_search_desc_st {
  lookup_hash_table_st table;
  lookup_id_e bucket_0;  // the home bucket's read
  lookup_id_e bucket_1;  // a chained bucket's read, into the same cell
  lookup_id_e bucket;    // the bucket in its cell
  lookup_id_e key;       // the entry's table id and key
  lookup_id_e res;       // the entry's result
  std::uint32_t bucket_cell;
  std::uint32_t key_cell;
  std::uint32_t key_read_bytes;  // the entry from byte 0 through the key, in 16-byte units
  std::uint32_t res_cell;
};

// Bucket `num` mod `denom` from bucket `index` of the table's space.
void hash_request_bucket_0(env_t env, const hash_search_desc_st& d, std::uint32_t index, std::uint32_t num,
                           std::uint32_t denom);
// The bucket at bucket_addr.
void hash_request_bucket_1(env_t env, const hash_search_desc_st& d, memaddr_t bucket_addr);
void hash_request_key(env_t env, const hash_search_desc_st& d, memaddr_t entry_addr);
void hash_request_result(env_t env, const hash_search_desc_st& d, memaddr_t entry_addr);
// `owner` is the read that filled the bucket cell.
hash_search_bucket_st* hash_result_bucket(env_t env, const hash_search_desc_st& d, lookup_id_e owner);
hash_search_key_st* hash_result_key(env_t env, const hash_search_desc_st& d);
std::uint8_t* hash_result(env_t env, const hash_search_desc_st& d, std::uint32_t bytes);

void hash_search_part_1(env_t env, const hash_search_desc_st& d, void* key, hash_search_context_st* context);
// Part 1 in the space whose first bucket the caller gives, 32-byte groups of
// two buckets: the remainder comes from the TLU, the bucket is read without
// cache allocation, and a bucket of odd number has its group's first bucket
// as prev_bucket_addr.
void hash_search_part_1_base_addr(env_t env, const hash_search_desc_st& d, void* key, hash_search_context_st* context,
                                  memaddr_t base_addr);
// Part 1 of a writer: the home bucket's lock first, by the bucket's address
// in the lock's family, then the read as above. Returns the lock's handle,
// or BITMAP_LOCK_TAKEN when the lock was taken and not waited for: then no
// bucket was asked for, and the writer must not go to part 2.
struct hash_bucket_lock_st {
  lock_handle_t (*acquire)(env_t env, std::uint32_t lock_id, std::uint32_t wait);
  std::uint32_t blocking;
};
lock_handle_t hash_search_part_1_lock_base_addr(env_t env, const hash_search_desc_st& d, void* key,
                                                hash_search_context_st* context, memaddr_t base_addr,
                                                const hash_bucket_lock_st& lock);
void hash_search_part_2(env_t env, const hash_search_desc_st& d, void* key, hash_search_context_st* context);
// Part 2 from entry bucket_entry_index of the bucket in the cell, through the chain.
void hash_search_part_2_from(env_t env, const hash_search_desc_st& d, hash_search_context_st* context);
hash_search_rc_t hash_search_part_3(env_t env, const hash_search_desc_st& d, void* key,
                                    hash_search_context_st* context);
// The compare loop of part 3: on a mismatch, part 2 from the next entry.
hash_search_rc_t hash_search_part_3_multiple_entry(env_t env, const hash_search_desc_st& d, void* key,
                                                   hash_search_context_st* context);
