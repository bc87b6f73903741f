#include "drop_paths.h"

#include "fwc_uidb.h"
#include "lookup.h"
#include "npu/zephra/pkt_rx.h"
#include "platform/shared/feature_steps.h"
#include "ps.h"

namespace {

using ing_rec = uidb_l3_ing_fields_st;
using egr_rec = uidb_l3_egr_fields_st;
using ing_bit = std::uint32_t (*)(const ing_rec&);
using egr_bit = std::uint32_t (*)(const egr_rec&);
using interface_count = void (*)(env_t env, std::uint32_t stat_base, std::uint32_t stat_index, std::uint32_t count);

// What a path's drops do on its interface: its flow-export bit on each of
// its records with the flow-export step, the mirror capture of the ingress
// drop, and the interface count of the early drop. The NETFLOW forms, which
// run inside flow export, have none of them.
struct drop_path_st {
  bool interface_part;
  ing_bit ing_netflow_on;
  void (*ing_netflow)(env_t env);
  void (*ing_span_capture)(env_t env);
  interface_count early_drop_count;
  egr_bit egr_netflow_on;
  void (*egr_netflow)(env_t env);
};

constexpr drop_path_st DROP_PATH_IPV4 = {true,
                                         ing_rec::ipv4::nf_en::get<ing_rec>,
                                         ipv4_ing_netflow_part_1_2,
                                         span_capture_ipv4_ing,
                                         lookup_request_ID_STATS_UIDB_ADD_INC__EARLY_DROP_IPV4,
                                         egr_rec::ipv4_nf_en::get<egr_rec>,
                                         ipv4_egr_netflow_part_1};
constexpr drop_path_st DROP_PATH_IPV6 = {true,
                                         ing_rec::ipv6::nf_en::get<ing_rec>,
                                         ipv6_ing_netflow_part_1_2,
                                         span_capture_ipv6_ing,
                                         lookup_request_ID_STATS_UIDB_ADD_INC__EARLY_DROP_IPV6,
                                         egr_rec::ipv6_nf_en::get<egr_rec>,
                                         ipv6_egr_netflow_part_1};
constexpr drop_path_st DROP_PATH_IPM4 = {true,
                                         ing_rec::ipv4::nf_en::get<ing_rec>,
                                         ipv4_ing_netflow_part_1_2,
                                         span_capture_ipv4_ing,
                                         lookup_request_ID_STATS_UIDB_ADD_INC__EARLY_DROP_IPM4,
                                         egr_rec::ipv4_nf_en::get<egr_rec>,
                                         ipm4_egr_netflow_part_1};
constexpr drop_path_st DROP_PATH_IPM6 = {true,
                                         ing_rec::ipv6::nf_en::get<ing_rec>,
                                         ipv6_ing_netflow_part_1_2,
                                         span_capture_ipv6_ing,
                                         lookup_request_ID_STATS_UIDB_ADD_INC__EARLY_DROP_IPM6,
                                         egr_rec::ipv6_nf_en::get<egr_rec>,
                                         ipm6_egr_netflow_part_1};
constexpr drop_path_st DROP_PATH_MPLS = {true,
                                         ing_rec::mpls::nf_en::get<ing_rec>,
                                         mpls_ing_netflow_part_1_2,
                                         span_capture_mpls_ing,
                                         lookup_request_ID_STATS_UIDB_ADD_INC__EARLY_DROP_MPLS,
                                         egr_rec::mpls_nf_en::get<egr_rec>,
                                         mpls_egr_netflow_part_1};
constexpr drop_path_st DROP_PATH_NETFLOW = {false, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};

bool injected(env_t env) { return inject_flags_st::injected_pkt::get(*ps_get_inject_flags(env)) != 0; }

const ing_rec& ingress_record(env_t env) {
  lookup_wait_ID_UIDB_L3_ING__COMM(env);
  return *lookup_result_ID_UIDB_L3_ING__COMM(env);
}

// Entry 8 of the interface's ingress block, the first behind its static
// entries; an interface without a block (stats_p 0) counts nothing.
void count_on_interface(env_t env, interface_count count, const ing_rec& rec, std::uint32_t rx_pkt_len) {
  const std::uint32_t stats_p = ing_rec::stats_p::get(rec);
  if (stats_p != 0) count(env, stats_p, MAX_UIDB_STATIC_ING_STATS, rx_pkt_len);
}

void call_nf_code_ing(env_t env, const drop_path_st& p) {
  if (p.interface_part && p.ing_netflow_on(ingress_record(env))) p.ing_netflow(env);
}

void call_nf_code_egr(env_t env, const drop_path_st& p, boolean_t uidb_completed) {
  if (!p.interface_part) return;
  if (!uidb_completed) lookup_wait_ID_UIDB_L3_EGR__COMM(env);
  if (p.egr_netflow_on(*lookup_result_ID_UIDB_L3_EGR__COMM(env))) p.egr_netflow(env);
}

struct early_drop_st {
  std::uint32_t rx_pkt_len;
  nfpkt_drop_reason_e drop_reason;
  std::uint32_t drop_ctr_idx;
  boolean_t need_uidb_l3_stats;
};

void early_drop(env_t env, const drop_path_st& p, const early_drop_st& d) {
  if (p.interface_part && !injected(env)) {
    call_nf_code_ing(env, p);
    const ing_rec& rec = ingress_record(env);
    if (ing_rec::span_en::get(rec)) p.ing_span_capture(env);
    record_netflow_drop_reason(env, d.drop_reason);
    if (d.need_uidb_l3_stats) count_on_interface(env, p.early_drop_count, rec, d.rx_pkt_len);
  }
  drop_packet(env, d.drop_ctr_idx);
}

void egress_drop(env_t env, const drop_path_st& p, boolean_t uidb_completed, nfpkt_drop_reason_e drop_reason,
                 std::uint32_t drop_ctr_idx) {
  if (p.interface_part) {
    call_nf_code_egr(env, p, uidb_completed);
    record_netflow_drop_reason(env, drop_reason);
  }
  drop_packet(env, drop_ctr_idx);
}

}  // namespace

