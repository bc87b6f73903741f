// Search state of the exact-key tables, and the write operations of the
// tables that the data plane writes itself. The search family is generated
// per table with the lookup catalogue (hash_search.h).
#pragma once

#include <cstdint>

#include "be_types.h"
#include "fwc_hash.h"
#include "fwc_types.h"

enum hash_search_rc_t : std::uint32_t {
  HASH_SEARCH_RC_MATCH_NO_KEY_COMPARE = 0,           // single-entry bucket: matched in the bucket
  HASH_SEARCH_RC_NO_MATCH_INTERNAL_KEY_COMPARE = 1,  // single-entry bucket: its key differs
  HASH_SEARCH_RC_NO_MATCH = 2,
  HASH_SEARCH_RC_MATCH = 3,  // after part 2: an entry is asked for; after part 3: found
};

// One search in progress, kept in the packet state between the parts.
struct hash_search_context_st {
  be_u32 bucket_hash_value;   // signature of the key: the top 8 bits of its hash
  be_u32 bucket_entry_index;  // entry of the bucket under test
  be_u32 rc;                  // a hash_search_rc_t
};
static_assert(sizeof(hash_search_context_st) == 12);

// Where a search of a table that the data plane writes stands, for the write
// operations: the bucket, and the bucket before it in the chain (0 at the
// home bucket).
struct hash_ext_fields_st {
  be_u32 prev_bucket_addr;
  be_u32 bucket_addr;
};

struct hash_manage_context_st {
  hash_search_context_st search_ctx;
  hash_ext_fields_st ext;
};
static_assert(sizeof(hash_manage_context_st) == 20);

inline hash_search_rc_t hash_search_rc(const hash_search_context_st& ctx) {
  return static_cast<hash_search_rc_t>(ctx.rc.get());
}

// Write operations. `ctx` comes from a search of the table (which a lock on
// the home bucket guards): for an insert one that ended in
// HASH_SEARCH_RC_NO_MATCH, standing at the last bucket of the chain; for a
// delete or replace one that found the entry. Free buckets come from, and
// emptied ones go back to, the index queue at bucket_index_q, as addresses.
//
// Adds the entry; FALSE, with nothing written, when a bucket is full and the
// queue has no free bucket left.
boolean_t hash_insert(env_t env, hash_manage_context_st* ctx, std::uint32_t new_hash_entry_addr,
                      memaddr_t bucket_index_q);
// Removes the entry and returns its address.
memaddr_t hash_delete(env_t env, hash_manage_context_st* ctx, memaddr_t bucket_index_q);
// Puts new_entry_addr in the entry's place and returns the old address.
memaddr_t hash_replace(env_t env, hash_manage_context_st* ctx, memaddr_t new_entry_addr);
// One 16-byte bucket write, and the TLU's cached copy of it dropped: after
// it no read returns the old bucket.
void hash_bucket_write(env_t env, std::uint32_t dst_mem_addr, const hash_search_bucket_st* src_bucket);

// The same for the space whose memory takes only 32-byte writes: two
// neighbouring buckets form a group, and a non-zero prev_bucket_addr marks
// the group's second bucket. Buckets there are never chained: an insert into
// a full bucket returns FALSE and writes nothing.
boolean_t hash_insert_32B(env_t env, hash_manage_context_st* ctx, std::uint32_t new_hash_entry_addr,
                          memaddr_t bucket_index_q);
memaddr_t hash_delete_32B(env_t env, hash_manage_context_st* ctx, memaddr_t bucket_index_q);
// src_bucket points at the group's two buckets.
void hash_bucket_write_32B(env_t env, std::uint32_t dst_mem_addr, const hash_search_bucket_st* src_bucket);
