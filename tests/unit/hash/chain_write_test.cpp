// Changes of bucket chains: the shared chain code as the control side runs
// it, watched between its writes by the program's search, the refusals of
// the control side, and the program's own write operations.
#include "hash_test_util.h"

namespace {

using namespace ht;

class Chains : public testing::Test {
 protected:
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  ctrl::hash_tables tables{h.npu()};

  bool findable(const bytes& key) { return search(h, row, key).rc == HASH_SEARCH_RC_MATCH; }
  void expect_all_findable(const std::vector<bytes>& keys) {
    for (const bytes& k : keys) EXPECT_TRUE(findable(k)) << "key " << int(k[0]) << " lost";
  }
  std::vector<bytes> insert_in_one_bucket(std::uint32_t count) {
    std::vector<bytes> keys = keys_in_one_bucket(t, count);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      EXPECT_EQ(tables.insert(t, keys[i], result_of(static_cast<std::uint8_t>(i))), ctrl::error::none);
    }
    return keys;
  }
  hash_chain_bucket_st bucket_at(memaddr_t addr) { return hash_chain_unpack(addr, read_bucket(h, addr)); }
};

TEST_F(Chains, AnInsertIntoAFullBucketKeepsEveryKeyFindableBetweenItsTwoWrites) {
  std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  for (std::uint32_t i = 0; i < 3; ++i) ASSERT_EQ(tables.insert(t, keys[i], result_of(1)), ctrl::error::none);
  const memaddr_t home = home_of(t, keys[0]);
  const hash_chain_bucket_st full = bucket_at(home);
  constexpr memaddr_t ENTRY = 0xA7000000;
  write_entry(h, t, ENTRY, keys[3], result_of(4));

  ctrl::hash_bucket_pool pool(0xA6000000, 1);
  watched_io io{{h.npu(), pool}, [&] { expect_all_findable({keys[0], keys[1], keys[2]}); }};
  ASSERT_TRUE(hash_chain_add(io, home, {ENTRY, signature_of(t, keys[3])}));
  EXPECT_EQ(io.writes, 2u);
  expect_all_findable(keys);

  const hash_chain_bucket_st old_bucket = bucket_at(home);
  EXPECT_EQ(old_bucket.count, 2u);
  EXPECT_EQ(old_bucket.link, 0xA6000000u);
  const hash_chain_bucket_st fresh = bucket_at(old_bucket.link);
  ASSERT_EQ(fresh.count, 2u);
  EXPECT_EQ(fresh.link, 0u);
  EXPECT_EQ(fresh.slots[0].entry_addr, full.slots[2].entry_addr);
  EXPECT_EQ(fresh.slots[0].signature, full.slots[2].signature);
  EXPECT_EQ(fresh.slots[1].entry_addr, ENTRY);
}

// Seven keys make the chain home [0 1] -> [2 3] -> [4 5 6]; the hole at the
// head is filled along the chain, one bucket write at a time.
TEST_F(Chains, ARemoveAtTheHeadOfAThreeBucketChainKeepsTheRestFindableAtEveryWrite) {
  const std::vector<bytes> keys = insert_in_one_bucket(7);
  const std::vector<bytes> rest(keys.begin() + 1, keys.end());
  const std::optional<ctrl::hash_position_st> at = tables.find(t, keys[0]);
  ASSERT_TRUE(at && at->prev_bucket == 0 && at->index == 0);

  ctrl::hash_bucket_pool spare(0xA6000000, 0);
  watched_io io{{h.npu(), spare}, [&] { expect_all_findable(rest); }};
  EXPECT_EQ(hash_chain_remove(io, at->bucket, 0, 0), at->entry);
  EXPECT_EQ(io.writes, 3u);
  EXPECT_FALSE(findable(keys[0]));
  expect_all_findable(rest);
  const hash_chain_bucket_st head = bucket_at(at->bucket);
  const hash_chain_bucket_st middle = bucket_at(head.link);
  const hash_chain_bucket_st last = bucket_at(middle.link);
  EXPECT_EQ(head.count + middle.count + last.count, 6u);
  EXPECT_EQ(last.count, 2u);
  EXPECT_EQ(last.link, 0u);
}

TEST_F(Chains, ALastBucketLeftWithOneEntryGoesBackIntoItsPredecessor) {
  const std::size_t free_before = tables.free_buckets();
  const std::vector<bytes> keys = insert_in_one_bucket(4);
  EXPECT_EQ(tables.free_buckets(), free_before - 1);
  ASSERT_EQ(tables.remove(t, keys[3]), ctrl::error::none);
  EXPECT_EQ(tables.free_buckets(), free_before);
  const hash_chain_bucket_st home = bucket_at(home_of(t, keys[0]));
  EXPECT_EQ(home.count, 3u);
  EXPECT_EQ(home.link, 0u);
  expect_all_findable({keys[0], keys[1], keys[2]});
  EXPECT_FALSE(findable(keys[3]));
}

