// Shared helpers of the thread tests: the flags of a packet's tail state.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "dplane/infra/ps.h"
#include "platform/shared/placeholder.h"
#include "testkit/dispatch_probe.h"

namespace tt {

using cf = common_flags_st;
using cf2 = common_flags2_st;

// The tail state of a packet: tail_processing, keep_gpm, and the two locks.
struct tail_state {
  std::uint32_t tail_processing;
  std::uint32_t keep_gpm;
  std::uint32_t next_flowlock_id;
  std::uint32_t tail_flowlock_id;
  bool operator==(const tail_state&) const = default;
};

inline tail_state tail_state_of(env_t env) {
  const common_flags_st& f = *ps_get_common_flags(env);
  return {cf::tail_processing::get(f), cf::keep_gpm::get(f), *ps_get_next_flowlock_id(env),
          *ps_get_tail_flowlock_id(env)};
}

// An ordinary packet's flags: no tail owed, nothing kept.
inline void clear_tail_state(env_t env) {
  *ps_put_mod_common_flags(env) = {};
  *ps_put_mod_common_flags2(env) = {};
  *ps_put_mod_next_flowlock_id(env) = 0;
  *ps_put_mod_tail_flowlock_id(env) = 0;
  *ps_put_mod_tail_proc_enables(env) = 0;
}

}  // namespace tt
