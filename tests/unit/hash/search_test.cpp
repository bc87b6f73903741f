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
  const bytes a = key_of(key_width(t), 0x11);
  const bytes b = key_of(key_width(t), 0x22);
  ASSERT_EQ(tables.insert(t, a, result_of(0xA1)), ctrl::error::none);
  ASSERT_EQ(tables.insert(t, b, result_of(0xB2)), ctrl::error::none);

  const search_outcome found_a = search(h, row, a);
  ASSERT_EQ(found_a.rc, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(bytes(found_a.result.begin(), found_a.result.begin() + 8), result_of(0xA1));
  const search_outcome found_b = search(h, row, b);
  ASSERT_EQ(found_b.rc, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(bytes(found_b.result.begin(), found_b.result.begin() + 8), result_of(0xB2));
  EXPECT_EQ(search(h, row, key_of(key_width(t), 0x33)).rc, HASH_SEARCH_RC_NO_MATCH);
}

TEST_P(EverySearch, AKeyOfAnotherWidthIsRefusedAndNothingChanges) {
  const lookup_hash_table_st& t = GetParam().desc->table;
  testkit::npu_harness h;
  ctrl::hash_tables tables(h.npu());
  const bytes key = key_of(key_width(t), 0x44);
  const hash_search_bucket_st before = read_bucket(h, home_of(t, key));
  EXPECT_EQ(tables.insert(t, key_of(key_width(t) + 1, 0x44), result_of(1)), ctrl::error::bad_size);
  EXPECT_EQ(tables.insert(t, key_of(key_width(t) - 1, 0x44), result_of(1)), ctrl::error::bad_size);
  EXPECT_EQ(tables.insert(t, key, bytes(t.res_bytes + 1)), ctrl::error::bad_size);
  const hash_search_bucket_st after = read_bucket(h, home_of(t, key));
  EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
}

INSTANTIATE_TEST_SUITE_P(Tables, EverySearch, testing::ValuesIn(all_searches()),
                         [](const testing::TestParamInfo<search_row>& p) { return std::string(p.param.name); });

// Bucket states written by hand, on a table of 4-byte keys in space A.
class BucketStates : public testing::Test {
 protected:
  const search_row& row = search_of("MPLS_RPF");
  const lookup_hash_table_st& t = row.desc->table;
  testkit::npu_harness h;
  static constexpr memaddr_t ENTRIES = 0xA4000000;
  static constexpr memaddr_t CHAIN = 0xA5000000;
  static constexpr std::uint8_t UNTOUCHED = 0xEE;

  memaddr_t entry(std::uint32_t i) const { return ENTRIES + i * 32; }
  bytes key(std::uint32_t seed) const { return key_of(key_width(t), seed); }

  // A bucket of the given entries and signatures, linked to `link` if not 0.
  static hash_search_bucket_st bucket_of(std::initializer_list<hash_chain_slot_st> slots, memaddr_t link = 0) {
    hash_chain_bucket_st c{0, {}, 0, link};
    for (const hash_chain_slot_st& s : slots) c.slots[c.count++] = s;
    return hash_chain_pack(c);
  }

  // Runs parts 1 and 2 with the key cell marked, and says whether part 2
  // asked for an entry.
  bool part_2_read_an_entry(const bytes& k, hash_search_rc_t& rc) {
    bool read = false;
    h.on_thread([&](env_t env) {
      bytes copy = k;
      std::uint8_t* key_cell = env_get_dmem_start(env) + row.desc->key_cell;
      std::memset(key_cell, UNTOUCHED, row.desc->key_read_bytes);
      hash_search_context_st ctx{};
      row.part_1(env, copy.data(), &ctx);
      row.part_2(env, copy.data(), &ctx);
      rc = hash_search_rc(ctx);
      read = key_cell[0] != UNTOUCHED;
    });
    return read;
  }
};

TEST_F(BucketStates, EmptyBucketIsNoMatchWithoutAnyEntryRead) {
  hash_search_rc_t rc{};
  EXPECT_FALSE(part_2_read_an_entry(key(1), rc));
  EXPECT_EQ(rc, HASH_SEARCH_RC_NO_MATCH);
  EXPECT_EQ(search(h, row, key(1)).rc, HASH_SEARCH_RC_NO_MATCH);
}

TEST_F(BucketStates, OtherSignaturesAreSkippedWithoutAnEntryRead) {
  const bytes k = key(1);
  const std::uint8_t sig = signature_of(t, k);
  write_entry(h, t, entry(0), key(2), result_of(2));
  write_entry(h, t, entry(1), key(3), result_of(3));
  write_bucket(
      h, home_of(t, k),
      bucket_of({{entry(0), static_cast<std::uint8_t>(sig + 1)}, {entry(1), static_cast<std::uint8_t>(sig + 2)}}));
  hash_search_rc_t rc{};
  EXPECT_FALSE(part_2_read_an_entry(k, rc));
  EXPECT_EQ(rc, HASH_SEARCH_RC_NO_MATCH);
}

TEST_F(BucketStates, TwoKeysOfOneSignatureAreToldApartByTheKeyRead) {
  const bytes k = key(1);
  const std::uint8_t sig = signature_of(t, k);
  write_entry(h, t, entry(0), key(2), result_of(2));
  write_entry(h, t, entry(1), k, result_of(0x77));
  write_bucket(h, home_of(t, k), bucket_of({{entry(0), sig}, {entry(1), sig}}));
  const search_outcome out = search(h, row, k);
  EXPECT_EQ(out.after_part_2, HASH_SEARCH_RC_MATCH);
  ASSERT_EQ(out.rc, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(out.entry_index, 1u);
  EXPECT_EQ(bytes(out.result.begin(), out.result.begin() + 8), result_of(0x77));
}

TEST_F(BucketStates, AnEntryOfAnotherTableWithTheSameKeyIsAMismatch) {
  const bytes k = key(1);
  bytes other(t.res_offset + t.res_bytes);
  other[0] = static_cast<std::uint8_t>(t.hash_tbl_id + 1);
  std::copy(k.begin(), k.end(), other.begin() + 1);
  ctrl::write_record(h.npu(), entry(0), other);
  write_bucket(h, home_of(t, k), bucket_of({{entry(0), signature_of(t, k)}}));
  EXPECT_EQ(search(h, row, k).rc, HASH_SEARCH_RC_NO_MATCH);
}

TEST_F(BucketStates, AThreeBucketChainIsWalkedAndCountsFromZeroInEachBucket) {
  const bytes k = key(1);
  const std::uint8_t sig = signature_of(t, k);
  for (std::uint32_t i = 0; i < 5; ++i)
    write_entry(h, t, entry(i), key(10 + i), result_of(static_cast<std::uint8_t>(i)));
  write_entry(h, t, entry(5), k, result_of(0x55));
  write_bucket(h, home_of(t, k), bucket_of({{entry(0), sig}, {entry(1), sig}}, CHAIN));
  write_bucket(h, CHAIN, bucket_of({{entry(2), sig}, {entry(3), sig}}, CHAIN + 16));
  write_bucket(h, CHAIN + 16, bucket_of({{entry(4), sig}, {entry(5), sig}}));
  const search_outcome out = search(h, row, k);
  ASSERT_EQ(out.rc, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(out.entry_index, 1u);
  EXPECT_EQ(bytes(out.result.begin(), out.result.begin() + 8), result_of(0x55));
}

TEST_F(BucketStates, AnEntryBeingMovedIsPassedOverEvenWhenItFits) {
  const bytes k = key(1);
  write_entry(h, t, entry(0), k, result_of(1));
  hash_search_bucket_st b = bucket_of({{entry(0), signature_of(t, k)}});
  hash_search_bucket_st::entry_swap_bitmap::set(b, 1);
  write_bucket(h, home_of(t, k), b);
  EXPECT_EQ(search(h, row, k).rc, HASH_SEARCH_RC_NO_MATCH);
}

TEST_F(BucketStates, LowBitsOfTheHashPickTheBucketAndTheTopByteIsTheSignature) {
  const memaddr_t bucket = HASH_SPACE_A_BASE + 0x45678 * HASH_BUCKET_BYTES;
  write_bucket(h, bucket, bucket_of({{0x12345670, 0x9A}}));
  h.on_thread([&](env_t env) {
    lookup_request_ID_MPLS_RPF_BUCKET_0(env, 0, 0x12345678, HASH_SPACE_A_BUCKETS);
    lookup_wait_ID_MPLS_RPF_BUCKET(env);
    EXPECT_EQ(lookup_result_ID_MPLS_RPF_BUCKET(env)->hash_entry_addr[0].get(), 0x12345670u);
  });
}

TEST_F(BucketStates, PartOneKeepsTheTopByteOfTheHashAsTheSignature) {
  const bytes k = key(7);
  std::uint32_t signature = 0;
  h.on_thread([&](env_t env) {
    bytes copy = k;
    hash_search_context_st ctx{};
    row.part_1(env, copy.data(), &ctx);
    signature = ctx.bucket_hash_value.get();
  });
  EXPECT_EQ(signature, ctrl::hash_table_key_hash(t, k) >> 24);
}

// COMMON_ACL_HASH and COMMON_QOS_HASH share space B and an 8-byte key: a lone
// QoS entry's bucket, in the single-entry layout, is no ACL match.
TEST(SingleEntryForm, ALoneEntryOfAnotherTableIsAMismatchWithoutAnEntryRead) {
  testkit::npu_harness h;
  ctrl::hash_tables tables(h.npu());
  const bytes k = key_of(8, 0x5150);
  ASSERT_EQ(tables.insert(HASH_TABLE_COMMON_QOS_HASH, k, result_of(0x3C)), ctrl::error::none);
  const hash_search_bucket_st b = read_bucket(h, home_of(HASH_TABLE_COMMON_QOS_HASH, k));
  EXPECT_EQ(hash_search_bucket_st::hash_tbl_id::get(b), HASH_TABLE_COMMON_QOS_HASH.hash_tbl_id);

  const search_outcome acl = search(h, search_of("COMMON_ACL_HASH"), k);
  EXPECT_EQ(acl.after_part_2, HASH_SEARCH_RC_NO_MATCH_INTERNAL_KEY_COMPARE);
  EXPECT_EQ(acl.rc, HASH_SEARCH_RC_NO_MATCH);
  const search_outcome qos = search(h, search_of("COMMON_QOS_HASH"), k);
  EXPECT_EQ(qos.after_part_2, HASH_SEARCH_RC_MATCH_NO_KEY_COMPARE);
  ASSERT_EQ(qos.rc, HASH_SEARCH_RC_MATCH);
  EXPECT_EQ(bytes(qos.result.begin(), qos.result.begin() + 8), result_of(0x3C));
}

// A second entry turns the bucket to the plain layout, and the key read
// decides again; when one entry is left, the key goes back into the bucket.
TEST(SingleEntryForm, TheLayoutFollowsTheNumberOfEntries) {
  testkit::npu_harness h;
  ctrl::hash_tables tables(h.npu());
  const lookup_hash_table_st& acl = HASH_TABLE_COMMON_ACL_HASH;
  const std::vector<bytes> keys = keys_in_one_bucket(acl, 2);
  ASSERT_EQ(tables.insert(acl, keys[0], result_of(1)), ctrl::error::none);
  ASSERT_EQ(tables.insert(acl, keys[1], result_of(2)), ctrl::error::none);
  EXPECT_EQ(search(h, search_of("COMMON_ACL_HASH"), keys[0]).after_part_2, HASH_SEARCH_RC_MATCH);
  ASSERT_EQ(tables.remove(acl, keys[0]), ctrl::error::none);
  const search_outcome out = search(h, search_of("COMMON_ACL_HASH"), keys[1]);
  EXPECT_EQ(out.after_part_2, HASH_SEARCH_RC_MATCH_NO_KEY_COMPARE);
  EXPECT_EQ(bytes(out.result.begin(), out.result.begin() + 8), result_of(2));
}

}  // namespace
