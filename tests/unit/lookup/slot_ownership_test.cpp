// Debug builds: the model knows which lookup owns each cell and slot, and
// stops with both names when a result is read through the wrong lookup or a
// slot is reused before its result is read. That a read result or a new pass
// frees the slot, every packet of the scenario tests shows.
#include "lookup_test_util.h"

namespace {

using namespace lt;

#ifndef NDEBUG

void on_fresh_npu(const std::function<void(env_t)>& body) {
  testkit::npu_harness h;
  h.on_thread(body);
}

TEST(SlotOwnershipDeathTest, MisusedSlotStopsWithTheNamesOfItsLookups) {
  struct row {
    void (*body)(env_t);
    const char* message;
  };
  const row rows[] = {
      {[](env_t env) {
         lookup_request_ID_GLOBAL_PKT_TRACE(env);
         lookup_result_ID_PORT_CONFIG_ING__SAT(env);
       },
       "result of ID_PORT_CONFIG_ING__SAT read at 0x020, which holds the result of ID_GLOBAL_PKT_TRACE"},
      {[](env_t env) {
         lookup_request_ID_GLOBAL_PKT_TRACE(env);
         lookup_request_ID_PORT_CONFIG_ING__SAT(env, 1);
       },
       "ID_PORT_CONFIG_ING__SAT reuses data memory 0x020, which holds the unread result of ID_GLOBAL_PKT_TRACE"},
      {[](env_t env) { lookup_result_ID_PORT_CONFIG_ING__L2(env); },
       "result of ID_PORT_CONFIG_ING__L2 read at 0x2E0 before any request of ID_PORT_CONFIG_ING__L2 filled it"},
  };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const row& r : rows) {
    SCOPED_TRACE(r.message);
    EXPECT_DEATH(on_fresh_npu(r.body), r.message);
  }
}

#endif

}  // namespace
