// Choosing the bundle member at egress: the member number that ingress
// chose (lagm of the fabric header), or a fresh hash where the header has no
// member, turned into this NPU's port. A member that is not this NPU's ends
// the packet: membership can change between ingress and egress, and the
// np_local test is what catches it.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "global_counters.h"

enum lag_egr_result_e : std::uint32_t {
  LAG_EGR_PORT_SET = 0,   // egr_port_id is the member's port
  LAG_EGR_NO_MEMBER = 1,  // drop_np_counter says why
};

// Thread bits of l3_egr_lag_process's callers.
inline constexpr std::uint32_t LAG_EGR_RAW_HASH_INJECTED = 0x01;   // with use_ps_raw_hash: hash an injected packet
inline constexpr std::uint32_t LAG_EGR_HEADER_MEMBER_ONLY = 0x02;  // the fabric header's member, whatever else
inline constexpr std::uint32_t LAG_EGR_INJECT_MEMBER = 0x08;       // the inject header's member
inline constexpr std::uint32_t LAG_EGR_HASH = 0x10;                // hash, unless the interface or pass says no
// With LAG_EGR_HASH: bundle_lb_hash_en or the pass's use_lag_sel keep the header's member.
inline constexpr std::uint32_t LAG_EGR_HASH_OPTIONAL = 0x20;
inline constexpr std::uint32_t LAG_EGR_ALWAYS_HASH = 0x40;  // with LAG_EGR_HASH: hash in any case

// lag_sel: a member number (use_hash false) or hash bits (use_hash true), of
// which a bundle that truncates its hash takes the low 8.
lag_egr_result_e base_egr_lag_process(env_t env, std::uint32_t lag_id, std::uint32_t lag_sel, boolean_t use_hash,
                                      std::uint32_t* drop_np_counter);
// The L3 egress paths, with their interface record (UIDB_L3_EGR__COMM)
// arrived: lag_sel and use_hash by thread_bits and the packet's state.
lag_egr_result_e l3_egr_lag_process(env_t env, std::uint32_t thread_bits, std::uint32_t* drop_np_counter);

// bundle_int of the L3 egress interface record, arrived.
boolean_t ipv4_egr_lag_enabled(env_t env);
boolean_t ipv6_egr_lag_enabled(env_t env);
boolean_t mpls_egr_lag_enabled(env_t env);
