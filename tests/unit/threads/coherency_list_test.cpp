// The thread's coherency list: empty at context start, ten entries at most,
// the first entry of a lookup found and removed, the later ones moved down.
#include <gtest/gtest.h>

#include "dplane/infra/coherency_list.h"
#include "threads_test_util.h"

namespace {

TEST(CoherencyList, FindsAndRemovesTheFirstEntryOfALookup) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    EXPECT_EQ(coherency_find_lookup_addr(env, 5), 0u);  // empty from the context's start
    coherency_add_lookup(env, 5, 0x1000);
    coherency_add_lookup(env, 6, 0x2000);
    coherency_add_lookup(env, 5, 0x3000);
    EXPECT_EQ(coherency_find_lookup_addr(env, 5), 0x1000u);
    coherency_delete_lookup(env, 5);
    EXPECT_EQ(coherency_find_lookup_addr(env, 5), 0x3000u);
    EXPECT_EQ(coherency_find_lookup_addr(env, 6), 0x2000u);
    EXPECT_EQ(ps_get_coherency_cb(env)->num_list_entries, 2u);
    coherency_delete_lookup(env, 7);  // none: nothing changes
    EXPECT_EQ(ps_get_coherency_cb(env)->num_list_entries, 2u);
    coherency_init(env);
  });
}

TEST(CoherencyList, AFullListTakesNoMore) {
  testkit::npu_harness h;
  h.on_thread([](env_t env) {
    for (std::uint32_t i = 0; i <= COHERENCY_LIST_ENTRIES; ++i) coherency_add_lookup(env, i, 0x100 + i);
    EXPECT_EQ(ps_get_coherency_cb(env)->num_list_entries, COHERENCY_LIST_ENTRIES);
    EXPECT_EQ(coherency_find_lookup_addr(env, COHERENCY_LIST_ENTRIES - 1), 0x100u + COHERENCY_LIST_ENTRIES - 1);
    EXPECT_EQ(coherency_find_lookup_addr(env, COHERENCY_LIST_ENTRIES), 0u);
    coherency_init(env);
  });
}

}  // namespace
