// The program's writes of the exact-key tables that the data plane keeps
// itself: the chain changes of hash_chain.h through DMA requests, and the
// 32-byte group forms.
#include <cstring>

#include "dma_common.h"
#include "dplane/infra/hash.h"
#include "dplane/infra/hash_chain.h"
#include "dplane/infra/lookup.h"
#include "dplane/infra/queue.h"

namespace {

// Bucket writes go out from cell 0, 32-byte groups from 0x020; both put back
// what stood there (cell 0 holds the distribution header).
constexpr std::uint32_t WRITE_CELL = 0x000;
constexpr std::uint32_t GROUP_CELL = 0x020;
constexpr std::uint32_t SAVED_BYTES = 64;
constexpr std::uint32_t GROUP_BYTES = 2 * HASH_BUCKET_BYTES;
constexpr dma_write_opts_st LANDED_AND_INVALIDATED = {FALSE, TRUE, TRUE};

// The first 64 bytes of data memory, kept across a write that borrows them.
struct saved_head {
  std::uint8_t bytes[SAVED_BYTES];
};
saved_head save_head(env_t env) {
  saved_head s;
  std::memcpy(s.bytes, env_get_dmem_start(env), SAVED_BYTES);
  return s;
}
void restore_head(env_t env, const saved_head& s) { std::memcpy(env_get_dmem_start(env), s.bytes, SAVED_BYTES); }

// The buckets of a chain through the program's requests.
struct dma_bucket_io {
  env_t env;
  memaddr_t bucket_index_q;
  boolean_t deleting;  // reads go through ID_HASH_DELETE_BUCKET, else ID_HASH_INSERT_BUCKET

  hash_search_bucket_st read(memaddr_t addr) {
    if (deleting) {
      lookup_request_ID_HASH_DELETE_BUCKET(env, addr);
      lookup_wait_ID_HASH_DELETE_BUCKET(env);
      return *lookup_result_ID_HASH_DELETE_BUCKET(env);
    }
    lookup_request_ID_HASH_INSERT_BUCKET(env, addr);
    lookup_wait_ID_HASH_INSERT_BUCKET(env);
    return *lookup_result_ID_HASH_INSERT_BUCKET(env);
  }
  void write(memaddr_t addr, const hash_search_bucket_st& b) { hash_bucket_write(env, addr, &b); }
  hash_entry_head_st read_entry_head(memaddr_t entry) {
    lookup_request_ID_HASH_INSERT_KEY(env, entry);
    lookup_wait_ID_HASH_INSERT_KEY(env);
    return *lookup_result_ID_HASH_INSERT_KEY(env);
  }
  memaddr_t take_bucket() { return q_index_q_pop(env, bucket_index_q); }
  void give_bucket(memaddr_t bucket) { q_index_q_push(env, bucket_index_q, bucket); }
};

// A 32-byte group and which of its buckets the search stands at.
struct bucket_group {
  memaddr_t addr;
  hash_search_bucket_st buckets[2];
  std::uint32_t half;
};

bucket_group read_group(env_t env, const hash_ext_fields_st& ext) {
  const bool second = ext.prev_bucket_addr.get() != 0;
  bucket_group g{second ? ext.prev_bucket_addr.get() : ext.bucket_addr.get(), {}, second ? 1u : 0u};
  const saved_head saved = save_head(env);
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  dma_tmu_lpa(env, g.addr, RES_TLU_LONG, GROUP_CELL, &hi, &lo);
  dma_read_32B_p(env, hi, lo, GROUP_CELL, GROUP_CELL);
  std::memcpy(g.buckets, env_get_dmem_start(env) + GROUP_CELL, GROUP_BYTES);
  restore_head(env, saved);
  return g;
}

}  // namespace

boolean_t hash_insert(env_t env, hash_manage_context_st* ctx, std::uint32_t new_hash_entry_addr,
                      memaddr_t bucket_index_q) {
  dma_bucket_io io{env, bucket_index_q, FALSE};
  const auto signature = static_cast<std::uint8_t>(ctx->search_ctx.bucket_hash_value.get());
  return hash_chain_add(io, ctx->ext.bucket_addr.get(), {new_hash_entry_addr, signature});
}

memaddr_t hash_delete(env_t env, hash_manage_context_st* ctx, memaddr_t bucket_index_q) {
  dma_bucket_io io{env, bucket_index_q, TRUE};
  return hash_chain_remove(io, ctx->ext.bucket_addr.get(), ctx->ext.prev_bucket_addr.get(),
                           ctx->search_ctx.bucket_entry_index.get());
}

memaddr_t hash_replace(env_t env, hash_manage_context_st* ctx, memaddr_t new_entry_addr) {
  dma_bucket_io io{env, 0, FALSE};
  return hash_chain_replace(io, ctx->ext.bucket_addr.get(), ctx->search_ctx.bucket_entry_index.get(), new_entry_addr);
}

void hash_bucket_write(env_t env, std::uint32_t dst_mem_addr, const hash_search_bucket_st* src_bucket) {
  const saved_head saved = save_head(env);
  dma_write_16B(env, dst_mem_addr, RES_TLU_LONG_WRITE, reinterpret_cast<const std::uint8_t*>(src_bucket), WRITE_CELL,
                WRITE_CELL, LANDED_AND_INVALIDATED);
  restore_head(env, saved);
}

// The group's memory takes no chain: a full bucket refuses the entry.
boolean_t hash_insert_32B(env_t env, hash_manage_context_st* ctx, std::uint32_t new_hash_entry_addr,
                          memaddr_t /*bucket_index_q: no chains here*/) {
  bucket_group g = read_group(env, ctx->ext);
  hash_chain_bucket_st c = hash_chain_unpack(0, g.buckets[g.half]);
  if (c.count == HASH_BUCKET_ENTRIES) return FALSE;
  c.slots[c.count++] = {new_hash_entry_addr, static_cast<std::uint8_t>(ctx->search_ctx.bucket_hash_value.get())};
  g.buckets[g.half] = hash_chain_pack(c);
  hash_bucket_write_32B(env, g.addr, g.buckets);
  return TRUE;
}

memaddr_t hash_delete_32B(env_t env, hash_manage_context_st* ctx, memaddr_t /*bucket_index_q: no chains here*/) {
  bucket_group g = read_group(env, ctx->ext);
  hash_chain_bucket_st c = hash_chain_unpack(0, g.buckets[g.half]);
  const std::uint32_t index = ctx->search_ctx.bucket_entry_index.get();
  const memaddr_t removed = c.slots[index].entry_addr;
  hash_chain_take_out(c, index);
  g.buckets[g.half] = hash_chain_pack(c);
  hash_bucket_write_32B(env, g.addr, g.buckets);
  return removed;
}

void hash_bucket_write_32B(env_t env, std::uint32_t dst_mem_addr, const hash_search_bucket_st* src_bucket) {
  const saved_head saved = save_head(env);
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  dma_tmu_lpa(env, dst_mem_addr, RES_TLU_LONG_WRITE, GROUP_CELL, &hi, &lo);
  dma_dpe_write_32B_p(env, hi, lo, reinterpret_cast<const std::uint8_t*>(src_bucket), GROUP_CELL, GROUP_CELL, FALSE);
  restore_head(env, saved);
}
