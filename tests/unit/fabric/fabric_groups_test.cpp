// The control side's writer of the fabric's groups: what it refuses, and
// that a refused call leaves the group as it was.
#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include "testkit/npu_harness.h"
#include "testkit/param_names.h"

namespace {

constexpr std::uint32_t FGID = 0xFFFFFF;  // the highest group
const std::vector<std::uint32_t> MEMBERS = {2, 0};

struct group_case {
  const char* what;
  std::uint32_t fgid;
  std::vector<std::uint32_t> npus;
  ctrl::error expected;
};
void PrintTo(const group_case& c, std::ostream* os) { *os << c.what; }

class FabricGroups : public ::testing::TestWithParam<group_case> {};

TEST_P(FabricGroups, AcceptedCallsReplaceAndRefusedOnesChangeNothing) {
  testkit::npu_harness h(3);
  ASSERT_EQ(h.chassis_tables().map_fabric_group(FGID, MEMBERS), ctrl::error::none);
  const group_case& c = GetParam();
  EXPECT_EQ(h.chassis_tables().map_fabric_group(c.fgid, c.npus), c.expected);
  const bool replaced = c.expected == ctrl::error::none && c.fgid == FGID;
  EXPECT_EQ(h.chassis().npus_of_group(FGID), replaced ? c.npus : MEMBERS);
}

INSTANTIATE_TEST_SUITE_P(Writer, FabricGroups,
                         ::testing::Values(group_case{"new members replace the old", FGID, {1}, ctrl::error::none},
                                           group_case{"another group leaves this one", 5, {1, 2}, ctrl::error::none},
                                           group_case{"FGID beyond 24 bits", FGID + 1, {1}, ctrl::error::out_of_range},
                                           group_case{"NPU the chassis lacks", FGID, {1, 3}, ctrl::error::out_of_range},
                                           group_case{"no NPU", FGID, {}, ctrl::error::bad_size},
                                           group_case{"NPU named twice", FGID, {1, 2, 1}, ctrl::error::exists}),
                         testkit::described<group_case>);

}  // namespace
