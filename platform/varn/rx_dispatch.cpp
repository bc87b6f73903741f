#include "rx_dispatch.h"

#include "dplane/infra/drop.h"
#include "dplane/infra/lookup.h"
#include "fab_hdr_access.h"
#include "global_config.h"
#include "global_counters.h"
#include "npu/zephra/pkt_buf.h"
#include "pdma_hdr.h"
#include "platform/shared/handlers.h"
#include "rx_exceptions.h"

namespace {

using cf = common_flags_st;

enum pdma_pkt_type_e : std::uint32_t {
  PDMA_PKT_HOST = 0,
  PDMA_PKT_TIMER = 1,
  PDMA_PKT_FAB_TRAFFIC_GEN = 2,
  PDMA_PKT_UNKNOWN = 3,
};

boolean_t plat_rx_process_ing(env_t env) {
  if (global_config_pkt_trace_en(env)) npu_ing_pkt_trace_proc(env);
  if (pkt_rx_is_virt(env) && handle_sat_port(env)) return FALSE;
  if (pkt_rx_is_subscriber_enabled(env) && !pkt_rx_mpls_enabled(env) && handle_subscriber_packets(env)) {
    return FALSE;
  }
  // The tests above may have changed the vector and its offsets: read now.
  const boolean_t global_feature_enabled = pkt_rx_is_global_feature(env);
  const std::uint32_t vector = pkt_rx_rt_thread(env);
  if (!pkt_rx_rt_thread_valid(env)) {
    handle_protdecode_tcam_miss(env);
  } else if (vector > ING_MAX_WIRE_VECTOR) {
    handle_non_wire_vector(env);
  } else {
    ing_ep_entry(vector)(env, global_feature_enabled);
  }
  return TRUE;
}

}  // namespace

boolean_t plat_rx_process(env_t env) {
  const std::uint32_t dst_format = pkt_rx_distr_type(env);
  if (dst_format == DST_FORMAT_LINE) return plat_rx_process_ing(env);
  if (dst_format == DST_FORMAT_FABRIC) {
    plat_rx_process_egr(env, dst_format);
  } else {
    plat_rx_process_slow(env);
  }
  return TRUE;
}

void plat_rx_process_egr(env_t env, std::uint32_t dst_format) {
  if (npu_verify_dst_error(env, dst_format)) return;
  const void* fab = plat_fab_hdr_of(env);
  const nph_fn_type nph_fn = nph_ep_entry(nph_type_to_ep_table_index(plat_fab_get_nph_type(fab)));
  if (plat_get_common_ptrace_fromfab(fab)) {
    lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, CNT_TRACED_FROM_FABRIC);
    cf::pkt_trace_on::set(*ps_put_mod_common_flags(env), 1);
  }
  if (plat_get_common_critical_inject_fromfab(fab)) return handle_egr_ci(env, nph_fn);
  nph_fn(env);
}

void handle_egr_ci(env_t env, nph_fn_type nph_fn) {
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  cf::critical_priority::set(flags, 1);
  cf::acl_lookup_miss::set(flags, 1);
  cf::qos_lookup_miss::set(flags, 1);
  inject_flags_st& inject = *ps_put_mod_inject_flags(env);
  inject_flags_st::injected_pkt::set(inject, 1);
  inject_flags_st::critical_inject::set(inject, 1);
  nph_fn(env);
}

void plat_rx_process_slow(env_t env) {
  const std::uint32_t dst_format = pkt_rx_distr_type(env);
  switch (dst_format) {
    case DST_FORMAT_RECYCLE:
      return recycle_rx(env);
    case DST_FORMAT_SPECIAL:
    case DST_FORMAT_INTERNAL:
      return npu_handle_special_dst_format(env, dst_format);
    default:
      return pdma_rx(env);
  }
}

void pdma_rx(env_t env) {
  std::uint8_t* buf = *ps_get_pkt_start(env);
  const fhpdma_bufhdr_type& hdr = *reinterpret_cast<const fhpdma_bufhdr_type*>(buf);
  if (fhpdma_bufhdr_type::issu_vbit::get(hdr)) return drop_packet(env, DROP_PDMA_ISSU);
  switch (fhpdma_bufhdr_type::pkt_type::get(hdr)) {
    case PDMA_PKT_HOST:
      return process_fhpdma(env);
    case PDMA_PKT_TIMER:
      return process_tbpg(env);
    case PDMA_PKT_FAB_TRAFFIC_GEN:
      return process_fab_traffic_gen(env, buf);
    default:
      return drop_packet(env, DROP_PDMA_UNKNOWN_TYPE);
  }
}

void process_fhpdma(env_t env) { drop_packet_no_counter(env); }

void rtl_test(env_t) {}
