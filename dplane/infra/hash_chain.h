// Changes of a bucket chain, written once for both writers of the exact-key
// tables: the program, through its DMA requests, and the control side,
// straight into table memory. Each gives an Io with
//   hash_search_bucket_st read(memaddr_t bucket)
//   void write(memaddr_t bucket, const hash_search_bucket_st&)  one 16-byte write
//   hash_entry_head_st read_entry_head(memaddr_t entry)
//   memaddr_t take_bucket()        a free bucket, 0 if none is left
//   void give_bucket(memaddr_t bucket)
//
// Readers take no lock, so every write leaves a chain in which each entry is
// found: a bucket is written only after what it will point to is complete,
// an entry that moves is written into its new place before it leaves the old
// one, and the buckets a change touches are written in chain order.
#pragma once

#include <cstdint>
#include <cstring>

#include "dplane/infra/lookup_tables.h"
#include "fwc_hash.h"

// One entry of a bucket: the entry's address and its signature.
struct hash_chain_slot_st {
  memaddr_t entry_addr;
  std::uint8_t signature;
};

// A bucket as a list of entries and its link (0: the last of its chain).
struct hash_chain_bucket_st {
  memaddr_t addr;
  hash_chain_slot_st slots[HASH_BUCKET_ENTRIES];
  std::uint32_t count;
  memaddr_t link;
};

hash_chain_bucket_st hash_chain_unpack(memaddr_t addr, const hash_search_bucket_st& b);
hash_search_bucket_st hash_chain_pack(const hash_chain_bucket_st& c);
// A lone entry of a table of the single-entry form keeps its key in the
// bucket: the form follows from the entry's table id.
boolean_t hash_chain_single_form(hash_tbl_id_t id);
void hash_chain_put_single(hash_search_bucket_st& b, const hash_entry_head_st& head);
// Entry i leaves; the last entry of the bucket fills its place.
void hash_chain_take_out(hash_chain_bucket_st& c, std::uint32_t i);

template <class Io>
hash_chain_bucket_st hash_chain_load(Io& io, memaddr_t addr) {
  return hash_chain_unpack(addr, io.read(addr));
}

// Writes the bucket in the layout its entries call for.
template <class Io>
void hash_chain_store(Io& io, const hash_chain_bucket_st& c) {
  hash_search_bucket_st b = hash_chain_pack(c);
  if (c.count == 1 && c.link == 0) {
    const hash_entry_head_st head = io.read_entry_head(c.slots[0].entry_addr);
    if (hash_chain_single_form(head.hash_tbl_id)) hash_chain_put_single(b, head);
  }
  io.write(c.addr, b);
}

// Adds an entry to the last bucket of a chain. A full bucket hands its third
// entry and the new one to a free bucket, written first; only then does the
// old bucket link to it. FALSE, with nothing written, if no bucket is free.
template <class Io>
boolean_t hash_chain_add(Io& io, memaddr_t last_bucket, hash_chain_slot_st added) {
  hash_chain_bucket_st c = hash_chain_load(io, last_bucket);
  if (c.count < HASH_BUCKET_ENTRIES) {
    c.slots[c.count++] = added;
    hash_chain_store(io, c);
    return TRUE;
  }
  const memaddr_t fresh = io.take_bucket();
  if (fresh == 0) return FALSE;
  hash_chain_store(io, {fresh, {c.slots[2], added, {}}, 2, 0});
  c.count = HASH_CHAINED_BUCKET_ENTRIES;
  c.link = fresh;
  hash_chain_store(io, c);
  return TRUE;
}

// Removes entry `index` of the bucket at bucket_addr, whose chain predecessor
// is prev_addr (0 at the home bucket), and returns the removed entry's
// address. The hole is filled from the end of its bucket, and a chained
// bucket's from the first entry of the next, so the chain stays dense and
// only its last bucket shrinks. A last bucket left with one entry behind a
// predecessor goes into the predecessor as its third entry; the predecessor
// is written first, then the emptied bucket is given back.
template <class Io>
memaddr_t hash_chain_remove(Io& io, memaddr_t bucket_addr, memaddr_t prev_addr, std::uint32_t index) {
  hash_chain_bucket_st cur = hash_chain_load(io, bucket_addr);
  const memaddr_t removed = cur.slots[index].entry_addr;
  hash_chain_take_out(cur, index);
  if (cur.link == 0 && cur.count == 1 && prev_addr != 0) {
    hash_chain_bucket_st prev = hash_chain_load(io, prev_addr);
    prev.slots[prev.count++] = cur.slots[0];
    prev.link = 0;
    hash_chain_store(io, prev);
    io.give_bucket(cur.addr);
    return removed;
  }
  while (cur.link != 0) {
    hash_chain_bucket_st next = hash_chain_load(io, cur.link);
    cur.slots[cur.count++] = next.slots[0];
    hash_chain_take_out(next, 0);
    if (next.link == 0 && next.count == 1) {
      cur.slots[cur.count++] = next.slots[0];
      cur.link = 0;
      hash_chain_store(io, cur);
      io.give_bucket(next.addr);
      return removed;
    }
    hash_chain_store(io, cur);
    cur = next;
  }
  hash_chain_store(io, cur);
  return removed;
}

// Puts new_entry_addr in place of entry `index` and returns the old address.
template <class Io>
memaddr_t hash_chain_replace(Io& io, memaddr_t bucket_addr, std::uint32_t index, memaddr_t new_entry_addr) {
  hash_chain_bucket_st c = hash_chain_load(io, bucket_addr);
  const memaddr_t old = c.slots[index].entry_addr;
  c.slots[index].entry_addr = new_entry_addr;
  hash_chain_store(io, c);
  return old;
}
