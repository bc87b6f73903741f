// Changes of bucket chains by both writers: the control side, watched
// between its writes by the program's search, and the program through its
// management context with free buckets from an index queue.
#include <functional>

#include "hash_test_util.h"

namespace {

using namespace ht;

// The control side's memory access, running `check` after each bucket write
// so that a test sees the chain between the writes of one change.
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

constexpr memaddr_t SPARE = 0xA6000000;
constexpr memaddr_t ENTRY = 0xA7000000;
constexpr memaddr_t QUEUE = 0xA8000000;

class Chains : public testing::Test {
 protected:
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  ctrl::hash_tables tables{h.npu()};
  const std::vector<bytes> keys = keys_in_one_bucket(t, 8);
  const memaddr_t home = home_of(t, keys[0]);

  bool findable(const bytes& key) { return search(h, row, key).rc == HASH_SEARCH_RC_MATCH; }
  void expect_findable(std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) EXPECT_TRUE(findable(keys[i])) << "key " << i << " lost";
  }
  // The program's management context standing at entry `index` of `bucket`.
  hash_manage_context_st context_at(memaddr_t bucket, memaddr_t prev, std::uint32_t index, std::uint8_t sig) {
    hash_manage_context_st ctx{};
    ctx.search_ctx.bucket_hash_value = sig;
    ctx.search_ctx.bucket_entry_index = index;
    ctx.ext.prev_bucket_addr = prev;
    ctx.ext.bucket_addr = bucket;
    return ctx;
  }
  std::uint32_t free_in_queue() {
    q_index_q_st block;
    h.npu().memory().read(h.npu().memory().translate(QUEUE), {reinterpret_cast<std::uint8_t*>(&block), sizeof block});
    return block.free_count.get();
  }
};

TEST_F(Chains, AnInsertIntoAFullBucketKeepsEveryKeyFindableBetweenItsTwoWrites) {
  insert(tables, t, keys, 3);
  write_entry(h, t, ENTRY, keys[3], result_of(4));
  ctrl::hash_bucket_pool pool(SPARE, 1);
  watched_io io{{h.npu(), pool}, [&] { expect_findable(0, 3); }};
  ASSERT_TRUE(hash_chain_add(io, home, {ENTRY, signature_of(t, keys[3])}));
  EXPECT_EQ(io.writes, 2u);
  expect_findable(0, 4);
  // The third entry moves on with the new one: [0 1] -> [2 3].
  EXPECT_EQ(chain_bucket(h, home).count, 2u);
  EXPECT_EQ(chain_bucket(h, SPARE).count, 2u);
}

// Seven keys make the chain home [0 1] -> [2 3] -> [4 5 6]; the hole at the
// head is filled along the chain, one bucket write at a time.
TEST_F(Chains, ARemoveAtTheHeadOfAThreeBucketChainKeepsTheRestFindableAtEveryWrite) {
  insert(tables, t, keys, 7);
  const std::optional<ctrl::hash_position_st> at = tables.find(t, keys[0]);
  ASSERT_TRUE(at && at->bucket == home && at->prev_bucket == 0 && at->index == 0);
  ctrl::hash_bucket_pool spare(SPARE, 0);
  watched_io io{{h.npu(), spare}, [&] { expect_findable(1, 7); }};
  EXPECT_EQ(hash_chain_remove(io, home, 0, 0), at->entry);
  EXPECT_EQ(io.writes, 3u);
  EXPECT_FALSE(findable(keys[0]));
  expect_findable(1, 7);
}

// Eight keys: [0 1] -> [2 3] -> [4 5] -> [6 7]. A last bucket left with one
// entry goes into its predecessor; emptied chains give every bucket back.
TEST_F(Chains, RemovalsGiveBucketsBackAsTheChainShrinks) {
  const std::size_t free_before = tables.free_buckets();
  insert(tables, t, keys, 8);
  EXPECT_EQ(tables.free_buckets(), free_before - 3);
  ASSERT_EQ(tables.remove(t, keys[7]), ctrl::error::none);
  EXPECT_EQ(tables.free_buckets(), free_before - 2);
  for (std::size_t i = 0; i < 7; ++i) {
    ASSERT_EQ(tables.remove(t, keys[(i * 3) % 7]), ctrl::error::none);
    for (std::size_t j = i + 1; j < 7; ++j) EXPECT_TRUE(findable(keys[(j * 3) % 7]));
  }
  EXPECT_EQ(tables.free_buckets(), free_before);
  EXPECT_EQ(chain_bucket(h, home).count, 0u);
}

