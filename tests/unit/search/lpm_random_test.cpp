// The longest-prefix tables against a plain reference: random nested
// prefixes added, given new leaves and removed, then random addresses, most
// of them inside some prefix, searched in both.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "model/ipv6_prefix_table.h"

namespace {

using model::ipv4_prefix_table;
using model::ipv6_key;
using model::ipv6_prefix_table;
using model::plu_leaf_id;

constexpr int SEARCHES = 6000;

// One family's view for the shared test body.
struct v4 {
  using key = std::uint32_t;
  using table = ipv4_prefix_table;
  static constexpr unsigned max = 32;
  static constexpr int operations = 4000;
  static constexpr std::size_t min_routes = 0;
  static unsigned length(std::mt19937& rng) { return rng() % (max + 1); }
  static key mask(key k, unsigned len) { return len == 0 ? 0 : k & (~0u << (32 - len)); }
  static key random(std::mt19937& rng) { return static_cast<key>(rng()); }
  // k with the bits from `from` on drawn at random.
  static key vary(std::mt19937& rng, key k, unsigned from) { return mask(k, from) | (random(rng) & ~mask(~0u, from)); }
  static bool less(key a, key b) { return a < b; }
};

struct v6 {
  using key = ipv6_key;
  using table = ipv6_prefix_table;
  static constexpr unsigned max = 128;
  // Enough routes for the table's directory by the first 16 bits, which then
  // follows every change; few routes shorter than 16 bits, as in real tables.
  static constexpr int operations = 10000;
  static constexpr std::size_t min_routes = ipv6_prefix_table::DIRECTORY_FROM;
  static unsigned length(std::mt19937& rng) { return rng() % 16 ? 16 + rng() % (max - 15) : rng() % (max + 1); }
  static key mask(const key& k, unsigned len) { return ipv6_prefix_table::masked(k, len); }
  static key random(std::mt19937& rng) {
    return {(std::uint64_t{rng()} << 32) | rng(), (std::uint64_t{rng()} << 32) | rng()};
  }
  static key vary(std::mt19937& rng, const key& k, unsigned from) {
    const key r = random(rng);
    const key keep = mask({~0ull, ~0ull}, from);
    return {(k.hi & keep.hi) | (r.hi & ~keep.hi), (k.lo & keep.lo) | (r.lo & ~keep.lo)};
  }
  static bool less(const key& a, const key& b) { return std::pair(a.hi, a.lo) < std::pair(b.hi, b.lo); }
};

// Every route in a map by (length, masked key), and in a list to draw from.
template <class F>
class reference {
  using prefix = std::pair<unsigned, typename F::key>;
  struct order {
    bool operator()(const prefix& a, const prefix& b) const {
      return a.first != b.first ? a.first < b.first : F::less(a.second, b.second);
    }
  };
  struct route {
    plu_leaf_id leaf;
    std::size_t place;  // in list_
  };

 public:
  void set(typename F::key k, unsigned len, plu_leaf_id leaf) {
    const prefix p{len, F::mask(k, len)};
    auto [it, added] = routes_.try_emplace(p, route{leaf, list_.size()});
    if (added) list_.emplace_back(p.second, len);
    it->second.leaf = leaf;
  }
  void erase(typename F::key k, unsigned len) {
    auto it = routes_.find({len, F::mask(k, len)});
    if (it == routes_.end()) return;
    const std::size_t place = it->second.place;
    routes_.erase(it);
    list_[place] = list_.back();
    list_.pop_back();
    if (place < list_.size()) routes_.at({list_[place].second, list_[place].first}).place = place;
  }
  std::optional<std::pair<plu_leaf_id, unsigned>> search(typename F::key k) const {
    for (unsigned len = F::max + 1; len-- > 0;) {
      if (auto it = routes_.find({len, F::mask(k, len)}); it != routes_.end()) return std::pair{it->second.leaf, len};
    }
    return std::nullopt;
  }
  std::optional<plu_leaf_id> leaf_of(typename F::key k, unsigned len) const {
    auto it = routes_.find({len, F::mask(k, len)});
    if (it == routes_.end()) return std::nullopt;
    return it->second.leaf;
  }
  const std::vector<std::pair<typename F::key, unsigned>>& prefixes() const { return list_; }

