#include <gtest/gtest.h>

#include "names/counter_names.h"

namespace {

TEST(CounterNames, LabelCarriesNumberAndDescription) {
  EXPECT_EQ(names::counter_label(0x294), "0x294 (fabric header type without a handler)");
  EXPECT_EQ(names::counter_label(0xB7), "0xB7 (record read through its shadow)");
  EXPECT_EQ(names::counter_label(96), "0x60 (traced packet dropped on egress)");
}

TEST(CounterNames, UnknownNumberStandsAlone) {
  EXPECT_EQ(names::counter_description(0x295 + 1), nullptr);
  EXPECT_EQ(names::counter_label(0x296), "0x296");
}

}  // namespace
