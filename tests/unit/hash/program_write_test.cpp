// The program's own write operations, as the tables that the data plane
// keeps use them: through a management context, with free buckets from an
// index queue, and the 32-byte group forms.
#include "hash_test_util.h"

namespace {

using namespace ht;

constexpr memaddr_t QUEUE = 0xA8000000;
constexpr memaddr_t QUEUE_ARRAY = 0xA8000100;
constexpr memaddr_t QUEUE_BUCKETS = 0xA8100000;
constexpr memaddr_t ENTRIES = 0xA9000000;

class ProgramWrites : public testing::Test {
 protected:
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  ctrl::hash_tables tables{h.npu()};

  std::uint32_t free_in_queue() {
    q_index_q_st block;
    h.npu().memory().read(h.npu().memory().translate(QUEUE), {reinterpret_cast<std::uint8_t*>(&block), sizeof block});
    return block.free_count.get();
  }

  // The context of a search that stands at entry `index` of `bucket`.
  hash_manage_context_st context_at(memaddr_t bucket, memaddr_t prev, std::uint32_t index, const bytes& key) {
    hash_manage_context_st ctx{};
    ctx.search_ctx.bucket_hash_value = signature_of(t, key);
    ctx.search_ctx.bucket_entry_index = index;
    ctx.ext.prev_bucket_addr = prev;
    ctx.ext.bucket_addr = bucket;
    return ctx;
  }
  bool findable(const bytes& key) { return search(h, row, key).rc == HASH_SEARCH_RC_MATCH; }
};

TEST_F(ProgramWrites, InsertIntoAFullBucketTakesABucketFromTheQueueAndDeleteGivesItBack) {
  ctrl::install_hash_bucket_queue(h.npu(), QUEUE, QUEUE_ARRAY, QUEUE_BUCKETS, 8);
  const std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  for (std::uint32_t i = 0; i < 3; ++i) ASSERT_EQ(tables.insert(t, keys[i], result_of(1)), ctrl::error::none);
  write_entry(h, t, ENTRIES, keys[3], result_of(0x44));
  const memaddr_t home = home_of(t, keys[0]);

  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = context_at(home, 0, 0, keys[3]);
    EXPECT_EQ(hash_insert(env, &ctx, ENTRIES, QUEUE), TRUE);
  });
  for (const bytes& k : keys) EXPECT_TRUE(findable(k));
  EXPECT_EQ(free_in_queue(), 7u);
  const hash_chain_bucket_st head = hash_chain_unpack(home, read_bucket(h, home));
  ASSERT_EQ(head.link, QUEUE_BUCKETS);

  const std::optional<ctrl::hash_position_st> at = tables.find(t, keys[3]);
  ASSERT_TRUE(at);
  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = context_at(at->bucket, at->prev_bucket, at->index, keys[3]);
    EXPECT_EQ(hash_delete(env, &ctx, QUEUE), ENTRIES);
  });
  EXPECT_FALSE(findable(keys[3]));
  for (std::uint32_t i = 0; i < 3; ++i) EXPECT_TRUE(findable(keys[i]));
  EXPECT_EQ(hash_chain_unpack(home, read_bucket(h, home)).link, 0u);
  EXPECT_EQ(free_in_queue(), 8u);
}

TEST_F(ProgramWrites, InsertWithAnEmptyQueueIntoAFullBucketWritesNothing) {
  ctrl::install_hash_bucket_queue(h.npu(), QUEUE, QUEUE_ARRAY, QUEUE_BUCKETS, 0);
  const std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  for (std::uint32_t i = 0; i < 3; ++i) ASSERT_EQ(tables.insert(t, keys[i], result_of(1)), ctrl::error::none);
  const memaddr_t home = home_of(t, keys[0]);
  const hash_search_bucket_st before = read_bucket(h, home);
  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = context_at(home, 0, 0, keys[3]);
    EXPECT_EQ(hash_insert(env, &ctx, ENTRIES, QUEUE), FALSE);
  });
  const hash_search_bucket_st after = read_bucket(h, home);
  EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
}

