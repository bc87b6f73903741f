// The program's 32-byte group writes, as the MAP-T logging table uses them:
// its buckets lie where the caller says, in groups of two, and a writer's
// search holds the lock of its home bucket.
#include "hash_test_util.h"

namespace {

using namespace ht;

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
