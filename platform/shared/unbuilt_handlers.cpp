#include "unbuilt_handlers.h"

#include "dma_common.h"
#include "dplane/infra/drop.h"
#include "dplane/infra/ps.h"

namespace {

constexpr const char* names[] = {
#define UNBUILT(name) #name,
#include "unbuilt_handlers.def"
#undef UNBUILT
};

// The last cell of the request area; nothing else is live when a packet ends here.
constexpr std::uint32_t UNBUILT_REQ_CELL = 0x3F0;

}  // namespace

const char* unbuilt_handler_name(std::uint32_t id) { return id < UNBUILT_HANDLER_COUNT ? names[id] : nullptr; }

void unbuilt_handler_end(env_t env, unbuilt_handler_e id) {
  unbuilt_step_reached(env, id);
  drop_packet_no_counter(env);
}

void unbuilt_step_reached(env_t env, unbuilt_handler_e id) {
  dma_cell_words(env, UNBUILT_REQ_CELL)[0] = id;
  dma_initiate(env, dma_build_cmd(RES_UNBUILT_HANDLER, UNBUILT_REQ_CELL, 4, 0, 0));
}

void ipv4_ing_perf(env_t env, boolean_t) { unbuilt_handler_end(env, UNBUILT_ipv4_ing_perf); }
void ipm4_ing_perf(env_t env, boolean_t) { unbuilt_handler_end(env, UNBUILT_ipm4_ing_perf); }
void ipv6_ing_perf(env_t env, boolean_t) { unbuilt_handler_end(env, UNBUILT_ipv6_ing_perf); }
void ipm6_ing_perf(env_t env, boolean_t) { unbuilt_handler_end(env, UNBUILT_ipm6_ing_perf); }
void mpls_ing_perf(env_t env, boolean_t) { unbuilt_handler_end(env, UNBUILT_mpls_ing_perf); }
void vpws_ing(env_t env) { unbuilt_handler_end(env, UNBUILT_vpws_ing); }
void vpls_ing(env_t env) { unbuilt_handler_end(env, UNBUILT_vpls_ing); }
void l2_ctrl_ing(env_t env) { unbuilt_handler_end(env, UNBUILT_l2_ctrl_ing); }
void ipv4_ing_nonperf(env_t env, boolean_t, boolean_t, ipv4_ing_path_e) {
  unbuilt_handler_end(env, UNBUILT_ipv4_ing_nonperf);
}
void ipv6_ing_nonperf(env_t env, boolean_t, boolean_t, ipv6_ing_path_e) {
  unbuilt_handler_end(env, UNBUILT_ipv6_ing_nonperf);
}
void ipm4_ing_nonperf(env_t env, boolean_t, boolean_t, ipm4_ing_path_e) {
  unbuilt_handler_end(env, UNBUILT_ipm4_ing_nonperf);
}
void ipm6_ing_nonperf(env_t env, boolean_t, boolean_t, ipm6_ing_path_e) {
  unbuilt_handler_end(env, UNBUILT_ipm6_ing_nonperf);
}
void mpls_ing_nonperf(env_t env, boolean_t, boolean_t, mpls_ing_path_e) {
  unbuilt_handler_end(env, UNBUILT_mpls_ing_nonperf);
}

boolean_t handle_subscriber_packets(env_t env) {
  unbuilt_handler_end(env, UNBUILT_handle_subscriber_packets);
  return TRUE;
}

void ip_nhindex_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_ip_nhindex_egr); }
void ipv4_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_ipv4_egr); }
void ipv6_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_ipv6_egr); }
void vpls_egr_uni(env_t env) { unbuilt_handler_end(env, UNBUILT_vpls_egr_uni); }
void vpws_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_vpws_egr); }
void mpls_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_mpls_egr); }
void vpls_egr_fld(env_t env) { unbuilt_handler_end(env, UNBUILT_vpls_egr_fld); }
void mpls_nhindex_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_mpls_nhindex_egr); }
void ipm4_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_ipm4_egr); }
void ipm6_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_ipm6_egr); }
void vpls_egr_mn(env_t env) { unbuilt_handler_end(env, UNBUILT_vpls_egr_mn); }
void handle_efm_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_handle_efm_egr); }
void l2m4_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_l2m4_egr); }
void l2m6_egr(env_t env) { unbuilt_handler_end(env, UNBUILT_l2m6_egr); }
void vpws_egr_xc_ac_ip(env_t env) { unbuilt_handler_end(env, UNBUILT_vpws_egr_xc_ac_ip); }
void l2tpv2_disp_egr_xc_ac_vpdn(env_t env) { unbuilt_handler_end(env, UNBUILT_l2tpv2_disp_egr_xc_ac_vpdn); }
void plat_process_inject(env_t env, boolean_t) { unbuilt_handler_end(env, UNBUILT_plat_process_inject); }
void process_inject_ipv4(env_t env, std::uint8_t*) { unbuilt_handler_end(env, UNBUILT_process_inject_ipv4); }
void mofrr_frr_msg_rx(env_t env) { unbuilt_handler_end(env, UNBUILT_mofrr_frr_msg_rx); }
void punt_ptp_followup(env_t env, std::uint8_t*, std::uint8_t*) { unbuilt_handler_end(env, UNBUILT_punt_ptp_followup); }
void recycle_rx(env_t env) { unbuilt_handler_end(env, UNBUILT_recycle_rx); }
void npu_handle_special_dst_format(env_t env, std::uint32_t) {
  unbuilt_handler_end(env, UNBUILT_npu_handle_special_dst_format);
}
void process_tbpg(env_t env) { unbuilt_handler_end(env, UNBUILT_process_tbpg); }
void process_fab_traffic_gen(env_t env, std::uint8_t*) { unbuilt_handler_end(env, UNBUILT_process_fab_traffic_gen); }
// Clears the request for another pass first, so that the loop moves on to
// the next packet.
void multipass_process(env_t env) {
  common_flags_st::do_multipass::set(*ps_put_mod_common_flags(env), 0);
  unbuilt_handler_end(env, UNBUILT_multipass_process);
}
void do_modify_inline_state(env_t env, std::uint32_t) { unbuilt_handler_end(env, UNBUILT_do_modify_inline_state); }
