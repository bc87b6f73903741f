#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "names/counter_names.h"

namespace {

struct label_case {
  std::uint32_t number;
  const char* label;
};

// Numbers the program counts, worked out by hand: a traced packet of logical
// port 2 counts 16 + 2, one sent to line port 39 counts 56 + 39 = 0x5F.
TEST(CounterNames, LabelCarriesNumberDescriptionAndPort) {
  const label_case cases[] = {
      {0x294, "0x294 (fabric header type without a handler)"},
      {0xB7, "0xB7 (record read through its shadow)"},
      {96, "0x60 (traced packet dropped on ingress)"},
      {100, "0x64 (traced packet dropped on egress)"},
      {261, "0x105 (L2 header length below 14 bytes)"},
      {0x10, "0x10 (traced packet received, by logical port 0)"},
      {16 + 2, "0x12 (traced packet received, by logical port 2)"},
      {56, "0x38 (traced packet sent to a line port, by NP port 0)"},
      {56 + 39, "0x5F (traced packet sent to a line port, by NP port 39)"},
      {0x0F, "0xF"},
      {0x62, "0x62"},
      {0x296, "0x296"},
  };
  for (const auto& c : cases) EXPECT_EQ(names::counter_label(c.number), c.label) << c.number;
}

TEST(CounterNames, UnknownNumberHasNoDescription) {
  for (std::uint32_t n : {0x0Fu, 0x62u, 0x296u, 0x5D3u}) EXPECT_EQ(names::counter_description(n), nullptr) << n;
}

}  // namespace