 private:
  std::map<prefix, route, order> routes_;
  std::vector<std::pair<typename F::key, unsigned>> list_;
};

template <class F>
class RandomPrefixes : public testing::Test {
 protected:
  // A new prefix nests under an earlier one half of the time.
  std::pair<typename F::key, unsigned> draw() {
    const unsigned len = F::length(rng);
    const auto known = ref.prefixes();
    if (known.empty() || rng() % 2) return {F::random(rng), len};
    const auto [k, l] = known[rng() % known.size()];
    return {F::vary(rng, k, std::min(l, len)), len};
  }
  void operate() {
    const auto known = ref.prefixes();
    const unsigned op = rng() % 10;
    if (op < 7 || known.empty()) {
      const auto [k, len] = draw();
      table.set(k, len, next_leaf);
      ref.set(k, len, next_leaf++);
      return;
    }
    const auto [k, len] = known[rng() % known.size()];
    if (op < 8) {
      table.set(k, len, next_leaf);
      ref.set(k, len, next_leaf++);
    } else {
      table.erase(k, len);
      ref.erase(k, len);
    }
  }
  void compare(typename F::key addr) {
    const auto got = table.search(addr);
    const auto want = ref.search(addr);
    ASSERT_EQ(got.has_value(), want.has_value());
    if (!got) return;
    ASSERT_EQ(got->leaf, want->first);
    ASSERT_EQ(got->length, want->second);
  }

  std::mt19937 rng{20261122};
  typename F::table table;
  reference<F> ref;
  plu_leaf_id next_leaf = 1;
};

using families = testing::Types<v4, v6>;
TYPED_TEST_SUITE(RandomPrefixes, families);

TYPED_TEST(RandomPrefixes, LongestMatchAgreesWithTheReference) {
  for (int i = 0; i < TypeParam::operations; ++i) this->operate();
  const auto known = this->ref.prefixes();
  ASSERT_EQ(this->table.size(), known.size());
  ASSERT_GT(known.size(), TypeParam::min_routes);
  for (int i = 0; i < SEARCHES; ++i) {
    const auto& [k, len] = known[this->rng() % known.size()];
    const auto addr = i % 4 == 0 ? TypeParam::random(this->rng) : TypeParam::vary(this->rng, k, len);
    this->compare(addr);
  }
  for (const auto& [k, len] : known) ASSERT_EQ(this->table.find(k, len), this->ref.leaf_of(k, len));
}

TYPED_TEST(RandomPrefixes, RemovingEveryPrefixLeavesAnEmptyTable) {
  for (int i = 0; i < TypeParam::operations / 2; ++i) this->operate();
  const auto known = this->ref.prefixes();
  for (const auto& [k, len] : known) this->table.erase(k, len);
  EXPECT_EQ(this->table.size(), 0u);
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(this->table.search(TypeParam::random(this->rng)));
}

TEST(Ipv4PrefixTable, GroupsFoldBackWhenTheirPrefixesGo) {
  ipv4_prefix_table t;
  t.set(0x0A000000, 8, 1);
  t.set(0x0A010203, 32, 2);
  t.set(0x0A010280, 25, 3);
  EXPECT_EQ(t.groups(), 4u);
  t.erase(0x0A010203, 32);
  t.erase(0x0A010280, 25);
  EXPECT_EQ(t.groups(), 1u);
  EXPECT_EQ(t.search(0x0A010203)->leaf, 1u);
  EXPECT_EQ(t.search(0x0A010203)->length, 8u);
}

}  // namespace
