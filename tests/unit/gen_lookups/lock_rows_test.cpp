// Lock rows and flow-lock conversions: what the generator writes for them,
// and the lock sections it refuses (its bad rows stand with the others).
#include <gtest/gtest.h>

#include "emit.h"
#include "gen_fixture.h"

namespace {

using gen_test::generate;
using gen_test::generated;
using gen_test::joined;

using gen_test::contains;

constexpr const char* LOCK_ROWS =
    "MAC_LOCK__MN__ACQUIRE cell=0x020 live=g\n"
    "MAC_LOCK__MN__RELEASE cell=0x020 live=g\n";

TEST(LockRows, AcquireAndReleaseUseTheFamilysBitmapHashAndCell) {
  const generated g = generate(LOCK_ROWS);
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const gen::outputs out = gen::emit(g.cat, g.lookups);
  EXPECT_TRUE(contains(out.ops_header,
                       "inline lock_handle_t acquire_lock_ID_MAC_LOCK__MN(env_t env, std::uint32_t lock_id, "
                       "std::uint32_t wait) {\n  return bitmap_lock_acquire(env, {ID_MAC_LOCK__MN__ACQUIRE, "
                       "LOCK_BITMAP_MAC, 0x020}, mac_lock_bitmap_hash(lock_id, LOCK_BITS_MAC), wait);"));
  EXPECT_TRUE(contains(out.ops_header,
                       "inline void release_lock_ID_MAC_LOCK__MN(env_t env, lock_handle_t lock_handle) {\n"
                       "  bitmap_lock_release(env, {ID_MAC_LOCK__MN__RELEASE, LOCK_BITMAP_MAC, 0x020}, lock_handle);"));
  EXPECT_TRUE(contains(out.tables_header, "LOCK_BITMAP_MAC = 0x404C8A10;\n"));
  EXPECT_TRUE(contains(out.tables_header, "LOCK_BITS_MAC = 16;\n"));
  EXPECT_TRUE(contains(out.ids_header, "  ID_MAC_LOCK__MN__RELEASE = "));
}

TEST(LockRows, ConversionTakesTheLockNumberIntoItsCell) {
  const generated g = generate("FLOWLOCK_CONVERT__TAIL cell=0x040 live=tail\n");
  ASSERT_TRUE(g.errs.empty()) << joined(g.errs);
  const std::string ops = gen::emit(g.cat, g.lookups).ops_header;
  EXPECT_TRUE(
      contains(ops, "inline void lookup_request_ID_FLOWLOCK_CONVERT__TAIL(env_t env, std::uint32_t flowlock_id)"));
  EXPECT_TRUE(contains(ops, "lookup_flowlock_convert(env, 0x040, flowlock_id);"));
}

}  // namespace
