#include "tail_proc.h"

#include "ps.h"

namespace {
constexpr std::uint32_t TAIL_FLOWLOCK_GROUP = 768;
using cf = common_flags_st;
using cf2 = common_flags2_st;
}  // namespace

void enable_tail_processing(env_t env, std::uint32_t flowhash, tail_proc_func_e func) {
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  std::uint32_t mask = func;
  if (!cf::tail_processing::get(flags)) {
    cf::tail_processing::set(flags, 1);
    if (!cf::keep_gpm::get(flags)) {
      *ps_put_def_tail_flowlock_id(env) = 0;
      cf::keep_gpm::set(flags, 1);
    } else {
      // A replication loop holds the buffer: the tail goes on under its lock.
      *ps_put_def_tail_flowlock_id(env) = *ps_get_next_flowlock_id(env);
    }
    *ps_put_mod_next_flowlock_id(env) = static_cast<std::uint16_t>(TAIL_FLOWLOCK_GROUP + (flowhash & 255));
  } else {
    mask |= *ps_get_tail_proc_enables(env);
  }
  if ((func & tail_proc_multipass) && !cf::nf_sampled::get(flags) &&
      cf2::nf_drop_reason_set_or_nonsampled::get(*ps_get_common_flags2(env))) {
    if (mask == tail_proc_multipass) {
      *ps_put_mod_next_flowlock_id(env) = static_cast<std::uint16_t>(TAIL_FLOWLOCK_GROUP + (*ps_get_nf_hash(env) & 255));
    }
    mask |= tail_proc_netflow;
  }
  *ps_put_mod_tail_proc_enables(env) = mask;
}

void disable_tail_processing(env_t env, tail_proc_func_e func) {
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  if (!cf::tail_processing::get(flags)) return;
  std::uint32_t& enables = *ps_put_mod_tail_proc_enables(env);
  if (enables == func) {
    *ps_put_mod_next_flowlock_id(env) = *ps_get_tail_flowlock_id(env);
    cf::tail_processing::set(flags, 0);
    if (*ps_get_tail_flowlock_id(env) == 0) cf::keep_gpm::set(flags, 0);
  }
  enables &= ~static_cast<std::uint32_t>(func);
}