TEST_F(ProgramWrites, ReplacePutsTheNewEntryInTheOldOnesPlace) {
  const bytes k = key_of(4, 0x1234);
  ASSERT_EQ(tables.insert(t, k, result_of(1)), ctrl::error::none);
  write_entry(h, t, ENTRIES, k, result_of(0x42));
  const ctrl::hash_position_st at = *tables.find(t, k);
  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = context_at(at.bucket, at.prev_bucket, at.index, k);
    EXPECT_EQ(hash_replace(env, &ctx, ENTRIES), at.entry);
  });
  const search_outcome out = search(h, row, k);
  ASSERT_EQ(out.rc, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(bytes(out.result.begin(), out.result.begin() + 8), result_of(0x42));
}

TEST_F(ProgramWrites, ABucketWriteLeavesTheDistributionHeaderAsItWas) {
  hash_search_bucket_st b{};
  b.hash_entry_addr[0] = 0x12345670;
  h.on_thread([&](env_t env) {
    std::uint8_t header[64];
    for (std::uint32_t i = 0; i < sizeof header; ++i) header[i] = static_cast<std::uint8_t>(i);
    std::memcpy(env_get_dmem_start(env), header, sizeof header);
    hash_bucket_write(env, 0xA8200000, &b);
    EXPECT_EQ(std::memcmp(env_get_dmem_start(env), header, sizeof header), 0);
  });
  EXPECT_EQ(read_bucket(h, 0xA8200000).hash_entry_addr[0].get(), 0x12345670u);
}

// Two neighbouring buckets form a 32-byte group; a search standing at the
// second has the first's address as prev_bucket_addr.
class GroupWrites : public testing::Test {
 protected:
  testkit::npu_harness h;
  static constexpr memaddr_t GROUP = 0x48000000;

  hash_manage_context_st at_half(std::uint32_t half, std::uint32_t index = 0) {
    hash_manage_context_st ctx{};
    ctx.search_ctx.bucket_hash_value = 0x5A;
    ctx.search_ctx.bucket_entry_index = index;
    ctx.ext.prev_bucket_addr = half ? GROUP : 0;
    ctx.ext.bucket_addr = GROUP + half * HASH_BUCKET_BYTES;
    return ctx;
  }
  hash_chain_bucket_st half(std::uint32_t i) {
    return hash_chain_unpack(0, read_bucket(h, GROUP + i * HASH_BUCKET_BYTES));
  }
};

TEST_F(GroupWrites, EachHalfChangesAloneAndAFullHalfRefuses) {
  hash_search_bucket_st first{};
  first.hash_entry_addr[0] = 0xAAAA0000;
  hash_search_bucket_st::bucket_entry_count::set(first, 1);
  write_bucket(h, GROUP, first);
  h.on_thread([&](env_t env) {
    for (std::uint32_t i = 0; i < 3; ++i) {
      hash_manage_context_st ctx = at_half(1);
      EXPECT_EQ(hash_insert_32B(env, &ctx, 0xB0000000 + i * 0x40, 0), TRUE);
    }
    hash_manage_context_st full = at_half(1);
    EXPECT_EQ(hash_insert_32B(env, &full, 0xBF000000, 0), FALSE);
  });
  EXPECT_EQ(half(0).count, 1u);
  EXPECT_EQ(half(0).slots[0].entry_addr, 0xAAAA0000u);
  ASSERT_EQ(half(1).count, 3u);
  EXPECT_EQ(half(1).slots[2].entry_addr, 0xB0000080u);
  EXPECT_EQ(half(1).slots[2].signature, 0x5A);

  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = at_half(1, 0);
    EXPECT_EQ(hash_delete_32B(env, &ctx, 0), 0xB0000000u);
  });
  ASSERT_EQ(half(1).count, 2u);
  EXPECT_EQ(half(1).slots[0].entry_addr, 0xB0000080u);
  EXPECT_EQ(half(0).slots[0].entry_addr, 0xAAAA0000u);
}

}  // namespace

// The MAP-T logging table: its buckets lie where the caller says, in groups
// of two, and the data plane writes them with the group forms.
class CallerSpace : public testing::Test {
 protected:
  testkit::npu_harness h;
  const lookup_hash_table_st& t = HASH_TABLE_MAPT_LOGG_HASH;
  static constexpr memaddr_t BASE = 0x48000000;
  static constexpr memaddr_t ENTRY = 0xAA000000;

