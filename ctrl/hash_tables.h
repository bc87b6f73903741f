// The exact-key tables of one NPU, as the control side writes them: with the
// program's own table hashes (npu/zephra/hash_fns.h) and bucket chain code
// (dplane/infra/hash_chain.h), so that writer and reader cannot disagree.
// Entries take room in an area of their own; buckets for chains come from a
// pool. Every change keeps every entry findable by a search running at the
// same time. One object per NPU, called from one control thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "ctrl/error.h"
#include "dplane/infra/hash_chain.h"
#include "model/npu.h"

namespace ctrl {

// Where entries and chain buckets live.
struct hash_area_st {
  std::uint32_t entries_base = 0xA0000000;
  std::uint32_t entries_bytes = 0x01000000;
  std::uint32_t buckets_base = 0xA1000000;
  std::uint32_t bucket_count = 0x10000;
};

// Buckets handed to chains, and taken back when a chain shrinks.
class hash_bucket_pool {
 public:
  hash_bucket_pool(std::uint32_t base, std::uint32_t count);
  memaddr_t take();  // 0 when none is left
  void give(memaddr_t bucket) { free_.push_back(bucket); }
  std::size_t free_count() const { return free_.size(); }

 private:
  std::vector<memaddr_t> free_;
};

// The Io of hash_chain.h on an NPU's table memory: each bucket write is one
// 16-byte write, and drops the TLU's cached copy.
struct hash_memory_io {
  model::npu& n;
  hash_bucket_pool& pool;

  hash_search_bucket_st read(memaddr_t bucket) const;
  void write(memaddr_t bucket, const hash_search_bucket_st& b);
  hash_entry_head_st read_entry_head(memaddr_t entry) const;
  memaddr_t take_bucket() { return pool.take(); }
  void give_bucket(memaddr_t bucket) { pool.give(bucket); }
};

// Where a key stands in its chain.
struct hash_position_st {
  memaddr_t bucket;
  memaddr_t prev_bucket;  // 0 at the home bucket
  std::uint32_t index;
  memaddr_t entry;
};

class hash_tables {
 public:
  explicit hash_tables(model::npu& n, const hash_area_st& area = {});

  // Writes an entry of `table` with `key` (the table's key width) and
  // `result` (at most its result bytes), then links it into its chain.
  // Refused, with nothing changed: unsupported for a table whose key or
  // space the caller gives, bad_size, exists, table_full.
  error insert(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
               std::span<const std::uint8_t> result);
  // Gives a present key a new result: a new entry takes the old one's place
  // in one bucket write, so a reader sees the old result or the new one.
  error update(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
               std::span<const std::uint8_t> result);
  error remove(const lookup_hash_table_st& table, std::span<const std::uint8_t> key);
  std::optional<hash_position_st> find(const lookup_hash_table_st& table, std::span<const std::uint8_t> key);

  std::size_t free_buckets() const { return pool_.free_count(); }
  hash_memory_io io() { return {n_, pool_}; }

 private:
  struct chain_end {
    memaddr_t bucket;
    std::uint32_t count;
  };
  error check(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
              std::span<const std::uint8_t> result) const;
  chain_end last_bucket(const lookup_hash_table_st& table, std::span<const std::uint8_t> key);
  std::optional<memaddr_t> write_entry(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
                                       std::span<const std::uint8_t> result);
  void free_entry(const lookup_hash_table_st& table, memaddr_t entry);

  model::npu& n_;
  hash_bucket_pool pool_;
  std::uint32_t entries_next_;
  std::uint32_t entries_end_;
  std::map<std::uint32_t, std::vector<memaddr_t>> free_entries_;  // by entry size
};

// The hash of a key of `table`, as the program's search computes it.
std::uint32_t hash_table_key_hash(const lookup_hash_table_st& table, std::span<const std::uint8_t> key);
// The home bucket of a hash in the table's space.
memaddr_t hash_table_home_bucket(const lookup_hash_table_st& table, std::uint32_t hash);

// Writes the control block of an index queue at `queue` whose array, at
// `array`, holds the addresses of `count` free buckets from buckets_base on:
// the free buckets of a table that the data plane writes.
void install_hash_bucket_queue(model::npu& n, memaddr_t queue, memaddr_t array, memaddr_t buckets_base,
                               std::uint32_t count);

}  // namespace ctrl
