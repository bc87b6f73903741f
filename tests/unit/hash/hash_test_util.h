// Shared helpers of the exact-key table tests: the generated searches as a
// table, a search run on an NPU thread, keys that share a home bucket, and
// buckets and entries written by hand.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "ctrl/hash_tables.h"
#include "ctrl/protected_records.h"
#include "dplane/infra/lookup.h"
#include "testkit/npu_harness.h"

namespace ht {

using bytes = std::vector<std::uint8_t>;

// One generated search: its description and its three parts.
struct search_row {
  const char* name;
  const hash_search_desc_st* desc;
  void (*part_1)(env_t, void*, hash_search_context_st*);
  void (*part_2)(env_t, void*, hash_search_context_st*);
  hash_search_rc_t (*part_3)(env_t, void*, hash_search_context_st*);
  hash_search_result_st* (*result)(env_t);
};

#define HT_SEARCH_ROW(T)                    \
  ht::search_row{#T,                        \
                 &HASH_SEARCH_##T,          \
                 hash_search_part_1_ID_##T, \
                 hash_search_part_2_ID_##T, \
                 hash_search_part_3_ID_##T, \
                 lookup_result_ID_##T##_RES},
inline const std::vector<search_row>& all_searches() {
  static const std::vector<search_row> rows = {LOOKUP_HASH_SEARCH_ROWS(HT_SEARCH_ROW)};
  return rows;
}
#undef HT_SEARCH_ROW

inline const search_row& search_of(const std::string& name) {
  return *std::find_if(all_searches().begin(), all_searches().end(),
                       [&](const search_row& r) { return name == r.name; });
}

struct search_outcome {
  hash_search_rc_t after_part_2;
  hash_search_rc_t rc;
  std::uint32_t entry_index;
  bytes result;  // the result's first 8 bytes on a match
};

// The three parts of a search, one after the other on the NPU thread, as
// the first search of a packet.
inline search_outcome search(testkit::npu_harness& h, const search_row& row, bytes key) {
  search_outcome out{};
  h.on_thread([&](env_t env) {
    lookup_dbg_new_pass(env);
    hash_search_context_st ctx{};
    row.part_1(env, key.data(), &ctx);
    row.part_2(env, key.data(), &ctx);
    out.after_part_2 = hash_search_rc(ctx);
    out.rc = row.part_3(env, key.data(), &ctx);
    out.entry_index = ctx.bucket_entry_index.get();
    if (out.rc == HASH_SEARCH_RC_MATCH) out.result.assign(row.result(env)->bytes, row.result(env)->bytes + 8);
  });
  return out;
}

inline bytes key_of(std::uint32_t bytes_wide, std::uint32_t seed) {
  bytes k(bytes_wide);
  for (std::uint32_t i = 0; i < bytes_wide; ++i) k[i] = static_cast<std::uint8_t>(seed >> (8 * (i % 4)) ^ (i * 0x3B));
  return k;
}
inline std::uint32_t key_width(const lookup_hash_table_st& t) { return t.key_bits / 8; }
inline memaddr_t home_of(const lookup_hash_table_st& t, const bytes& key) {
  return ctrl::hash_table_home_bucket(t, ctrl::hash_table_key_hash(t, key));
}
inline std::uint8_t signature_of(const lookup_hash_table_st& t, const bytes& key) {
  return static_cast<std::uint8_t>(ctrl::hash_table_key_hash(t, key) >> 24);
}

// `count` keys of the table whose hashes pick one home bucket.
inline std::vector<bytes> keys_in_one_bucket(const lookup_hash_table_st& t, std::uint32_t count) {
  std::vector<bytes> keys{key_of(key_width(t), 1)};
  for (std::uint32_t s = 2; keys.size() < count; ++s) {
    if (home_of(t, key_of(key_width(t), s)) == home_of(t, keys[0])) keys.push_back(key_of(key_width(t), s));
  }
  return keys;
}

inline bytes result_of(std::uint8_t fill) { return bytes(8, fill); }

// Inserts the first `count` keys, key i with result_of(i).
inline void insert(ctrl::hash_tables& tables, const lookup_hash_table_st& t, const std::vector<bytes>& keys,
                   std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    ASSERT_EQ(tables.insert(t, keys[i], result_of(static_cast<std::uint8_t>(i))), ctrl::error::none);
  }
}

inline hash_search_bucket_st read_bucket(testkit::npu_harness& h, memaddr_t addr) {
  hash_search_bucket_st b;
  h.npu().memory().read(h.npu().memory().translate(addr), {reinterpret_cast<std::uint8_t*>(&b), sizeof b});
  return b;
}
inline hash_chain_bucket_st chain_bucket(testkit::npu_harness& h, memaddr_t addr) {
  return hash_chain_unpack(addr, read_bucket(h, addr));
}
inline bool same(const hash_search_bucket_st& a, const hash_search_bucket_st& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}
inline void write_bucket(testkit::npu_harness& h, memaddr_t addr, const hash_search_bucket_st& b) {
  ctrl::write_record(h.npu(), addr, {reinterpret_cast<const std::uint8_t*>(&b), sizeof b});
}

// An entry written by hand in the layout of the tables: table id, key,
// result at the table's offset.
inline void write_entry(testkit::npu_harness& h, const lookup_hash_table_st& t, memaddr_t addr, const bytes& key,
                        const bytes& result, std::uint8_t id_offset = 0) {
  bytes e(t.res_offset + t.res_bytes);
  e[0] = static_cast<std::uint8_t>(t.hash_tbl_id + id_offset);
  std::copy(key.begin(), key.end(), e.begin() + 1);
  std::copy(result.begin(), result.end(), e.begin() + t.res_offset);
  ctrl::write_record(h.npu(), addr, e);
}

}  // namespace ht
