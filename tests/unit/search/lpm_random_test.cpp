// The longest-prefix tables against a plain reference: random nested
// prefixes added, given new leaves and removed, then random addresses, most
// of them inside some prefix, searched in both; at the end every prefix goes.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "model/ipv6_prefix_table.h"

namespace {

using model::ipv6_key;
using model::plu_leaf_id;

// One family's view for the shared test body.
struct v4 {
  using key = std::uint32_t;
  using table = model::ipv4_prefix_table;
  static constexpr unsigned max = 32;
  static constexpr int operations = 4000;
  static constexpr std::size_t min_routes = 0;
  static unsigned length(std::mt19937& rng) { return rng() % (max + 1); }
  static key mask(key k, unsigned len) { return len == 0 ? 0 : k & (~0u << (32 - len)); }
  static key random(std::mt19937& rng) { return static_cast<key>(rng()); }
  // k with the bits from `from` on drawn at random.
  static key vary(std::mt19937& rng, key k, unsigned from) { return mask(k, from) | (random(rng) & ~mask(~0u, from)); }
};

struct v6 {
  using key = ipv6_key;
  using table = model::ipv6_prefix_table;
  static constexpr unsigned max = 128;
  // Enough routes for the table's directory by the first 16 bits, which then
  // follows every change; few routes shorter than 16 bits, as in real tables.
  static constexpr int operations = 10000;
  static constexpr std::size_t min_routes = table::DIRECTORY_FROM;
  static unsigned length(std::mt19937& rng) { return rng() % 16 ? 16 + rng() % (max - 15) : rng() % (max + 1); }
  static key mask(const key& k, unsigned len) { return table::masked(k, len); }
  static key random(std::mt19937& rng) {
    return {(std::uint64_t{rng()} << 32) | rng(), (std::uint64_t{rng()} << 32) | rng()};
  }
  static key vary(std::mt19937& rng, const key& k, unsigned from) {
    const key r = random(rng);
    const key keep = mask({~0ull, ~0ull}, from);
    return {(k.hi & keep.hi) | (r.hi & ~keep.hi), (k.lo & keep.lo) | (r.lo & ~keep.lo)};
  }
};

template <class F>
class RandomPrefixes : public testing::Test {
 protected:
  using key = typename F::key;
  // The reference: every route by (length, masked key) as a comparable pair.
  static auto id(const key& k, unsigned len) {
    if constexpr (std::is_same_v<key, ipv6_key>) {
      const key m = F::mask(k, len);
      return std::tuple(len, m.hi, m.lo);
    } else {
      return std::tuple(len, F::mask(k, len), 0);
    }
  }
  std::optional<plu_leaf_id> ref_find(const key& k, unsigned len) const {
    const auto it = ref.find(id(k, len));
    return it == ref.end() ? std::nullopt : std::optional(it->second);
  }
  void set(const key& k, unsigned len) {
    table.set(k, len, next_leaf);
    ref[id(k, len)] = next_leaf++;
    drawn.emplace_back(k, len);
  }
  // A new prefix nests under an earlier one half of the time; of the other
  // changes, one in three gives a drawn prefix a new leaf, two remove it
  // (a no-op when it is gone already).
  void operate() {
    const unsigned op = rng() % 10;
    if (op < 7 || drawn.empty()) {
      const unsigned len = F::length(rng);
      if (drawn.empty() || rng() % 2) return set(F::random(rng), len);
      const auto [k, l] = drawn[rng() % drawn.size()];
      return set(F::vary(rng, k, std::min(l, len)), len);
    }
    const auto [k, len] = drawn[rng() % drawn.size()];
    if (op < 8) return set(k, len);
    table.erase(k, len);
    ref.erase(id(k, len));
  }
  void compare(const key& addr) {
    const auto got = table.search(addr);
    std::optional<std::pair<plu_leaf_id, unsigned>> want;
    for (unsigned len = F::max + 1; len-- > 0 && !want;) {
      if (auto leaf = ref_find(addr, len)) want = std::pair(*leaf, len);
    }
    ASSERT_EQ(got.has_value(), want.has_value());
    if (!got) return;
    ASSERT_EQ(got->leaf, want->first);
    ASSERT_EQ(got->length, want->second);
  }

  std::mt19937 rng{20261122};
  typename F::table table;
  std::map<decltype(id(key{}, 0)), plu_leaf_id> ref;
  std::vector<std::pair<key, unsigned>> drawn;  // every prefix set so far, gone or not
  plu_leaf_id next_leaf = 1;
};

using families = testing::Types<v4, v6>;
TYPED_TEST_SUITE(RandomPrefixes, families);

TYPED_TEST(RandomPrefixes, LongestMatchAgreesWithTheReferenceUntilTheTableIsEmpty) {
  for (int i = 0; i < TypeParam::operations; ++i) this->operate();
  ASSERT_EQ(this->table.size(), this->ref.size());
  ASSERT_GT(this->ref.size(), TypeParam::min_routes);
  const auto& all = this->drawn;
  for (int i = 0; i < 6000; ++i) {
    const auto& [k, len] = all[this->rng() % all.size()];
    this->compare(i % 4 == 0 ? TypeParam::random(this->rng) : TypeParam::vary(this->rng, k, len));
  }
  for (const auto& [k, len] : all) ASSERT_EQ(this->table.find(k, len), this->ref_find(k, len));
  for (const auto& [k, len] : all) this->table.erase(k, len);
  EXPECT_EQ(this->table.size(), 0u);
  if constexpr (std::is_same_v<TypeParam, v4>) {
    EXPECT_EQ(this->table.groups(), 1u);  // every group below the root folds back
  }
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(this->table.search(TypeParam::random(this->rng)));
}

}  // namespace