  // A key whose bucket number is odd (the second of its group) or even.
  bytes key_in_half(std::uint32_t half) {
    for (std::uint32_t seed = 1;; ++seed) {
      bytes k = key_of(key_width(t), seed);
      if (ctrl::hash_table_key_hash(t, k) % t.bucket_count % 2 == half) return k;
    }
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
        const hash_search_result_st* r = lookup_result_ID_MAPT_LOGG_HASH_RES__TAIL(env);
        result->assign(r->bytes, r->bytes + 8);
      }
    });
    return rc;
  }
};

TEST_F(CallerSpace, ASecondHalfBucketIsFoundInsertedAndDeletedAloneInItsGroup) {
  const bytes k = key_in_half(1);
  const memaddr_t bucket = BASE + ctrl::hash_table_key_hash(t, k) % t.bucket_count * HASH_BUCKET_BYTES;
  hash_manage_context_st ctx{};
  ASSERT_EQ(search_into(ctx, k), HASH_SEARCH_RC_NO_MATCH);
  EXPECT_EQ(ctx.ext.bucket_addr.get(), bucket);
  EXPECT_EQ(ctx.ext.prev_bucket_addr.get(), bucket - HASH_BUCKET_BYTES);

  write_entry(h, t, ENTRY, k, result_of(0x6D));
  h.on_thread([&](env_t env) { EXPECT_EQ(hash_insert_32B(env, &ctx, ENTRY, 0), TRUE); });
  bytes result;
  ASSERT_EQ(search_into(ctx, k, &result), HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(result, result_of(0x6D));
  EXPECT_EQ(hash_chain_unpack(0, read_bucket(h, bucket - HASH_BUCKET_BYTES)).count, 0u);

  h.on_thread([&](env_t env) { EXPECT_EQ(hash_delete_32B(env, &ctx, 0), ENTRY); });
  EXPECT_EQ(search_into(ctx, k), HASH_SEARCH_RC_NO_MATCH);
}

TEST_F(CallerSpace, AFirstHalfBucketHasNoPredecessor) {
  const bytes k = key_in_half(0);
  hash_manage_context_st ctx{};
  ASSERT_EQ(search_into(ctx, k), HASH_SEARCH_RC_NO_MATCH);
  EXPECT_EQ(ctx.ext.prev_bucket_addr.get(), 0u);
  write_entry(h, t, ENTRY, k, result_of(0x6E));
  h.on_thread([&](env_t env) { EXPECT_EQ(hash_insert_32B(env, &ctx, ENTRY, 0), TRUE); });
  EXPECT_EQ(search_into(ctx, k), HASH_SEARCH_RC_MATCH);
}

// A writer's search takes the lock of its home bucket first: a second writer
// of the same bucket gets no lock and asks for no bucket.
TEST_F(CallerSpace, AWritersSearchHoldsItsHomeBucketsLock) {
  bytes k = key_in_half(0);
  const memaddr_t bucket = BASE + ctrl::hash_table_key_hash(t, k) % t.bucket_count * HASH_BUCKET_BYTES;
  h.on_thread([&](env_t env) {
    lookup_dbg_new_pass(env);
    hash_manage_context_st ctx{};
    const lock_handle_t held =
        hash_search_part_1_lock_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &ctx.search_ctx, BASE, FALSE);
    EXPECT_EQ(held, default_lock_bitmap_hash(bucket, LOCK_BITS_DEFAULT));
    EXPECT_EQ(ctx.ext.bucket_addr.get(), bucket);
    hash_search_part_2_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &ctx.search_ctx);
    EXPECT_EQ(hash_search_part_3_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &ctx.search_ctx), HASH_SEARCH_RC_NO_MATCH);

    hash_manage_context_st other{};
    EXPECT_EQ(hash_search_part_1_lock_ID_MAPT_LOGG_HASH__TAIL(env, k.data(), &other.search_ctx, BASE, FALSE),
              BITMAP_LOCK_TAKEN);
    EXPECT_EQ(other.ext.bucket_addr.get(), 0u);
    release_lock_ID_MAPT_LOGG_HASH__TAIL(env, held);
  });
}
