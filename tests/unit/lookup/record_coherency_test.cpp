// Protected records read while the control plane changes them: the forward
// state sends the reader to the shadow copy, counted once under 0xB7; other
// tables are never re-read; a broken record traps.
#include "lookup_test_util.h"

namespace {

using namespace lt;

constexpr std::uint32_t RECORD = 5;

// A record under change is read through its shadow, counted once however
// often its wait runs; once the change is over the new record is read as is.
TEST(RecordCoherency, ForwardStateIsReadThroughTheShadowAndCountedOnce) {
  testkit::npu_harness h;
  const std::uint32_t addr = uidb_l3_ing_address(h, RECORD);
  const record32 old = live_record(0x11);
  const record32 changed = live_record(0x22);
  ctrl::write_record(h.npu(), addr, old);
  ctrl::enter_forward_state(h.npu(), addr, ctrl::shadow_address(0));
  auto read = [&](int waits) {
    record32 got{};
    h.on_thread([&](env_t env) {
      lookup_request_ID_UIDB_L3_ING__COMM(env, RECORD);
      for (int i = 0; i < waits; ++i) lookup_wait_ID_UIDB_L3_ING__COMM(env);
      got = bytes_of(*lookup_result_ID_UIDB_L3_ING__COMM(env));
    });
    return got;
  };
  EXPECT_EQ(read(2), old);
  ctrl::leave_forward_state(h.npu(), addr, changed);
  EXPECT_EQ(read(1), changed);
  EXPECT_EQ(shadow_reads(h), 1u);
}

TEST(RecordCoherency, WaitOnAnUnprotectedTableLeavesAZeroWordAlone) {
  testkit::npu_harness h;
  // Shaped like a forward state, but the port table is not protected.
  const record16 port = {0, 0, 0, 0, 0x9F, 0, 0, 0, 0x8B, 0xAD, 0xF0, 0x0D, 1, 2, 3, 4};
  ctrl::write_record(h.npu(), port_config_address(3), port);
  h.on_thread([&](env_t env) {
    lookup_request_ID_PORT_CONFIG_ING__SAT(env, 3);
    lookup_wait_ID_PORT_CONFIG_ING__SAT(env);
    EXPECT_EQ(bytes_of(*lookup_result_ID_PORT_CONFIG_ING__SAT(env)), port);
  });
  EXPECT_EQ(shadow_reads(h), 0u);
}

#ifndef NDEBUG
// Word 0 is 0 but word 2 is not the pattern: the control plane broke the protocol.
TEST(RecordCoherencyDeathTest, RecordWithoutThePatternTraps) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  record32 broken = live_record(0x33);
  broken[0] = broken[1] = broken[2] = broken[3] = 0;
  broken[8] = 0x12, broken[9] = 0x34, broken[10] = 0x56, broken[11] = 0x78;
  EXPECT_DEATH(
      {
        testkit::npu_harness h;
        ctrl::write_record(h.npu(), uidb_l3_ing_address(h, RECORD), broken);
        h.on_thread([](env_t env) {
          lookup_request_ID_UIDB_L3_ING__COMM(env, RECORD);
          lookup_wait_ID_UIDB_L3_ING__COMM(env);
        });
      },
      "trap: ID_UIDB_L3_ING__COMM: record at data memory 0x140 has word 0 = 0 without the forward-state pattern");
}
#endif

}  // namespace