void l3_ing_drop(env_t env, boolean_t uidb_results_ready, std::uint32_t rx_pkt_len, std::uint32_t drop_counter_index) {
  if (!injected(env)) {
    if (!uidb_results_ready) lookup_request_ID_UIDB_L3_ING__COMM(env, pkt_get_rx_uidb_index(env));
    count_on_interface(env, lookup_request_ID_STATS_UIDB_ADD_INC__L3_ING_DROP_COMM, ingress_record(env), rx_pkt_len);
  }
  drop_packet(env, drop_counter_index);
}

#define DROP_PATH(path, meaning)                                                                            \
  void early_drop_packet_ing__##path(env_t env, std::uint32_t rx_pkt_len, nfpkt_drop_reason_e drop_reason,  \
                                     std::uint32_t drop_ctr_idx, boolean_t need_uidb_l3_stats) {            \
    early_drop(env, DROP_PATH_##path, {rx_pkt_len, drop_reason, drop_ctr_idx, need_uidb_l3_stats});         \
  }                                                                                                         \
  void drop_packet_egr_common__##path(env_t env, boolean_t uidb_completed, nfpkt_drop_reason_e drop_reason, \
                                      std::uint32_t drop_ctr_idx) {                                         \
    egress_drop(env, DROP_PATH_##path, uidb_completed, drop_reason, drop_ctr_idx);                          \
  }                                                                                                         \
  void call_nf_code_ing_common__##path(env_t env) { call_nf_code_ing(env, DROP_PATH_##path); }              \
  void call_nf_code_egr_common__##path(env_t env, boolean_t uidb_completed) {                               \
    call_nf_code_egr(env, DROP_PATH_##path, uidb_completed);                                                \
  }
#include "drop_paths.def"
#undef DROP_PATH
