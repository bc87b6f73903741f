#include "hash_chain.h"

#include <algorithm>

namespace {
using bucket_t = hash_search_bucket_st;
}  // namespace

hash_chain_bucket_st hash_chain_unpack(memaddr_t addr, const hash_search_bucket_st& b) {
  hash_chain_bucket_st c{addr, {}, bucket_t::bucket_entry_count::get(b), 0};
  if (bucket_t::bucket_chained::get(b)) {
    c.count = std::min(c.count, HASH_CHAINED_BUCKET_ENTRIES);
    c.link = bucket_t::chained_bucket_addr::get(b);
  }
  for (std::uint32_t i = 0; i < c.count; ++i) c.slots[i] = {b.hash_entry_addr[i], b.bucket_hash_value[i]};
  return c;
}

// Slots behind the entries are zero, so that a stale address or signature
// never stands in a bucket.
hash_search_bucket_st hash_chain_pack(const hash_chain_bucket_st& c) {
  hash_search_bucket_st b{};
  for (std::uint32_t i = 0; i < c.count; ++i) {
    b.hash_entry_addr[i] = c.slots[i].entry_addr;
    b.bucket_hash_value[i] = c.slots[i].signature;
  }
  if (c.link != 0) {
    bucket_t::chained_bucket_addr::set(b, c.link);
    bucket_t::bucket_chained::set(b, 1);
  }
  bucket_t::bucket_entry_count::set(b, c.count);
  return b;
}

boolean_t hash_chain_single_form(hash_tbl_id_t id) {
  return std::any_of(LOOKUP_HASH_TABLES.begin(), LOOKUP_HASH_TABLES.end(),
                     [id](const lookup_hash_table_st& t) { return t.single_entry && t.hash_tbl_id == id; });
}

// The single-entry layout keeps entry 0's address and signature in place
// and adds the table id and the 8-byte key.
void hash_chain_put_single(hash_search_bucket_st& b, const hash_entry_head_st& head) {
  std::memcpy(bucket_t::key_single_elt::data(b), head.key, HASH_SINGLE_KEY_BYTES);
  bucket_t::hash_tbl_id::set(b, head.hash_tbl_id);
}

void hash_chain_take_out(hash_chain_bucket_st& c, std::uint32_t i) {
  c.slots[i] = c.slots[c.count - 1];
  c.slots[--c.count] = {};
}
