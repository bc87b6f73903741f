// The relative (bit 23) index: each thread counts in its own replica, 0x4004
// entries apart, and the control side adds the four replicas.
#include "stats_test_util.h"

namespace {

using st::entry;

struct index_case {
  std::uint32_t stat_index;
  std::uint32_t rep_offset;
  std::uint32_t entry;
  std::uint32_t address;
};

class ReplicatedIndex : public testing::TestWithParam<index_case> {};

TEST_P(ReplicatedIndex, ResolvesToTheThreadsEntryAndAddress) {
  const index_case& c = GetParam();
  testkit::npu_harness h;
  h.on_thread([&](env_t env) {
    *ps_put_mod_stats_rep_offset(env) = c.rep_offset;
    EXPECT_EQ(compute_replicated_stats_index(env, c.stat_index), c.entry);
    EXPECT_EQ(compute_stats_address(env, c.stat_index), c.address);
  });
}

INSTANTIATE_TEST_SUITE_P(Cases, ReplicatedIndex,
                         testing::Values(index_case{0x800010, 0x8008, 0x8018, 0x5400C0},
                                         index_case{0x10, 0x8008, 0x10, 0x500080},
                                         index_case{0x800010, 0x4004, 0x4014, 0x5200A0},
                                         // Only the low 14 bits of a relative index count.
                                         index_case{0x80C010, 0, 0x10, 0x500080}));

TEST(ReplicatedCounters, ThreadsCountIntoTheirOwnReplicaAndTheReaderAddsThem) {
  testkit::npu_harness h(1, 5);
  for (std::uint32_t t = 0; t < 5; ++t) {
    h.on_thread([&](env_t env) { lookup_request_ID_STATS_ADD_INC__VPLS_ING(env, 0x800010, 100 + t); }, 0, t);
  }
  // Thread 4 shares the first replica with thread 0.
  EXPECT_EQ(h.npu().stats().entry(0x10), (model::stats_entry{2, 100 + 104}));
  EXPECT_EQ(h.npu().stats().entry(0x4014), (model::stats_entry{1, 101}));
  EXPECT_EQ(h.npu().stats().entry(0x8018), (model::stats_entry{1, 102}));
  EXPECT_EQ(h.npu().stats().entry(0xC01C), (model::stats_entry{1, 103}));
  EXPECT_EQ(entry(h, 0x800010), (model::stats_entry{5, 510}));
  // An absolute index is one entry.
  EXPECT_EQ(entry(h, 0x10), (model::stats_entry{2, 204}));
}

}  // namespace
