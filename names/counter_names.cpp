#include "counter_names.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace names {

namespace {

// A row of the global counter list: a single counter has count 1.
struct counter_row {
  std::uint32_t first;
  std::uint32_t count;
  const char* description;
};

constexpr std::array COUNTERS = {
#define GLOBAL_COUNTER(name, number, meaning) counter_row{number, 1, meaning},
#define GLOBAL_COUNTER_RANGE(name, first, count, meaning) counter_row{first, count, meaning},
#include "global_counters.def"
#undef GLOBAL_COUNTER
#undef GLOBAL_COUNTER_RANGE
};

// The lookup below relies on rows in ascending order that do not overlap.
static_assert(std::is_sorted(COUNTERS.begin(), COUNTERS.end(),
                             [](const counter_row& a, const counter_row& b) { return a.first + a.count <= b.first; }));

const counter_row* find_row(std::uint32_t n) {
  auto it = std::upper_bound(COUNTERS.begin(), COUNTERS.end(), n,
                             [](std::uint32_t v, const counter_row& c) { return v < c.first; });
  if (it == COUNTERS.begin()) return nullptr;
  --it;
  return n - it->first < it->count ? &*it : nullptr;
}

}  // namespace

const char* counter_description(std::uint32_t n) {
  const counter_row* row = find_row(n);
  return row ? row->description : nullptr;
}

std::string counter_label(std::uint32_t n) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "0x%X", n);
  std::string label(buf);
  const counter_row* row = find_row(n);
  if (!row) return label;
  label.append(" (").append(row->description);
  if (row->count > 1) label.append(" ").append(std::to_string(n - row->first));
  return label.append(")");
}

}  // namespace names
