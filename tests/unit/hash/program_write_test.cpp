// The program's own write operations, as the tables that the data plane
// keeps use them: through a management context, with free buckets from an
// index queue, and the 32-byte group forms.
#include "hash_test_util.h"

namespace {

using namespace ht;

constexpr memaddr_t QUEUE = 0xA8000000;
constexpr memaddr_t QUEUE_BUCKETS = 0xA8100000;
constexpr memaddr_t ENTRIES = 0xA9000000;

// The context of a search that stands at entry `index` of `bucket`.
hash_manage_context_st context_at(memaddr_t bucket, memaddr_t prev, std::uint32_t index, std::uint8_t signature) {
  hash_manage_context_st ctx{};
  ctx.search_ctx.bucket_hash_value = signature;
  ctx.search_ctx.bucket_entry_index = index;
  ctx.ext.prev_bucket_addr = prev;
  ctx.ext.bucket_addr = bucket;
  return ctx;
}

class ProgramWrites : public testing::Test {
 protected:
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  ctrl::hash_tables tables{h.npu()};
  const std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  const memaddr_t home = home_of(t, keys[0]);

  // Three keys fill the home bucket; the fourth's entry stands at ENTRIES.
  void fill_home(std::uint32_t queue_buckets) {
    ctrl::install_hash_bucket_queue(h.npu(), QUEUE, QUEUE + 0x100, QUEUE_BUCKETS, queue_buckets);
    insert(tables, t, keys, 3);
    write_entry(h, t, ENTRIES, keys[3], result_of(0x44));
  }
  boolean_t insert_fourth() {
    boolean_t ok = FALSE;
    h.on_thread([&](env_t env) {
      hash_manage_context_st ctx = context_at(home, 0, 0, signature_of(t, keys[3]));
      ok = hash_insert(env, &ctx, ENTRIES, QUEUE);
    });
    return ok;
  }
  std::uint32_t free_in_queue() {
    q_index_q_st block;
    h.npu().memory().read(h.npu().memory().translate(QUEUE), {reinterpret_cast<std::uint8_t*>(&block), sizeof block});
    return block.free_count.get();
  }
  bool findable(const bytes& key) { return search(h, row, key).rc == HASH_SEARCH_RC_MATCH; }
};

TEST_F(ProgramWrites, InsertIntoAFullBucketTakesABucketFromTheQueueAndDeleteGivesItBack) {
  fill_home(8);
  EXPECT_EQ(insert_fourth(), TRUE);
  for (const bytes& k : keys) EXPECT_TRUE(findable(k));
  EXPECT_EQ(free_in_queue(), 7u);
  EXPECT_EQ(chain_bucket(h, home).link, QUEUE_BUCKETS);

  const std::optional<ctrl::hash_position_st> at = tables.find(t, keys[3]);
  ASSERT_TRUE(at);
  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = context_at(at->bucket, at->prev_bucket, at->index, 0);
    EXPECT_EQ(hash_delete(env, &ctx, QUEUE), ENTRIES);
  });
  EXPECT_FALSE(findable(keys[3]));
  for (std::uint32_t i = 0; i < 3; ++i) EXPECT_TRUE(findable(keys[i]));
  EXPECT_EQ(chain_bucket(h, home).link, 0u);
  EXPECT_EQ(free_in_queue(), 8u);
}

TEST_F(ProgramWrites, InsertWithAnEmptyQueueIntoAFullBucketWritesNothing) {
  fill_home(0);
  const hash_search_bucket_st before = read_bucket(h, home);
  EXPECT_EQ(insert_fourth(), FALSE);
  EXPECT_TRUE(same(read_bucket(h, home), before));
}

// The bucket write borrows the first cells of data memory, which hold the
// distribution header, and puts them back.
TEST_F(ProgramWrites, ReplacePutsTheNewEntryInTheOldOnesPlaceAndLeavesTheHeaderAsItWas) {
  insert(tables, t, keys, 1);
  write_entry(h, t, ENTRIES, keys[0], result_of(0x42));
  const ctrl::hash_position_st at = *tables.find(t, keys[0]);
  h.on_thread([&](env_t env) {
    std::uint8_t header[64];
    for (std::uint32_t i = 0; i < sizeof header; ++i) header[i] = static_cast<std::uint8_t>(i);
    std::memcpy(env_get_dmem_start(env), header, sizeof header);
    hash_manage_context_st ctx = context_at(at.bucket, at.prev_bucket, at.index, 0);
    EXPECT_EQ(hash_replace(env, &ctx, ENTRIES), at.entry);
    EXPECT_EQ(std::memcmp(env_get_dmem_start(env), header, sizeof header), 0);
  });
  EXPECT_EQ(search(h, row, keys[0]).result, result_of(0x42));
}

// The MAP-T logging table: its buckets lie where the caller says, in groups
// of two, and the data plane writes them with the group forms.
class CallerSpace : public testing::Test {
 protected:
  testkit::npu_harness h;
  const lookup_hash_table_st& t = HASH_TABLE_MAPT_LOGG_HASH;
  static constexpr memaddr_t BASE = 0x48000000;

