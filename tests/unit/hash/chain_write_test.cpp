// Changes of bucket chains: the shared chain code as the control side runs
// it, watched between its writes by the program's search, and the control
// side's refusals.
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

class Chains : public testing::Test {
 protected:
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  ctrl::hash_tables tables{h.npu()};

  bool findable(const bytes& key) { return search(h, row, key).rc == HASH_SEARCH_RC_MATCH; }
  void expect_findable(const std::vector<bytes>& keys) {
    for (const bytes& k : keys) EXPECT_TRUE(findable(k)) << "key " << int(k[0]) << " lost";
  }
};

TEST_F(Chains, AnInsertIntoAFullBucketKeepsEveryKeyFindableBetweenItsTwoWrites) {
  const std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  insert(tables, t, keys, 3);
  const memaddr_t home = home_of(t, keys[0]);
  const hash_chain_bucket_st full = chain_bucket(h, home);
  constexpr memaddr_t ENTRY = 0xA7000000;
  write_entry(h, t, ENTRY, keys[3], result_of(4));

  ctrl::hash_bucket_pool pool(0xA6000000, 1);
  watched_io io{{h.npu(), pool}, [&] { expect_findable({keys[0], keys[1], keys[2]}); }};
  ASSERT_TRUE(hash_chain_add(io, home, {ENTRY, signature_of(t, keys[3])}));
  EXPECT_EQ(io.writes, 2u);
  expect_findable(keys);
  // The third entry moves on with the new one: [0 1] -> [2 3].
  EXPECT_EQ(chain_bucket(h, home).count, 2u);
  EXPECT_EQ(chain_bucket(h, home).link, 0xA6000000u);
  const hash_chain_bucket_st fresh = chain_bucket(h, 0xA6000000);
  ASSERT_EQ(fresh.count, 2u);
  EXPECT_EQ(fresh.slots[0].entry_addr, full.slots[2].entry_addr);
  EXPECT_EQ(fresh.slots[1].entry_addr, ENTRY);
}

// Seven keys make the chain home [0 1] -> [2 3] -> [4 5 6]; the hole at the
// head is filled along the chain, one bucket write at a time.
TEST_F(Chains, ARemoveAtTheHeadOfAThreeBucketChainKeepsTheRestFindableAtEveryWrite) {
  const std::vector<bytes> keys = keys_in_one_bucket(t, 7);
  insert(tables, t, keys, 7);
  const std::vector<bytes> rest(keys.begin() + 1, keys.end());
  const std::optional<ctrl::hash_position_st> at = tables.find(t, keys[0]);
  ASSERT_TRUE(at && at->prev_bucket == 0 && at->index == 0);

  ctrl::hash_bucket_pool spare(0xA6000000, 0);
  watched_io io{{h.npu(), spare}, [&] { expect_findable(rest); }};
  EXPECT_EQ(hash_chain_remove(io, at->bucket, 0, 0), at->entry);
  EXPECT_EQ(io.writes, 3u);
  EXPECT_FALSE(findable(keys[0]));
  expect_findable(rest);
  const hash_chain_bucket_st last = chain_bucket(h, chain_bucket(h, chain_bucket(h, at->bucket).link).link);
  EXPECT_EQ(last.count, 2u);
  EXPECT_EQ(last.link, 0u);
}

// Eight keys: [0 1] -> [2 3] -> [4 5] -> [6 7]. A last bucket left with one
// entry goes into its predecessor; emptied chains give every bucket back.
TEST_F(Chains, RemovalsGiveBucketsBackAsTheChainShrinks) {
  const std::size_t free_before = tables.free_buckets();
  const std::vector<bytes> keys = keys_in_one_bucket(t, 8);
  insert(tables, t, keys, 8);
  EXPECT_EQ(tables.free_buckets(), free_before - 3);
  ASSERT_EQ(tables.remove(t, keys[7]), ctrl::error::none);
  EXPECT_EQ(tables.free_buckets(), free_before - 2);
  for (std::size_t i = 0; i < 7; ++i) {
    ASSERT_EQ(tables.remove(t, keys[(i * 3) % 7]), ctrl::error::none);
    for (std::size_t j = i + 1; j < 7; ++j) EXPECT_TRUE(findable(keys[(j * 3) % 7]));
  }
  EXPECT_EQ(tables.free_buckets(), free_before);
  EXPECT_EQ(chain_bucket(h, home_of(t, keys[0])).count, 0u);
}

TEST_F(Chains, AnUpdateChangesTheResultAndRefusalsChangeNothing) {
  const std::vector<bytes> keys = keys_in_one_bucket(t, 2);
  insert(tables, t, keys, 2);
  ASSERT_EQ(tables.update(t, keys[1], result_of(0x99)), ctrl::error::none);
  EXPECT_EQ(search(h, row, keys[1]).result, result_of(0x99));
  EXPECT_EQ(tables.insert(t, keys[0], result_of(2)), ctrl::error::exists);
  EXPECT_EQ(tables.remove(t, key_of(4, 0xDEAD)), ctrl::error::not_found);
  EXPECT_EQ(tables.update(t, key_of(4, 0xDEAD), result_of(2)), ctrl::error::not_found);
  EXPECT_EQ(tables.insert(HASH_TABLE_HOST_HASH, key_of(4, 1), result_of(1)), ctrl::error::unsupported);
  EXPECT_EQ(tables.insert(HASH_TABLE_MAPT_LOGG_HASH, key_of(49, 1), result_of(1)), ctrl::error::unsupported);
  EXPECT_EQ(search(h, row, keys[0]).result, result_of(0));
}

TEST(FullTables, AnInsertThatNeedsABucketWhenNoneIsFreeIsRefusedAndChangesNothing) {
  testkit::npu_harness h;
  ctrl::hash_tables tables(h.npu(), {0xA0000000, 0x10000, 0xA1000000, 0});
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  const std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  insert(tables, t, keys, 3);
  const hash_search_bucket_st before = read_bucket(h, home_of(t, keys[0]));
  EXPECT_EQ(tables.insert(t, keys[3], result_of(1)), ctrl::error::table_full);
  EXPECT_TRUE(same(read_bucket(h, home_of(t, keys[0])), before));
  EXPECT_EQ(search(h, row, keys[3]).rc, HASH_SEARCH_RC_NO_MATCH);
}

TEST(FullTables, AnInsertWithoutRoomForItsEntryIsRefused) {
  testkit::npu_harness h;
  const lookup_hash_table_st& t = HASH_TABLE_PPPOE_HASH;
  ctrl::hash_tables tables(h.npu(), {0xA0000000, 64, 0xA1000000, 4});  // two 32-byte entries
  const std::vector<bytes> keys = {key_of(4, 1), key_of(4, 2), key_of(4, 3)};
  insert(tables, t, keys, 2);
  EXPECT_EQ(tables.insert(t, keys[2], result_of(1)), ctrl::error::table_full);
  EXPECT_FALSE(tables.find(t, keys[2]));
  ASSERT_EQ(tables.remove(t, keys[0]), ctrl::error::none);
  EXPECT_EQ(tables.insert(t, keys[2], result_of(1)), ctrl::error::none);
}

}  // namespace