TEST_F(Chains, AnUpdateChangesTheResultAndRefusalsChangeNothing) {
  insert(tables, t, keys, 2);
  ASSERT_EQ(tables.update(t, keys[1], result_of(0x99)), ctrl::error::none);
  EXPECT_EQ(search(h, row, keys[1]).result, result_of(0x99));
  EXPECT_EQ(tables.insert(t, keys[0], result_of(2)), ctrl::error::exists);
  EXPECT_EQ(tables.remove(t, keys[2]), ctrl::error::not_found);
  EXPECT_EQ(tables.update(t, keys[2], result_of(2)), ctrl::error::not_found);
  EXPECT_EQ(tables.insert(HASH_TABLE_HOST_HASH, key_of(4, 1), result_of(1)), ctrl::error::unsupported);
  EXPECT_EQ(tables.insert(HASH_TABLE_MAPT_LOGG_HASH, key_of(49, 1), result_of(1)), ctrl::error::unsupported);
  EXPECT_EQ(search(h, row, keys[0]).result, result_of(0));
}

TEST_F(Chains, TheProgramsInsertTakesABucketFromItsQueueAndItsDeleteGivesItBack) {
  ctrl::install_hash_bucket_queue(h.npu(), QUEUE, QUEUE + 0x100, SPARE, 8);
  insert(tables, t, keys, 3);
  write_entry(h, t, ENTRY, keys[3], result_of(0x44));
  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = context_at(home, 0, 0, signature_of(t, keys[3]));
    EXPECT_EQ(hash_insert(env, &ctx, ENTRY, QUEUE), TRUE);
  });
  expect_findable(0, 4);
  EXPECT_EQ(free_in_queue(), 7u);
  EXPECT_EQ(chain_bucket(h, home).link, SPARE);

  const ctrl::hash_position_st at = tables.find(t, keys[3]).value();
  h.on_thread([&](env_t env) {
    hash_manage_context_st ctx = context_at(at.bucket, at.prev_bucket, at.index, 0);
    EXPECT_EQ(hash_delete(env, &ctx, QUEUE), ENTRY);
  });
  EXPECT_FALSE(findable(keys[3]));
  expect_findable(0, 3);
  EXPECT_EQ(chain_bucket(h, home).link, 0u);
  EXPECT_EQ(free_in_queue(), 8u);
}

TEST(FullTables, AnInsertWithoutAFreeBucketOrRoomForItsEntryIsRefusedAndChangesNothing) {
  testkit::npu_harness h;
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  ctrl::hash_tables no_buckets(h.npu(), {0xA0000000, 0x10000, 0xA1000000, 0});
  const std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  insert(no_buckets, t, keys, 3);
  const hash_search_bucket_st before = read_bucket(h, home_of(t, keys[0]));
  EXPECT_EQ(no_buckets.insert(t, keys[3], result_of(1)), ctrl::error::table_full);
  EXPECT_TRUE(same(read_bucket(h, home_of(t, keys[0])), before));
  EXPECT_EQ(search(h, row, keys[3]).rc, HASH_SEARCH_RC_NO_MATCH);

  testkit::npu_harness h2;
  ctrl::hash_tables two_entries(h2.npu(), {0xA0000000, 64, 0xA1000000, 4});  // two 32-byte entries
  insert(two_entries, t, keys, 2);
  EXPECT_EQ(two_entries.insert(t, keys[2], result_of(1)), ctrl::error::table_full);
  EXPECT_FALSE(two_entries.find(t, keys[2]));
  ASSERT_EQ(two_entries.remove(t, keys[0]), ctrl::error::none);
  EXPECT_EQ(two_entries.insert(t, keys[2], result_of(1)), ctrl::error::none);
}

}  // namespace
