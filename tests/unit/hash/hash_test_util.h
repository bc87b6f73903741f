// Shared helpers of the exact-key table tests: the generated searches as a
// table, a search run on an NPU thread, keys that share a home bucket, and
// buckets written by hand.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
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
  for (const search_row& r : all_searches()) {
    if (name == r.name) return r;
  }
  throw std::invalid_argument("no search " + name);
}

struct search_outcome {
  hash_search_rc_t after_part_2;
  hash_search_rc_t rc;
  std::uint32_t entry_index;
  bytes result;  // the result's bytes on a match
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
    if (out.rc == HASH_SEARCH_RC_MATCH) {
      const hash_search_result_st* r = row.result(env);
      out.result.assign(r->bytes, r->bytes + sizeof r->bytes);
    }
  });
  return out;
}

inline bytes key_of(std::uint32_t bytes_wide, std::uint32_t seed) {
  bytes k(bytes_wide);
  for (std::uint32_t i = 0; i < bytes_wide; ++i) k[i] = static_cast<std::uint8_t>(seed >> (8 * (i % 4)) ^ (i * 0x3B));
  return k;
}

inline std::uint32_t key_width(const lookup_hash_table_st& t) { return t.key_bits / 8; }

// `count` keys of the table whose hashes pick one home bucket, from `seed` on.
inline std::vector<bytes> keys_in_one_bucket(const lookup_hash_table_st& t, std::uint32_t count,
                                             std::uint32_t seed = 1) {
  std::vector<bytes> keys{key_of(key_width(t), seed)};
  const memaddr_t home = ctrl::hash_table_home_bucket(t, ctrl::hash_table_key_hash(t, keys[0]));
  for (std::uint32_t s = seed + 1; keys.size() < count; ++s) {
    bytes k = key_of(key_width(t), s);
    if (ctrl::hash_table_home_bucket(t, ctrl::hash_table_key_hash(t, k)) == home) keys.push_back(k);
  }
  return keys;
}

inline memaddr_t home_of(const lookup_hash_table_st& t, const bytes& key) {
  return ctrl::hash_table_home_bucket(t, ctrl::hash_table_key_hash(t, key));
}

inline std::uint8_t signature_of(const lookup_hash_table_st& t, const bytes& key) {
  return static_cast<std::uint8_t>(ctrl::hash_table_key_hash(t, key) >> 24);
}

inline hash_search_bucket_st read_bucket(testkit::npu_harness& h, memaddr_t addr) {
  hash_search_bucket_st b;
  h.npu().memory().read(h.npu().memory().translate(addr), {reinterpret_cast<std::uint8_t*>(&b), sizeof b});
  return b;
}

inline void write_bucket(testkit::npu_harness& h, memaddr_t addr, const hash_search_bucket_st& b) {
  ctrl::write_record(h.npu(), addr, {reinterpret_cast<const std::uint8_t*>(&b), sizeof b});
}

inline bytes result_of(std::uint8_t fill, std::size_t size = 8) { return bytes(size, fill); }

// An entry written by hand in the layout of the tables: table id, key,
// result at the table's offset.
inline void write_entry(testkit::npu_harness& h, const lookup_hash_table_st& t, memaddr_t addr, const bytes& key,
                        const bytes& result) {
  bytes e(t.res_offset + t.res_bytes);
  e[0] = static_cast<std::uint8_t>(t.hash_tbl_id);
  std::copy(key.begin(), key.end(), e.begin() + 1);
  std::copy(result.begin(), result.end(), e.begin() + t.res_offset);
  ctrl::write_record(h.npu(), addr, e);
}

// The Io of the control side that runs `check` after each bucket write, so
// that a test sees the chain between the writes of one change.
struct watched_io {
  ctrl::hash_memory_io inner;
  std::function<void()> check;
  std::uint32_t writes = 0;

  hash_search_bucket_st read(memaddr_t b) const { return inner.read(b); }
  void write(memaddr_t b, const hash_search_bucket_st& v) {
    inner.write(b, v);
    ++writes;
    check();
  }
  hash_entry_head_st read_entry_head(memaddr_t e) const { return inner.read_entry_head(e); }
  memaddr_t take_bucket() { return inner.take_bucket(); }
  void give_bucket(memaddr_t b) { inner.give_bucket(b); }
};

}  // namespace ht
