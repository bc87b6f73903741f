#include "hash_tables.h"

#include <algorithm>
#include <cstring>

#include "ctrl/protected_records.h"
#include "dplane/infra/queue.h"
#include "npu/zephra/hash_fns.h"

namespace ctrl {

namespace {

constexpr std::uint32_t SIGNATURE_SHIFT = 24;
constexpr std::uint32_t ENTRY_UNIT = 16;

std::uint32_t round_up(std::uint32_t n, std::uint32_t unit) { return (n + unit - 1) / unit * unit; }

std::uint32_t key_bytes(const lookup_hash_table_st& table) { return table.key_bits / 8; }

// An entry: table id at byte 0, key from byte 1, result at its offset.
std::uint32_t entry_bytes(const lookup_hash_table_st& table) {
  return round_up(std::max(1 + key_bytes(table), table.res_offset + table.res_bytes), ENTRY_UNIT);
}

void read_bytes(model::npu& n, memaddr_t addr, std::span<std::uint8_t> out) {
  n.memory().read(n.memory().translate(addr), out);
}

template <class Rec>
Rec read_record(model::npu& n, memaddr_t addr) {
  Rec rec;
  read_bytes(n, addr, {reinterpret_cast<std::uint8_t*>(&rec), sizeof rec});
  return rec;
}

bool entry_holds(model::npu& n, memaddr_t entry, const lookup_hash_table_st& table, std::span<const std::uint8_t> key) {
  std::vector<std::uint8_t> stored(1 + key.size());
  read_bytes(n, entry, stored);
  return stored[0] == table.hash_tbl_id && std::equal(key.begin(), key.end(), stored.begin() + 1);
}

}  // namespace

hash_bucket_pool::hash_bucket_pool(std::uint32_t base, std::uint32_t count) {
  free_.reserve(count);
  for (std::uint32_t i = count; i-- > 0;) free_.push_back(base + i * HASH_BUCKET_BYTES);
}

memaddr_t hash_bucket_pool::take() {
  if (free_.empty()) return 0;
  const memaddr_t b = free_.back();
  free_.pop_back();
  return b;
}

hash_search_bucket_st hash_memory_io::read(memaddr_t bucket) const {
  return read_record<hash_search_bucket_st>(n, bucket);
}

void hash_memory_io::write(memaddr_t bucket, const hash_search_bucket_st& b) {
  write_record(n, bucket, {reinterpret_cast<const std::uint8_t*>(&b), sizeof b});
}

hash_entry_head_st hash_memory_io::read_entry_head(memaddr_t entry) const {
  return read_record<hash_entry_head_st>(n, entry);
}

std::uint32_t hash_table_key_hash(const lookup_hash_table_st& table, std::span<const std::uint8_t> key) {
  return hash_unit_final(hash_fold(hash_func_for_key_bits(table.key_bits), key.data()));
}

memaddr_t hash_table_home_bucket(const lookup_hash_table_st& table, std::uint32_t hash) {
  return table.bucket_base + hash % table.bucket_count * HASH_BUCKET_BYTES;
}

hash_tables::hash_tables(model::npu& n, const hash_area_st& area)
    : n_(n),
      pool_(area.buckets_base, area.bucket_count),
      entries_next_(area.entries_base),
      entries_end_(area.entries_base + area.entries_bytes) {}

error hash_tables::check(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
                         std::span<const std::uint8_t> result) const {
  if (table.key_bits == 0 || table.bucket_base == 0) return error::unsupported;
  if (key.size() != key_bytes(table) || result.size() > table.res_bytes) return error::bad_size;
  return error::none;
}

std::optional<hash_position_st> hash_tables::find(const lookup_hash_table_st& table,
                                                  std::span<const std::uint8_t> key) {
  if (check(table, key, {}) != error::none) return std::nullopt;
  const std::uint32_t hash = hash_table_key_hash(table, key);
  hash_memory_io chain_io = io();
  memaddr_t prev = 0;
  for (memaddr_t addr = hash_table_home_bucket(table, hash); addr != 0;) {
    const hash_chain_bucket_st c = hash_chain_load(chain_io, addr);
    for (std::uint32_t i = 0; i < c.count; ++i) {
      const hash_chain_slot_st& s = c.slots[i];
      if (s.signature == hash >> SIGNATURE_SHIFT && entry_holds(n_, s.entry_addr, table, key)) {
        return hash_position_st{addr, prev, i, s.entry_addr};
      }
    }
    prev = addr;
    addr = c.link;
  }
  return std::nullopt;
}

hash_tables::chain_end hash_tables::last_bucket(const lookup_hash_table_st& table, std::span<const std::uint8_t> key) {
  hash_memory_io io{n_, pool_};
  hash_chain_bucket_st c = hash_chain_load(io, hash_table_home_bucket(table, hash_table_key_hash(table, key)));
  while (c.link != 0) c = hash_chain_load(io, c.link);
  return {c.addr, c.count};
}

std::optional<memaddr_t> hash_tables::write_entry(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
                                                  std::span<const std::uint8_t> result) {
  const std::uint32_t size = entry_bytes(table);
  std::vector<memaddr_t>& reusable = free_entries_[size];
  memaddr_t entry = 0;
  if (!reusable.empty()) {
    entry = reusable.back();
    reusable.pop_back();
  } else if (entries_end_ - entries_next_ >= size) {
    entry = entries_next_;
    entries_next_ += size;
  } else {
    return std::nullopt;
  }
  std::vector<std::uint8_t> bytes(size);
  bytes[0] = static_cast<std::uint8_t>(table.hash_tbl_id);
  std::copy(key.begin(), key.end(), bytes.begin() + 1);
  std::copy(result.begin(), result.end(), bytes.begin() + table.res_offset);
  write_record(n_, entry, bytes);
  return entry;
}

void hash_tables::free_entry(const lookup_hash_table_st& table, memaddr_t entry) {
  free_entries_[entry_bytes(table)].push_back(entry);
}

// The entry is complete in memory before a bucket points to it; a chain
// that must grow is refused before anything is written if no bucket is free.
error hash_tables::insert(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
                          std::span<const std::uint8_t> result) {
  if (const error e = check(table, key, result); e != error::none) return e;
  if (find(table, key)) return error::exists;
  const chain_end end = last_bucket(table, key);
  if (end.count == HASH_BUCKET_ENTRIES && pool_.free_count() == 0) return error::table_full;
  const std::optional<memaddr_t> entry = write_entry(table, key, result);
  if (!entry) return error::table_full;
  hash_memory_io chain_io = io();
  const auto signature = static_cast<std::uint8_t>(hash_table_key_hash(table, key) >> SIGNATURE_SHIFT);
  hash_chain_add(chain_io, end.bucket, {*entry, signature});
  return error::none;
}

error hash_tables::update(const lookup_hash_table_st& table, std::span<const std::uint8_t> key,
                          std::span<const std::uint8_t> result) {
  if (const error e = check(table, key, result); e != error::none) return e;
  const std::optional<hash_position_st> at = find(table, key);
  if (!at) return error::not_found;
  const std::optional<memaddr_t> entry = write_entry(table, key, result);
  if (!entry) return error::table_full;
  hash_memory_io chain_io = io();
  free_entry(table, hash_chain_replace(chain_io, at->bucket, at->index, *entry));
  return error::none;
}

error hash_tables::remove(const lookup_hash_table_st& table, std::span<const std::uint8_t> key) {
  if (const error e = check(table, key, {}); e != error::none) return e;
  const std::optional<hash_position_st> at = find(table, key);
  if (!at) return error::not_found;
  hash_memory_io chain_io = io();
  free_entry(table, hash_chain_remove(chain_io, at->bucket, at->prev_bucket, at->index));
  return error::none;
}

void install_hash_bucket_queue(model::npu& n, memaddr_t queue, memaddr_t array, memaddr_t buckets_base,
                               std::uint32_t count) {
  std::vector<be_u32> slots(count);
  for (std::uint32_t i = 0; i < count; ++i) slots[i] = buckets_base + i * HASH_BUCKET_BYTES;
  write_record(n, array, {reinterpret_cast<const std::uint8_t*>(slots.data()), slots.size() * sizeof(be_u32)});
  q_index_q_st block{};
  block.index_array = array;
  block.index_array_size = count;
  block.free_count = count;
  write_record(n, queue, {reinterpret_cast<const std::uint8_t*>(&block), sizeof block});
}

}  // namespace ctrl
