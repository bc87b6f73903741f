#include "hash_search.h"

#include <algorithm>
#include <cstring>

#include "dplane/infra/util.h"
#include "npu/zephra/hash_fns.h"
#include "npu/zephra/tlu.h"

namespace {

using bucket_t = hash_search_bucket_st;

constexpr std::uint32_t SIGNATURE_SHIFT = 24;
// A chained bucket is read through the bucket template at its own address.
constexpr std::uint32_t BY_ADDRESS_NUM = 0;
constexpr std::uint32_t BY_ADDRESS_DENOM = 1;
constexpr std::uint32_t READ_16B = 16;
constexpr std::uint32_t READ_32B = 32;
// The modulus of the caller's space: request at 0x020, answer at 0. The
// first 64 bytes of data memory are put back behind it.
constexpr std::uint32_t MOD_REQ_CELL = 0x020;
constexpr std::uint32_t MOD_RESP_CELL = 0x000;
constexpr std::uint32_t MOD_BORROWED_BYTES = 64;

void read_by_address(memaddr_t addr, std::uint32_t loc, std::uint32_t bytes) {
  qrsc(bytes == READ_32B ? RTT_TLU_READ_32B : RTT_TLU_READ_16B, addr, loc, loc);
}

void set_rc(hash_search_context_st* context, hash_search_rc_t rc) { context->rc = rc; }

// A table that the data plane writes keeps where its search stands, for the
// write operations: its context is the first member of a management context.
hash_ext_fields_st& ext_of(hash_search_context_st* context) {
  return reinterpret_cast<hash_manage_context_st*>(context)->ext;
}

// Entries of a bucket; a chained bucket keeps its third slot for the link.
std::uint32_t entries_of(const bucket_t& b) {
  const std::uint32_t count = bucket_t::bucket_entry_count::get(b);
  return bucket_t::bucket_chained::get(b) ? std::min(count, HASH_CHAINED_BUCKET_ENTRIES) : count;
}

bool in_motion(const bucket_t& b, std::uint32_t i) { return (bucket_t::entry_swap_bitmap::get(b) >> i) & 1; }

// Steps 3 to 5 of part 2: the first entry from `first` on whose signature
// fits and which is not being moved, through the chain.
void scan_chain(env_t env, const hash_search_desc_st& d, hash_search_context_st* context, const bucket_t* b,
                std::uint32_t first) {
  for (;;) {
    for (std::uint32_t i = first; i < entries_of(*b); ++i) {
      if (b->bucket_hash_value[i] != context->bucket_hash_value.get() || in_motion(*b, i)) continue;
      hash_request_key(env, d, b->hash_entry_addr[i]);
      hash_request_result(env, d, b->hash_entry_addr[i]);
      context->bucket_entry_index = i;
      return set_rc(context, HASH_SEARCH_RC_MATCH);
    }
    if (!bucket_t::bucket_chained::get(*b)) return set_rc(context, HASH_SEARCH_RC_NO_MATCH);
    const memaddr_t next = bucket_t::chained_bucket_addr::get(*b);
    if (d.table.data_plane_writes) {
      hash_ext_fields_st& ext = ext_of(context);
      ext.prev_bucket_addr = ext.bucket_addr.get();
      ext.bucket_addr = next;
    }
    hash_request_bucket_1(env, d, next);
    b = hash_result_bucket(env, d, d.bucket_1);
    first = 0;
  }
}

// The single-entry layout: the lone entry's key stands in the bucket, so
// only its result is read.
void match_single_entry(env_t env, const hash_search_desc_st& d, const void* key, hash_search_context_st* context,
                        const bucket_t& b) {
  hash_request_result(env, d, bucket_t::single_hash_entry_addr::get(b));
  const bool same =
      bucket_t::hash_tbl_id::get(b) == d.table.hash_tbl_id && compare_8B(bucket_t::key_single_elt::data(b), key);
  set_rc(context, same ? HASH_SEARCH_RC_MATCH_NO_KEY_COMPARE : HASH_SEARCH_RC_NO_MATCH_INTERNAL_KEY_COMPARE);
}

}  // namespace

