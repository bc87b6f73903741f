#include "tail_proc.h"

#include "drop.h"
#include "lookup.h"
#include "npu/zephra/flowlock.h"
#include "ps.h"

namespace {
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
    *ps_put_mod_next_flowlock_id(env) = npu_get_1st_tailproc_flowlock_id(flowhash);
  } else {
    mask |= *ps_get_tail_proc_enables(env);
  }
  if ((func & tail_proc_multipass) && !cf::nf_sampled::get(flags) &&
      cf2::nf_drop_reason_set_or_nonsampled::get(*ps_get_common_flags2(env))) {
    if (mask == tail_proc_multipass) {
      *ps_put_mod_next_flowlock_id(env) = npu_get_1st_tailproc_flowlock_id(*ps_get_nf_hash(env));
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

boolean_t is_tail_processing_enabled(env_t env, tail_proc_func_e func) {
  const bool owed = cf::tail_processing::get(*ps_get_common_flags(env)) && (*ps_get_tail_proc_enables(env) & func);
  return owed ? TRUE : FALSE;
}

void do_tail_proc_common(env_t env, std::uint32_t funcs) {
  if (funcs == 0 && *ps_get_tail_flowlock_id(env) == 0) cf::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
}

void tail_processing_epilog(env_t env, std::uint32_t funcs) {
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  cf::in_tail_processing::set(flags, 0);
  *ps_put_mod_tail_proc_enables(env) = funcs;
  const bool next_pass = cf::do_multipass::get(flags) != 0;
  const std::uint16_t loop_lock = *ps_get_tail_flowlock_id(env);
  if (loop_lock != 0) {
    // The packet was kept by a loop before its tail: back to the loop's lock.
    cf::tail_processing::set(flags, 0);
    *ps_put_mod_next_flowlock_id(env) = loop_lock;
    if (!next_pass) lookup_request_ID_FLOWLOCK_CONVERT__TAIL(env, loop_lock);
  } else if (cf::keep_gpm::get(flags)) {
    // No tail function took the end of the packet.
    cf::keep_gpm::set(flags, 0);
    if (!next_pass) drop_packet_no_counter(env);
  }
}
