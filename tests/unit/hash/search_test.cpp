// The generated searches of the exact-key tables against tables written by
// the control side, and the bucket states that break hash tables.
#include "hash_test_util.h"

namespace {

using namespace ht;

class EverySearch : public testing::TestWithParam<search_row> {};

TEST_P(EverySearch, FindsWhatTheControlSideInsertedAndNothingElse) {
  const search_row& row = GetParam();
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  ctrl::hash_tables tables(h.npu());
  const std::vector<bytes> keys = {key_of(key_width(t), 0x11), key_of(key_width(t), 0x22), key_of(key_width(t), 0x33)};
  ASSERT_EQ(tables.insert(t, keys[0], result_of(0xA1)), ctrl::error::none);
  ASSERT_EQ(tables.insert(t, keys[1], result_of(0xB2)), ctrl::error::none);
  // Keys and results of another width are refused and write nothing.
  const hash_search_bucket_st before = read_bucket(h, home_of(t, keys[2]));
  EXPECT_EQ(tables.insert(t, key_of(key_width(t) + 1, 0x33), result_of(1)), ctrl::error::bad_size);
  EXPECT_EQ(tables.insert(t, keys[2], bytes(t.res_bytes + 1)), ctrl::error::bad_size);
  EXPECT_TRUE(same(read_bucket(h, home_of(t, keys[2])), before));

  EXPECT_EQ(search(h, row, keys[0]).result, result_of(0xA1));
  EXPECT_EQ(search(h, row, keys[1]).result, result_of(0xB2));
  EXPECT_EQ(search(h, row, keys[2]).rc, HASH_SEARCH_RC_NO_MATCH);
}

INSTANTIATE_TEST_SUITE_P(Tables, EverySearch, testing::ValuesIn(all_searches()),
                         [](const testing::TestParamInfo<search_row>& p) { return std::string(p.param.name); });

// Bucket states written by hand, on a table of 4-byte keys in space A; the
// searched key is key(1).
class BucketStates : public testing::Test {
 protected:
  const search_row& row = search_of("MPLS_RPF");
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  const bytes k = key(1);
  const std::uint8_t sig = signature_of(t, k);

  static memaddr_t entry(std::uint32_t i) { return 0xA4000000 + i * 32; }
  bytes key(std::uint32_t seed) const { return key_of(key_width(t), seed); }
  static hash_search_bucket_st bucket_of(std::initializer_list<hash_chain_slot_st> slots, memaddr_t link = 0) {
    hash_chain_bucket_st c{0, {}, 0, link};
    for (const hash_chain_slot_st& s : slots) c.slots[c.count++] = s;
    return hash_chain_pack(c);
  }
  // Runs parts 1 and 2 with the key cell marked: whether part 2 asked for
  // an entry, and its answer.
  std::pair<bool, hash_search_rc_t> part_2() {
    std::pair<bool, hash_search_rc_t> out{};
    h.on_thread([&](env_t env) {
      bytes copy = k;
      std::uint8_t* key_cell = env_get_dmem_start(env) + row.desc->key_cell;
      std::memset(key_cell, 0xEE, row.desc->key_read_bytes);
      hash_search_context_st ctx{};
      row.part_1(env, copy.data(), &ctx);
      row.part_2(env, copy.data(), &ctx);
      out = {key_cell[0] != 0xEE, hash_search_rc(ctx)};
    });
    return out;
  }
};

TEST_F(BucketStates, EmptyBucketsAndOtherSignaturesAreNoMatchWithoutAnEntryRead) {
  EXPECT_EQ(part_2(), std::pair(false, HASH_SEARCH_RC_NO_MATCH));
  EXPECT_EQ(search(h, row, k).rc, HASH_SEARCH_RC_NO_MATCH);
  write_entry(h, t, entry(0), key(2), result_of(2));
  write_entry(h, t, entry(1), key(3), result_of(3));
  const auto other = [&](int d) { return static_cast<std::uint8_t>(sig + d); };
  write_bucket(h, home_of(t, k), bucket_of({{entry(0), other(1)}, {entry(1), other(2)}}));
  EXPECT_EQ(part_2(), std::pair(false, HASH_SEARCH_RC_NO_MATCH));
}

TEST_F(BucketStates, TwoKeysOfOneSignatureAreToldApartByTheKeyRead) {
  write_entry(h, t, entry(0), key(2), result_of(2));
  write_entry(h, t, entry(1), k, result_of(0x77));
  write_bucket(h, home_of(t, k), bucket_of({{entry(0), sig}, {entry(1), sig}}));
  const search_outcome out = search(h, row, k);
  EXPECT_EQ(out.after_part_2, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(out.entry_index, 1u);
  EXPECT_EQ(out.result, result_of(0x77));
}

TEST_F(BucketStates, AnEntryOfAnotherTableOrBeingMovedIsPassedOver) {
  write_entry(h, t, entry(0), k, result_of(1), 1);
  write_bucket(h, home_of(t, k), bucket_of({{entry(0), sig}}));
  EXPECT_EQ(search(h, row, k).rc, HASH_SEARCH_RC_NO_MATCH);
  write_entry(h, t, entry(0), k, result_of(1));
  hash_search_bucket_st b = bucket_of({{entry(0), sig}});
  hash_search_bucket_st::entry_swap_bitmap::set(b, 1);
  write_bucket(h, home_of(t, k), b);
  EXPECT_EQ(search(h, row, k).rc, HASH_SEARCH_RC_NO_MATCH);
}

// COMMON_ACL_HASH and COMMON_QOS_HASH share space B and an 8-byte key: a
// lone entry keeps its key in the bucket, and a second entry turns the bucket
// to the plain layout until one entry is left again.
TEST(SingleEntryForm, TheLayoutFollowsTheNumberOfEntriesAndTheTableId) {
  testkit::npu_harness h;
  ctrl::hash_tables tables(h.npu());
  const search_row &acl = search_of("COMMON_ACL_HASH"), &qos = search_of("COMMON_QOS_HASH");
  const bytes k = key_of(8, 0x5150);
  ASSERT_EQ(tables.insert(qos.desc->table, k, result_of(0x3C)), ctrl::error::none);
  EXPECT_EQ(search(h, acl, k).after_part_2, HASH_SEARCH_RC_NO_MATCH_INTERNAL_KEY_COMPARE);
  EXPECT_EQ(search(h, acl, k).rc, HASH_SEARCH_RC_NO_MATCH);
  EXPECT_EQ(search(h, qos, k).after_part_2, HASH_SEARCH_RC_MATCH_NO_KEY_COMPARE);
  EXPECT_EQ(search(h, qos, k).result, result_of(0x3C));

  const std::vector<bytes> keys = keys_in_one_bucket(acl.desc->table, 2);
  insert(tables, acl.desc->table, keys, 2);
  EXPECT_EQ(search(h, acl, keys[0]).after_part_2, HASH_SEARCH_RC_MATCH);
  ASSERT_EQ(tables.remove(acl.desc->table, keys[0]), ctrl::error::none);
  EXPECT_EQ(search(h, acl, keys[1]).after_part_2, HASH_SEARCH_RC_MATCH_NO_KEY_COMPARE);
  EXPECT_EQ(search(h, acl, keys[1]).result, result_of(1));
}

}  // namespace
