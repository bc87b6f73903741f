#include "flow_order.h"

#include "lookup.h"
#include "npu/zephra/flowlock.h"
#include "ps.h"

std::uint16_t generate_flowlock(std::uint32_t group, std::uint32_t id) { return npu_generate_flowlock(group, id); }

void simple_flowlock_convert(env_t env) {
  lookup_request_ID_FLOWLOCK_CONVERT__PKT_REP(env, *ps_get_next_flowlock_id(env));
}

void flowlock_prepare(env_t env) { npu_flowlock_prepare(env); }
void flowlock_cleanup(env_t env) { npu_flowlock_cleanup(env); }
