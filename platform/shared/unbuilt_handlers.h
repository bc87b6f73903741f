// Handlers the packet loop reaches that later work builds. Each one ends its
// packet visibly through unbuilt_handler_end.
#pragma once

#include <cstdint>

#include "fwc_types.h"

enum unbuilt_handler_e : std::uint32_t {
#define UNBUILT(name) UNBUILT_##name,
#include "unbuilt_handlers.def"
#undef UNBUILT
  UNBUILT_HANDLER_COUNT
};

// Name of an unbuilt handler by its number, or null.
const char* unbuilt_handler_name(std::uint32_t id);

// Counts the packet under the handler's number, then frees it.
void unbuilt_handler_end(env_t env, unbuilt_handler_e id);
// Counts the packet under the step's number; the packet goes on.
void unbuilt_step_reached(env_t env, unbuilt_handler_e id);

// Paths of the protocol bodies that the exception handlers enter.
enum ipv4_ing_path_e : std::uint32_t { IPV4_ING_PATH_MAIN = 0 };
enum ipv6_ing_path_e : std::uint32_t { IPV6_ING_PATH_MAIN = 0 };
enum mpls_ing_path_e : std::uint32_t { MPLS_ING_PATH_MAIN = 0 };
enum ipm4_ing_path_e : std::uint32_t { IPM4_ING_REG = 0 };
enum ipm6_ing_path_e : std::uint32_t { IPM6_ING_REG = 0 };

void ipv4_ing_perf(env_t env, boolean_t global_feature_enabled);
void ipm4_ing_perf(env_t env, boolean_t global_feature_enabled);
void ipv6_ing_perf(env_t env, boolean_t global_feature_enabled);
void ipm6_ing_perf(env_t env, boolean_t global_feature_enabled);
void mpls_ing_perf(env_t env, boolean_t global_feature_enabled);
void vpws_ing(env_t env);
void vpls_ing(env_t env);
void l2_ctrl_ing(env_t env);
void ipv4_ing_nonperf(env_t env, boolean_t global_feature_enabled, boolean_t exception, ipv4_ing_path_e path);
void ipv6_ing_nonperf(env_t env, boolean_t global_feature_enabled, boolean_t exception, ipv6_ing_path_e path);
void ipm4_ing_nonperf(env_t env, boolean_t global_feature_enabled, boolean_t exception, ipm4_ing_path_e path);
void ipm6_ing_nonperf(env_t env, boolean_t global_feature_enabled, boolean_t exception, ipm6_ing_path_e path);
void mpls_ing_nonperf(env_t env, boolean_t global_feature_enabled, boolean_t exception, mpls_ing_path_e path);
boolean_t handle_subscriber_packets(env_t env);

void ip_nhindex_egr(env_t env);
void ipv4_egr(env_t env);
void ipv6_egr(env_t env);
void vpls_egr_uni(env_t env);
void vpws_egr(env_t env);
void mpls_egr(env_t env);
void vpls_egr_fld(env_t env);
void mpls_nhindex_egr(env_t env);
void ipm4_egr(env_t env);
void ipm6_egr(env_t env);
void vpls_egr_mn(env_t env);
void handle_efm_egr(env_t env);
void l2m4_egr(env_t env);
void l2m6_egr(env_t env);
void vpws_egr_xc_ac_ip(env_t env);
void l2tpv2_disp_egr_xc_ac_vpdn(env_t env);
void plat_process_inject(env_t env, boolean_t from_fabric);
void process_inject_ipv4(env_t env, std::uint8_t* payload);
void mofrr_frr_msg_rx(env_t env);
void punt_ptp_followup(env_t env, std::uint8_t* punt_ts, std::uint8_t* follow_up_pkt);
void recycle_rx(env_t env);
void npu_handle_special_dst_format(env_t env, std::uint32_t dst_format);
void process_tbpg(env_t env);
void process_fab_traffic_gen(env_t env, std::uint8_t* ipg_pkt);
void multipass_process(env_t env);

// What a copy of an inline replication must keep (special_inline_state_e).
enum special_inline_state_e : std::uint32_t {
  REP_STATE_HEADER_OVERWRITE = 1,
  REP_STATE_GPM_ALLOCATED = 2,
  REP_STATE_UNUSED_15 = 32768,
};
void do_modify_inline_state(env_t env, std::uint32_t state);