void hash_request_bucket_0(env_t env, const hash_search_desc_st& d, std::uint32_t index, std::uint32_t num,
                           std::uint32_t denom) {
  lookup_dbg_note_request(env, d.bucket_0, d.bucket_cell, HASH_BUCKET_BYTES, d.bucket_cell, HASH_BUCKET_BYTES);
  lookup_mod_request(env, RTT_HASH_BUCKET, d.table.bucket_base + index * HASH_BUCKET_BYTES, num, denom, d.bucket_cell);
}

void hash_request_bucket_1(env_t env, const hash_search_desc_st& d, memaddr_t bucket_addr) {
  lookup_dbg_note_request(env, d.bucket_1, d.bucket_cell, HASH_BUCKET_BYTES, d.bucket_cell, HASH_BUCKET_BYTES);
  lookup_mod_request(env, RTT_HASH_BUCKET, bucket_addr, BY_ADDRESS_NUM, BY_ADDRESS_DENOM, d.bucket_cell);
}

// A key longer than one read comes in 32-byte reads to consecutive cells,
// and a 16-byte read for what is left.
void hash_request_key(env_t env, const hash_search_desc_st& d, memaddr_t entry_addr) {
  lookup_dbg_note_request(env, d.key, d.key_cell, 0, d.key_cell, d.key_read_bytes);
  std::uint32_t done = 0;
  for (; d.key_read_bytes - done >= READ_32B; done += READ_32B) {
    read_by_address(entry_addr + done, d.key_cell + done, READ_32B);
  }
  if (done < d.key_read_bytes) read_by_address(entry_addr + done, d.key_cell + done, READ_16B);
}

void hash_request_result(env_t env, const hash_search_desc_st& d, memaddr_t entry_addr) {
  lookup_dbg_note_request(env, d.res, d.res_cell, 0, d.res_cell, d.table.res_bytes);
  read_by_address(entry_addr + d.table.res_offset, d.res_cell, d.table.res_bytes);
}

hash_search_bucket_st* hash_result_bucket(env_t env, const hash_search_desc_st& d, lookup_id_e owner) {
  lookup_dbg_check_result(env, d.bucket, owner, d.bucket_cell, HASH_BUCKET_BYTES);
  return reinterpret_cast<bucket_t*>(lookup_slot(env, d.bucket_cell));
}

hash_search_key_st* hash_result_key(env_t env, const hash_search_desc_st& d) {
  lookup_dbg_check_result(env, d.key, d.key, d.key_cell, d.key_read_bytes);
  return reinterpret_cast<hash_search_key_st*>(lookup_slot(env, d.key_cell));
}

std::uint8_t* hash_result(env_t env, const hash_search_desc_st& d, std::uint32_t bytes) {
  lookup_dbg_check_result(env, d.res, d.res, d.res_cell, bytes);
  return lookup_slot(env, d.res_cell);
}

// The table id is not hashed: the low bits of the hash pick the bucket, the
// top 8 bits are the signature.
void hash_search_part_1(env_t env, const hash_search_desc_st& d, void* key, hash_search_context_st* context) {
  const std::uint32_t hash =
      generic_hash_func(hash_func_for_key_bits(d.table.key_bits), static_cast<unsigned char*>(key));
  hash_request_bucket_0(env, d, 0, hash, d.table.bucket_count);
  context->bucket_hash_value = hash >> SIGNATURE_SHIFT;
  if (d.table.data_plane_writes) {
    ext_of(context) = {};
    ext_of(context).bucket_addr = d.table.bucket_base + hash % d.table.bucket_count * HASH_BUCKET_BYTES;
  }
}

// The remainder of num by denom from the TLU's modulus command.
std::uint32_t tlu_remainder(env_t env, std::uint32_t num, std::uint32_t denom) {
  std::uint8_t borrowed[MOD_BORROWED_BYTES];
  std::memcpy(borrowed, env_get_dmem_start(env), sizeof borrowed);
  tlu_mod(env, RES_TLU_DIV, {denom, num}, MOD_REQ_CELL, MOD_RESP_CELL);
  const std::uint32_t rem = dma_cell_words(env, MOD_RESP_CELL)[0].get();
  std::memcpy(env_get_dmem_start(env), borrowed, sizeof borrowed);
  return rem;
}

