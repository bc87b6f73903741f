// Tail work owed after a packet has been sent: one bit per function.
#pragma once

#include <cstdint>

enum tail_proc_func_e : std::uint32_t {
  tail_proc_netflow = 0x00000001,
  tail_proc_li_rep__ipv4 = 0x00000002,
  tail_proc_li_rep__ipv6 = 0x00000004,
  tail_proc_li_rep__mpls = 0x00000008,
  tail_proc_li_rep__mpls_v6 = 0x00000010,
  tail_proc_l2_learn = 0x00000020,
  tail_proc_l2_punt_ms = 0x00000040,
  tail_proc_eoam_cfm_punt = 0x00000080,
  tail_proc_ipmc_do_all_fwd = 0x00000100,
  tail_proc_span = 0x00000200,
  tail_proc_l2snoop_punt = 0x00000400,
  tail_proc_acl_log_punt = 0x00000800,
  tail_proc_mpls_ing_p2mp = 0x00001000,
  tail_proc_nsh = 0x00002000,
  tail_proc_mvpn_pim_all = 0x00004000,
  tail_proc_ipmc_virtual_intf = 0x00008000,
  tail_proc_li_rep__l2 = 0x00010000,
  tail_proc_netflow_mapt = 0x00020000,
  tail_proc_li_rep__l3 = 0x00040000,
  tail_proc_multipass = 0x40000000,
  tail_proc_unused_31 = 0x80000000,
};

#include "fwc_types.h"

// Owes tail work `func` for this packet, under the flow lock drawn from flowhash.
void enable_tail_processing(env_t env, std::uint32_t flowhash, tail_proc_func_e func);
// Takes one owed tail function back.
void disable_tail_processing(env_t env, tail_proc_func_e func);
boolean_t is_tail_processing_enabled(env_t env, tail_proc_func_e func);

// Before each tail function: with nothing owed after it and no loop holding
// the buffer, the function runs with keep_gpm clear and ends the packet.
void do_tail_proc_common(env_t env, std::uint32_t funcs);
// After the last one: back to the lock of the loop that holds the buffer, or
// the buffer is freed if no function ended the packet.
void tail_processing_epilog(env_t env, std::uint32_t funcs);

// Per path (tail_paths.def): tail_processing_<path> is the call site after
// the send, and runs do_tail_processing_<path> when tail work is owed: the
// owed functions in the fixed order of the path's side.
#define TAIL_PATH(path, side, kind, meaning) \
  void tail_processing_##path(env_t env);    \
  void do_tail_processing_##path(env_t env);
#include "tail_paths.def"
#undef TAIL_PATH