  // A key whose bucket is the first (0) or second (1) of its group.
  bytes key_in_half(std::uint32_t half) {
    for (std::uint32_t seed = 1;; ++seed) {
      bytes k = key_of(key_width(t), seed);
      if (ctrl::hash_table_key_hash(t, k) % t.bucket_count % 2 == half) return k;
    }
  }
  memaddr_t bucket_of(const bytes& k) {
    return BASE + ctrl::hash_table_key_hash(t, k) % t.bucket_count * HASH_BUCKET_BYTES;
  }
  hash_search_rc_t search_into(hash_manage_context_st& ctx, bytes key, bytes* result = nullptr) {
    hash_search_rc_t rc{};
    h.on_thread([&](env_t env) {
      lookup_dbg_new_pass(env);
      ctx = {};
      hash_search_part_1_ID_MAPT_LOGG_HASH__TAIL(env, key.data(), &ctx.search_ctx, BASE);
      hash_search_part_2_ID_MAPT_LOGG_HASH__TAIL(env, key.data(), &ctx.search_ctx);
      rc = hash_search_part_3_ID_MAPT_LOGG_HASH__TAIL(env, key.data(), &ctx.search_ctx);
      if (rc == HASH_SEARCH_RC_MATCH && result) {
        result->assign(lookup_result_ID_MAPT_LOGG_HASH_RES__TAIL(env)->bytes,
                       lookup_result_ID_MAPT_LOGG_HASH_RES__TAIL(env)->bytes + 8);
      }
    });
    return rc;
  }
};

TEST_F(CallerSpace, EachHalfOfAGroupIsFoundInsertedAndDeletedAlone) {
  constexpr memaddr_t ENTRY = 0xAA000000;
  for (std::uint32_t half : {0u, 1u}) {
    SCOPED_TRACE(half);
    const bytes k = key_in_half(half);
    const memaddr_t bucket = bucket_of(k);
    hash_manage_context_st ctx{};
    ASSERT_EQ(search_into(ctx, k), HASH_SEARCH_RC_NO_MATCH);
    EXPECT_EQ(ctx.ext.bucket_addr.get(), bucket);
    EXPECT_EQ(ctx.ext.prev_bucket_addr.get(), half ? bucket - HASH_BUCKET_BYTES : 0);

    write_entry(h, t, ENTRY, k, result_of(0x6D));
    h.on_thread([&](env_t env) { EXPECT_EQ(hash_insert_32B(env, &ctx, ENTRY, 0), TRUE); });
    bytes result;
    ASSERT_EQ(search_into(ctx, k, &result), HASH_SEARCH_RC_MATCH);
    EXPECT_EQ(result, result_of(0x6D));
    EXPECT_EQ(chain_bucket(h, half ? bucket - HASH_BUCKET_BYTES : bucket + HASH_BUCKET_BYTES).count, 0u);
    h.on_thread([&](env_t env) { EXPECT_EQ(hash_delete_32B(env, &ctx, 0), ENTRY); });
    EXPECT_EQ(search_into(ctx, k), HASH_SEARCH_RC_NO_MATCH);
  }
}

// The group's memory takes no chain; a delete fills its hole with the last
// entry of the bucket.
TEST_F(CallerSpace, AFullHalfRefusesAndADeleteMovesTheLastEntryUp) {
  const bytes k = key_in_half(1);
  hash_manage_context_st ctx{};
  search_into(ctx, k);
  ctx.search_ctx.bucket_entry_index = 0;
  h.on_thread([&](env_t env) {
    for (std::uint32_t i = 0; i < 3; ++i) EXPECT_EQ(hash_insert_32B(env, &ctx, 0xB0000000 + i * 0x40, 0), TRUE);
    EXPECT_EQ(hash_insert_32B(env, &ctx, 0xBF000000, 0), FALSE);
    EXPECT_EQ(hash_delete_32B(env, &ctx, 0), 0xB0000000u);
  });
  const hash_chain_bucket_st b = chain_bucket(h, bucket_of(k));
  ASSERT_EQ(b.count, 2u);
  EXPECT_EQ(b.slots[0].entry_addr, 0xB0000080u);
  EXPECT_EQ(b.slots[0].signature, signature_of(t, k));
}

// A writer's search takes the lock of its home bucket first: a second writer
// of the same bucket gets no lock and asks for no bucket.
TEST_F(CallerSpace, AWritersSearchHoldsItsHomeBucketsLock) {
  bytes k = key_in_half(0);
  h.on_thread([&](env_t env) {
    lookup_dbg_new_pass(env);
    hash_manage_context_st ctx{};
    const lock_handle_t held =
        hash_search_part_1_lock_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &ctx.search_ctx, BASE, FALSE);
    EXPECT_EQ(held, default_lock_bitmap_hash(bucket_of(k), LOCK_BITS_DEFAULT));
    EXPECT_EQ(ctx.ext.bucket_addr.get(), bucket_of(k));
    hash_search_part_2_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &ctx.search_ctx);
    EXPECT_EQ(hash_search_part_3_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &ctx.search_ctx), HASH_SEARCH_RC_NO_MATCH);

    hash_manage_context_st other{};
    EXPECT_EQ(hash_search_part_1_lock_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &other.search_ctx, BASE, FALSE),
              BITMAP_LOCK_TAKEN);
    EXPECT_EQ(other.ext.bucket_addr.get(), 0u);
    release_lock_ID_MAPT_LOGG_HASH__TAIL(env, held);
  });
}

}  // namespace
