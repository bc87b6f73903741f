// The lookup log: header and result per entry in the thread's segment, the
// first cells of data memory kept, and no entry past the segment's end.
#include <vector>

#include "lookup_test_util.h"

namespace {

using namespace lt;

constexpr std::uint32_t LOG_BASE = 0x29E1CE40;
constexpr std::uint32_t THREAD_STRIDE = 7296;
constexpr std::uint32_t SEGMENT_UNITS = 1792 / 32;

// The segment offset is the debugger's to set; the test starts it at 0, with
// logging on.
void start_log(env_t env) {
  ps_put_def_thread_lookup_trace(env)->bits = 0;
  enable_lookup_logging(env);
}

std::uint32_t segment_offset(env_t env) {
  return thread_lookup_trace_st::segment_offset::get(*ps_get_thread_lookup_trace(env));
}

TEST(LookupLog, EntryIsAHeaderAndTheResultInTheThreadsSegment) {
  testkit::npu_harness h(1, 2);
  const std::uint32_t segment = LOG_BASE + 1 * THREAD_STRIDE;
  std::array<std::uint8_t, 48> head_before{};
  std::array<std::uint8_t, 48> head_after{};
  h.on_thread(
      [&](env_t env) {
        start_log(env);
        std::uint8_t* dmem = env_get_dmem_start(env);
        for (std::uint32_t i = 0; i < 64; ++i) dmem[0x20 + i] = static_cast<std::uint8_t>(i);
        std::memcpy(head_before.data(), dmem, head_before.size());
        // A result under the request cell is logged as it stood.
        log_lookup_result(env, ID_GLOBAL_PKT_TRACE, "ID_GLOBAL_PKT_TRACE", 0x20, 40);
        std::memcpy(head_after.data(), dmem, head_after.size());
        EXPECT_EQ(segment_offset(env), 3u);
        // Entries of one unit fill the segment; one more is left out.
        for (std::uint32_t i = 3; i <= SEGMENT_UNITS; ++i) log_lookup_result(env, ID_GLOBAL_PKT_TRACE, "", 0x20, 0);
        EXPECT_EQ(segment_offset(env), SEGMENT_UNITS);
      },
      0, 1);
  EXPECT_EQ(head_after, head_before);
  std::array<std::uint8_t, 96> entry{};
  h.npu().memory().read(segment, entry);
  // Header: response offset 0x20, record size 40, the lookup's number and name.
  std::vector<std::uint8_t> want = {0, 0x20, 0, 40, 0, 0, 0, static_cast<std::uint8_t>(ID_GLOBAL_PKT_TRACE)};
  want.resize(96, 0);
  std::memcpy(&want[8], "ID_GLOBAL_PKT_TRACE", 19);
  for (std::uint8_t i = 0; i < 40; ++i) want[32 + i] = i;  // the result, without the bytes past its size
  EXPECT_EQ(std::vector<std::uint8_t>(entry.begin(), entry.end()), want);
  EXPECT_EQ(h.npu().memory().read_u32(segment + SEGMENT_UNITS * 32), 0u);
}

}  // namespace