TEST_F(Chains, EmptiedTablesGiveEveryBucketBack) {
  const std::size_t free_before = tables.free_buckets();
  const std::vector<bytes> keys = insert_in_one_bucket(8);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    ASSERT_EQ(tables.remove(t, keys[(i * 3) % keys.size()]), ctrl::error::none);
    for (std::size_t j = i + 1; j < keys.size(); ++j) EXPECT_TRUE(findable(keys[(j * 3) % keys.size()]));
  }
  EXPECT_EQ(tables.free_buckets(), free_before);
  EXPECT_EQ(bucket_at(home_of(t, keys[0])).count, 0u);
}

TEST_F(Chains, AnUpdateChangesTheResultInOneBucketWrite) {
  const std::vector<bytes> keys = insert_in_one_bucket(2);
  ASSERT_EQ(tables.update(t, keys[1], result_of(0x99)), ctrl::error::none);
  const search_outcome out = search(h, row, keys[1]);
  ASSERT_EQ(out.rc, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(bytes(out.result.begin(), out.result.begin() + 8), result_of(0x99));
  EXPECT_TRUE(findable(keys[0]));
}

TEST_F(Chains, RefusalsSayWhyAndChangeNothing) {
  const std::vector<bytes> keys = insert_in_one_bucket(1);
  EXPECT_EQ(tables.insert(t, keys[0], result_of(2)), ctrl::error::exists);
  EXPECT_EQ(tables.remove(t, key_of(4, 0xDEAD)), ctrl::error::not_found);
  EXPECT_EQ(tables.update(t, key_of(4, 0xDEAD), result_of(2)), ctrl::error::not_found);
  EXPECT_EQ(tables.insert(HASH_TABLE_HOST_HASH, key_of(4, 1), result_of(1)), ctrl::error::unsupported);
  EXPECT_EQ(tables.insert(HASH_TABLE_MAPT_LOGG_HASH, key_of(49, 1), result_of(1)), ctrl::error::unsupported);
  const search_outcome out = search(h, row, keys[0]);
  EXPECT_EQ(bytes(out.result.begin(), out.result.begin() + 8), result_of(0));
}

TEST(FullTables, AnInsertThatNeedsABucketWhenNoneIsFreeIsRefusedAndChangesNothing) {
  testkit::npu_harness h;
  ctrl::hash_tables tables(h.npu(), {0xA0000000, 0x10000, 0xA1000000, 0});
  const search_row& row = search_of("PPPOE_HASH");
  const lookup_hash_table_st& t = row.desc->table;
  const std::vector<bytes> keys = keys_in_one_bucket(t, 4);
  for (std::uint32_t i = 0; i < 3; ++i) ASSERT_EQ(tables.insert(t, keys[i], result_of(1)), ctrl::error::none);
  const hash_search_bucket_st before = read_bucket(h, home_of(t, keys[0]));
  EXPECT_EQ(tables.insert(t, keys[3], result_of(1)), ctrl::error::table_full);
  const hash_search_bucket_st after = read_bucket(h, home_of(t, keys[0]));
  EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
  EXPECT_EQ(search(h, row, keys[3]).rc, HASH_SEARCH_RC_NO_MATCH);
  for (std::uint32_t i = 0; i < 3; ++i) EXPECT_EQ(search(h, row, keys[i]).rc, HASH_SEARCH_RC_MATCH);
}

TEST(FullTables, AnInsertWithoutRoomForItsEntryIsRefused) {
  testkit::npu_harness h;
  const lookup_hash_table_st& t = HASH_TABLE_PPPOE_HASH;
  ctrl::hash_tables tables(h.npu(), {0xA0000000, 64, 0xA1000000, 4});  // two 32-byte entries
  EXPECT_EQ(tables.insert(t, key_of(4, 1), result_of(1)), ctrl::error::none);
  EXPECT_EQ(tables.insert(t, key_of(4, 2), result_of(1)), ctrl::error::none);
  EXPECT_EQ(tables.insert(t, key_of(4, 3), result_of(1)), ctrl::error::table_full);
  EXPECT_FALSE(tables.find(t, key_of(4, 3)));
  ASSERT_EQ(tables.remove(t, key_of(4, 1)), ctrl::error::none);
  EXPECT_EQ(tables.insert(t, key_of(4, 3), result_of(1)), ctrl::error::none);
}

}  // namespace
