#include <gtest/gtest.h>

#include <cstdint>

#include "names/counter_names.h"

namespace {

// Numbers the program counts, worked out by hand: a traced packet of logical
// port 2 counts 16 + 2, one sent to line port 39 counts 56 + 39 = 0x5F. A
// number without a description is labelled by itself.
TEST(CounterNames, LabelCarriesNumberDescriptionAndPort) {
  const std::pair<std::uint32_t, const char*> cases[] = {
      {0x294, "0x294 (fabric header type without a handler)"},
      {0xB7, "0xB7 (record read through its shadow)"},
      {261, "0x105 (L2 header length below 14 bytes)"},
      {0x10, "0x10 (traced packet received, by logical port 0)"},
      {16 + 2, "0x12 (traced packet received, by logical port 2)"},
      {56 + 39, "0x5F (traced packet sent to a line port, by NP port 39)"},
      {0x0F, "0xF"},
      {0x296, "0x296"},
  };
  for (const auto& [number, label] : cases) EXPECT_EQ(names::counter_label(number), label) << number;
  for (std::uint32_t n : {0x0Fu, 0x62u, 0x296u, 0x5D3u}) EXPECT_EQ(names::counter_description(n), nullptr) << n;
}

}  // namespace
