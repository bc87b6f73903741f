// Exact-key tables: the bucket arrays shared by many logical tables, and the
// entry records they point to. A reader takes no lock: a bucket is one
// 16-byte read, so it sees the bucket whole, old or new.
#pragma once

#include <cstddef>
#include <cstdint>

#include "be_types.h"
#include "fwc_types.h"

using hash_tbl_id_t = std::uint8_t;

inline constexpr std::uint32_t HASH_BUCKET_BYTES = 16;
inline constexpr std::uint32_t HASH_BUCKET_ENTRIES = 3;
// A chained bucket keeps its third slot for the next bucket.
inline constexpr std::uint32_t HASH_CHAINED_BUCKET_ENTRIES = 2;
inline constexpr std::uint32_t HASH_SINGLE_KEY_BYTES = 8;

// One bucket. Bytes 0..11 hold one of three layouts:
//   hash_entry_addr[3]                  not chained: three entries
//   hash_entry_addr[0..1], chained_bucket_addr   bucket_chained set
//   single_hash_entry_addr, key_single_elt[2]    a table of the single-entry
//                                       form with exactly one entry: its
//                                       8-byte key stands in the bucket
// Byte 12 is the control byte; bytes 13..15 hold one signature per entry, or
// in the single-entry layout hash_single_elt, hash_tbl_id and a spare byte.
// The single-entry layout keeps entry 0's address and signature where the
// other layouts have them.
struct hash_search_bucket_st {
  be_u32 hash_entry_addr[HASH_BUCKET_ENTRIES];
  std::uint8_t control;
  std::uint8_t bucket_hash_value[HASH_BUCKET_ENTRIES];

  using spare = be_bits<12, 0, 2>;
  using entry_swap_bitmap = be_bits<12, 2, 3>;  // bit i: entry i is being moved
  using bucket_chained = be_bits<12, 5, 1>;
  using bucket_entry_count = be_bits<12, 6, 2>;

  using single_hash_entry_addr = be_bits<0, 0, 32>;
  using key_single_elt = be_byte_run<4, HASH_SINGLE_KEY_BYTES>;
  using hash_single_elt = be_bits<13, 0, 8>;
  using hash_tbl_id = be_bits<14, 0, 8>;
  // The chained layout's link, in the third entry's place.
  using chained_bucket_addr = be_bits<8, 0, 32>;
};
static_assert(sizeof(hash_search_bucket_st) == HASH_BUCKET_BYTES);
static_assert(offsetof(hash_search_bucket_st, control) == 12);

// The start of every entry: the logical table, then the key.
struct hash_search_key_st {
  hash_tbl_id_t hash_tbl_id;
  std::uint8_t key[63];
};
static_assert(sizeof(hash_search_key_st) == 64);

// The first 16 bytes of an entry: its table and the start of its key.
struct hash_entry_head_st {
  hash_tbl_id_t hash_tbl_id;
  std::uint8_t key[15];
};
static_assert(sizeof(hash_entry_head_st) == 16);

// A result read before its owning feature describes it: its raw bytes.
struct hash_search_result_st {
  std::uint8_t bytes[16];
};
