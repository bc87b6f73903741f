// The lookup catalogue as the generator reads it from its three descriptions:
// identifiers.txt (every identifier, base names by engine), tables.txt (where
// each table stands) and lookups.txt (one row per lookup that a path uses).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace gen {

// The code shapes the generator writes. An engine without one has no rows yet.
enum class form {
  none,
  read,                         // one-word template request: the address
  mod_read,                     // paged read of the record chosen by num mod denom
  tlu_mod_read_paged,           // the same through the TLU's long command: the record alone
  glb_cnt,                      // global counter increment, then the monitor hook
  stats_add_inc,                // statistics pair: one packet, `count` bytes
  stats_add_inc_split,          // the same, the count stored earlier by lookup_alloc
  stats_uidb_add_inc,           // entry stat_base + stat_index
  stats_uidb_add_inc_split,     // the same, the count stored earlier
  stats_uidb_add_inc_twin,      // two entries of one block from one cell
  stats_inc_dyn_pool_cnt,       // one packet, no bytes, at stat_index + offset
  stats_read_clr_dyn_pool_cnt,  // physical read-and-clear of an entry
  plu_ipv4,                     // PLU route search: the key's first word is the command
  plu_ipv6,                     // the same for an IPv6 address
  flowlock_convert,             // FLB conversion to a lock number, in the row's cell
  view,                         // no request: a typed window on a slot
};

struct engine {
  form code = form::none;
  int table = -1;  // request template, or -1
  int entry = -1;
  int resource = -1;           // DMA resource, or -1
  std::uint32_t response = 0;  // response bytes
};

enum class addr_kind { paged, direct, global_block };

struct table_address {
  addr_kind kind = addr_kind::direct;
  std::uint32_t tpd = 0;           // paged
  std::uint32_t record_bytes = 0;  // paged: record size of the page
  std::uint32_t base = 0;          // direct: table base; global block: area base
  std::uint32_t stride = 0;        // direct: record stride; global block: block size
  std::uint32_t block = 0;         // global block number
};

struct source_pos {
  std::string file;
  int line = 0;
};

// A bucket space of the exact-key tables: its first bucket (0: the caller
// gives it) and its bucket count.
struct hash_space {
  std::uint32_t base = 0;
  std::uint32_t buckets = 0;
};

// An exact-key table, a line of [hash_tables].
struct hash_table {
  std::string name;
  std::optional<std::uint32_t> id;        // none: given by the message
  std::optional<std::uint32_t> key_bits;  // none: given by the message
  std::string space;
  std::uint32_t res_offset = 0;  // where the result stands in the entry
  std::uint32_t res_bytes = 0;
  bool single = false;       // a lone entry's 8-byte key stands in its bucket
  bool data_plane = false;   // the data plane writes it; searches keep their place
  bool caller_base = false;  // its space's first bucket comes from the caller
};

// The bitmap of a lock family, a line of [lock_bitmaps]: its first word in
// memory and the bits of its lock numbers.
struct lock_bitmap {
  std::uint32_t base = 0;
  std::uint32_t bits = 0;
};

struct identifiers {
  std::vector<std::string> names;                // order of lookup_id_e, without ID_
  std::map<std::string, std::size_t> engine_of;  // base name -> index in engines
  std::vector<engine> engines;
  std::set<std::string> hash_ids;  // family + suffix
  std::set<std::string> tags;
  std::set<std::string> protected_tables;
  std::map<std::string, std::string> lock_family;  // lock identifier -> family
};

// One row of lookups.txt, as written.
struct row {
  source_pos pos;
  std::string id;  // without ID_
  std::string base;
  std::string tag;
  std::optional<std::uint32_t> slot;
  std::optional<std::uint32_t> cell;
  std::string type;               // result type
  std::string calls;              // hand-written function behind the request
  std::string view;               // lookup whose slot this view reads
  std::vector<std::string> live;  // live groups; "all" = every group
  bool ipv6 = false;              // family=ipv6: the IPv6 search of a route table named once for both families
  // The cells of a search of an exact-key table: bucket, key, result.
  std::optional<std::uint32_t> bucket;
  std::optional<std::uint32_t> key;
  std::optional<std::uint32_t> res;
};

// A row of the request template table.
struct request_template {
  int table = 0;
  int entry = 0;
  std::uint32_t response = 0;  // bytes
};

struct catalogue {
  std::map<std::string, request_template> templates;  // by name
  identifiers ids;
  std::map<std::string, table_address> tables;
  std::map<std::string, hash_space> hash_spaces;
  std::vector<hash_table> hash_tables;              // in file order
  std::map<std::string, lock_bitmap> lock_bitmaps;  // family -> bitmap
  std::vector<row> rows;
  const hash_table* hash_table_named(const std::string& name) const {
    for (const hash_table& t : hash_tables) {
      if (t.name == name) return &t;
    }
    return nullptr;
  }
};

// A row with everything the generator derives for it.
struct lookup {
  const row* r = nullptr;
  const engine* eng = nullptr;
  const table_address* addr = nullptr;
  std::uint32_t cell = 0;
  std::uint32_t cell_bytes = 0;  // request bytes the engine takes from the cell
  std::uint32_t slot = 0;
  std::uint32_t slot_bytes = 0;  // 0: no result
  bool is_protected = false;
  std::uint32_t record_offset = 0;   // where the protected record begins in the slot
  const lookup* parent = nullptr;    // the lookup whose slot a view reads
  bool has_alloc = false;            // exposes its request cell
  const hash_table* hash = nullptr;  // a search of an exact-key table
  bool search_lock = false;          // the search has a lock of its name: a writer's part 1 takes it
  std::uint32_t key_bytes = 0;       // hash search: bytes of the entry read into the key cells
  // A lock row (<lock>__ACQUIRE or <lock>__RELEASE): the lock and its family.
  std::string lock;
  std::string lock_family;
  bool lock_release = false;
  const lock_bitmap* bitmap = nullptr;
  bool has_result() const { return !r->type.empty(); }
  form code() const { return r->calls.empty() ? eng->code : form::none; }
};

using errors = std::vector<std::string>;

// Data memory that requests and results can reach.
inline constexpr std::uint32_t DMA_REACH = 1024;
inline constexpr std::uint32_t CELL = 16;

}  // namespace gen
