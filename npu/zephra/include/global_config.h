// Accessors of the global configuration word (register 136), as kept in
// global_uidb_reg and refreshed at each packet boundary.
#pragma once

#include "dplane/infra/ps.h"

namespace global_config_bits {
inline constexpr std::uint32_t ISSU_V2_MODE = 1u << 3;
inline constexpr std::uint32_t NP_MONITOR = 1u << 4;
inline constexpr std::uint32_t SIM_PLATFORM = 1u << 5;
inline constexpr std::uint32_t FRR_ACTIVE = 1u << 6;
inline constexpr std::uint32_t MPLS_PROPAGATE_TTL = 1u << 7;
inline constexpr std::uint32_t LB_7_TUPLE = 1u << 8;
inline constexpr std::uint32_t IPV6_FLOW_LABEL_HASH = 1u << 9;
inline constexpr std::uint32_t DBG_CLK_CNT = 1u << 10;
inline constexpr std::uint32_t ENTROPY_LB = 1u << 12;
inline constexpr std::uint32_t MPLS_OVER_UDP_DECAP = 1u << 13;
inline constexpr std::uint32_t PKT_TRACE = 1u << 14;
}  // namespace global_config_bits

inline boolean_t global_config_bit(env_t env, std::uint32_t bit) {
  return (*ps_get_global_uidb_reg(env) & bit) ? TRUE : FALSE;
}
inline boolean_t global_config_is_issu_v2_mode(env_t env) {
  return global_config_bit(env, global_config_bits::ISSU_V2_MODE);
}
inline boolean_t global_config_is_np_monitor_enabled(env_t env) {
  return global_config_bit(env, global_config_bits::NP_MONITOR);
}
inline boolean_t global_config_is_sim_platform(env_t env) {
  return global_config_bit(env, global_config_bits::SIM_PLATFORM);
}
inline boolean_t global_config_is_frr_active(env_t env) {
  return global_config_bit(env, global_config_bits::FRR_ACTIVE);
}
inline boolean_t global_config_is_mpls_propagate_ttl_enabled(env_t env) {
  return global_config_bit(env, global_config_bits::MPLS_PROPAGATE_TTL);
}
inline boolean_t global_config_is_7_tuple_lb_enabled(env_t env) {
  return global_config_bit(env, global_config_bits::LB_7_TUPLE);
}
inline boolean_t global_config_ipv6_flow_label_hash_enabled(env_t env) {
  return global_config_bit(env, global_config_bits::IPV6_FLOW_LABEL_HASH);
}
inline boolean_t global_config_dbg_clk_cnt_enabled(env_t env) {
  return global_config_bit(env, global_config_bits::DBG_CLK_CNT);
}
inline boolean_t global_config_is_entropy_lb_enabled(env_t env) {
  return global_config_bit(env, global_config_bits::ENTROPY_LB);
}
inline boolean_t global_config_is_mpls_over_udp_decap_enabled(env_t env) {
  return global_config_bit(env, global_config_bits::MPLS_OVER_UDP_DECAP);
}
inline boolean_t global_config_pkt_trace_en(env_t env) { return global_config_bit(env, global_config_bits::PKT_TRACE); }
inline std::uint32_t global_config_get_router_id(env_t env) { return *ps_get_global_uidb_reg_router_id(env); }