namespace {

// The home bucket of a key in the caller's space: its hash, and its number
// in the space, which the TLU's modulus gives.
struct home_bucket_st {
  std::uint32_t hash;
  std::uint32_t number;
  memaddr_t addr;
};

home_bucket_st home_bucket(env_t env, const hash_search_desc_st& d, void* key, memaddr_t base_addr) {
  const std::uint32_t hash =
      generic_hash_func(hash_func_for_key_bits(d.table.key_bits), static_cast<unsigned char*>(key));
  const std::uint32_t r = tlu_remainder(env, hash, d.table.bucket_count);
  return {hash, r, base_addr + r * HASH_BUCKET_BYTES};
}

// An odd bucket has its group's first bucket as prev_bucket_addr.
void request_home_bucket(env_t env, const hash_search_desc_st& d, hash_search_context_st* context,
                         const home_bucket_st& home) {
  lookup_dbg_note_request(env, d.bucket_0, d.bucket_cell, 0, d.bucket_cell, HASH_BUCKET_BYTES);
  qrsc(RTT_TLU_READ_16B_NO_ALLOC, home.addr, d.bucket_cell, d.bucket_cell);
  context->bucket_hash_value = home.hash >> SIGNATURE_SHIFT;
  ext_of(context).bucket_addr = home.addr;
  ext_of(context).prev_bucket_addr = (home.number & 1) ? home.addr - HASH_BUCKET_BYTES : 0;
}

}  // namespace

void hash_search_part_1_base_addr(env_t env, const hash_search_desc_st& d, void* key, hash_search_context_st* context,
                                  memaddr_t base_addr) {
  request_home_bucket(env, d, context, home_bucket(env, d, key, base_addr));
}

lock_handle_t hash_search_part_1_lock_base_addr(env_t env, const hash_search_desc_st& d, void* key,
                                                hash_search_context_st* context, memaddr_t base_addr,
                                                const hash_bucket_lock_st& lock) {
  const home_bucket_st home = home_bucket(env, d, key, base_addr);
  const lock_handle_t handle = lock.acquire(env, home.addr, lock.blocking);
  if (handle != BITMAP_LOCK_TAKEN) request_home_bucket(env, d, context, home);
  return handle;
}

void hash_search_part_2(env_t env, const hash_search_desc_st& d, void* key, hash_search_context_st* context) {
  context->bucket_entry_index = 0;
  const bucket_t* b = hash_result_bucket(env, d, d.bucket_0);
  if (d.table.single_entry && bucket_t::bucket_entry_count::get(*b) == 1) {
    return match_single_entry(env, d, key, context, *b);
  }
  scan_chain(env, d, context, b, 0);
}

// The bucket in the cell was checked when part 2 first looked at it; which
// of the two bucket reads filled it depends on how far the chain went.
void hash_search_part_2_from(env_t env, const hash_search_desc_st& d, hash_search_context_st* context) {
  const bucket_t* b = reinterpret_cast<const bucket_t*>(lookup_slot(env, d.bucket_cell));
  scan_chain(env, d, context, b, context->bucket_entry_index.get());
}

hash_search_rc_t hash_search_part_3(env_t env, const hash_search_desc_st& d, void* key,
                                    hash_search_context_st* context) {
  switch (hash_search_rc(*context)) {
    case HASH_SEARCH_RC_MATCH_NO_KEY_COMPARE:
      return HASH_SEARCH_RC_MATCH;
    case HASH_SEARCH_RC_NO_MATCH_INTERNAL_KEY_COMPARE:
    case HASH_SEARCH_RC_NO_MATCH:
      return HASH_SEARCH_RC_NO_MATCH;
    case HASH_SEARCH_RC_MATCH:
      return hash_search_part_3_multiple_entry(env, d, key, context);
  }
  return HASH_SEARCH_RC_NO_MATCH;
}

// Two keys may share a signature: the entry read decides, and a mismatch
// goes on from the next entry.
hash_search_rc_t hash_search_part_3_multiple_entry(env_t env, const hash_search_desc_st& d, void* key,
                                                   hash_search_context_st* context) {
  for (;;) {
    const hash_search_key_st* entry = hash_result_key(env, d);
    if (entry->hash_tbl_id == d.table.hash_tbl_id && compare(entry->key, key, d.table.key_bits / 8)) {
      return HASH_SEARCH_RC_MATCH;
    }
    context->bucket_entry_index = context->bucket_entry_index.get() + 1;
    hash_search_part_2_from(env, d, context);
    if (hash_search_rc(*context) == HASH_SEARCH_RC_NO_MATCH) return HASH_SEARCH_RC_NO_MATCH;
  }
}
