#include "drop.h"

#include "arch_tie.h"
#include "dma_common.h"
#include "global_counters.h"
#include "lookup.h"
#include "npu/zephra/pkt_rx.h"
#include "ps.h"
#include "tail_proc.h"

namespace {

using cf = common_flags_st;
using cf2 = common_flags2_st;

constexpr std::uint32_t FREE_REQ_LOC = 0x20;
constexpr std::uint32_t KEEP_REQ_LOC = 0x210;

// Capture register fields.
constexpr std::uint32_t CAPTURE_BY_REASON = 1u << 0;
constexpr std::uint32_t CAPTURE_BY_INTERFACE = 1u << 1;
constexpr std::uint32_t CAPTURE_TRACED_ONLY = 1u << 2;
constexpr std::uint32_t PKT_MEM_ALIGN = 256;

}  // namespace

void drop_packet(env_t env, std::uint32_t drop_counter_index) {
  drop_packet_no_counter_internal(env, FALSE, TRUE, drop_counter_index);
}

void drop_packet_no_counter(env_t env) { drop_packet_no_counter_internal(env, FALSE, FALSE, 0); }

void drop_packet_no_counter_mcast(env_t env) { drop_packet_no_counter_internal(env, TRUE, FALSE, 0); }

void drop_packet_return_to_main(env_t env, std::uint32_t drop_counter_index) {
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  cf::keep_gpm::set(flags, 0);
  cf::tail_processing::set(flags, 0);
  drop_packet(env, drop_counter_index);
}

void drop_packet_no_counter_internal(env_t env, boolean_t is_multicast_last, boolean_t increment_np_counter,
                                     std::uint32_t drop_counter_index) {
  if (!is_multicast_last) record_netflow_drop_reason(env, NF_DROP_REASON_UNKNOWN);
  span_flags_st::egr_not_xmitted::set(*ps_put_mod_span_flags(env), 1);
  check_multipass_drop(env);
  const bool keep = cf::keep_gpm::get(*ps_get_common_flags(env)) != 0;
  if (!is_multicast_last && keep) {
    // The packet lives on: count, hand the order position on, and go on.
    if (increment_np_counter) lookup_request_ID_STATS_INC_GLB_CNT__DROP(env, drop_counter_index);
    lookup_request_ID_DROP_KEEP_PKT(env);
    return;
  }
  if (!keep && increment_np_counter) {
    npu_drop_capture_inline(env, drop_counter_index, *ps_get_pkt_start(env));
    lookup_request_ID_STATS_INC_GLB_CNT__DROP(env, drop_counter_index);
    power_drop_counted(drop_counter_index);
  }
  lookup_request_ID_DROP_PKT(env);
}

// The first reason stands: a later drop of the same packet changes nothing.
void record_netflow_drop_reason(env_t env, nfpkt_drop_reason_e drop_reason) {
  if (!cf::nf_sampled::get(*ps_get_common_flags(env))) return;
  common_flags2_st& flags2 = *ps_put_mod_common_flags2(env);
  if (cf2::nf_drop_reason_set_or_nonsampled::get(flags2)) return;
  nfpkt_cmn_hdr_status_st& status = *ps_put_mod_nf_status(env);
  nfpkt_cmn_hdr_status_st::fwdg_status::set(status, NF_FWD_STATUS_DROP);
  nfpkt_cmn_hdr_status_st::reason::set(status, drop_reason);
  cf2::nf_drop_reason_set_or_nonsampled::set(flags2, 1);
}

// A dropped packet goes to no further pass; its other tail work remains.
void check_multipass_drop(env_t env) {
  const common_flags_st& flags = *ps_get_common_flags(env);
  if (cf::tail_processing::get(flags) && (*ps_get_tail_proc_enables(env) & tail_proc_multipass) &&
      !cf::in_tail_processing::get(flags)) {
    disable_tail_processing(env, tail_proc_multipass);
  }
}

void npu_drop_packet_guts(env_t env) {
  const bool ingress = pkt_rx_is_ingress(env) != 0;
  if (cf::pkt_trace_on::get(*ps_get_common_flags(env))) {
    lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, ingress ? CNT_TRACED_DROP_INGRESS : CNT_TRACED_DROP_EGRESS);
  }
  be_u32* req = dma_cell_words(env, FREE_REQ_LOC);
  req[0] = ingress ? FLB_CMD_FREE_INGRESS : FLB_CMD_FREE_EGRESS;
  req[1] = 0;
  req[2] = pkt_rx_gpm_pkt_handle(env) << 16;
  dma_flush_initiate_and_wait(env, dma_build_cmd(RES_FLB, FREE_REQ_LOC, 12, 0, PKT_END_RESPONSE_BYTES));
}

void npu_drop_keep_packet(env_t env) {
  dma_flowlock_convert(env, *ps_get_next_flowlock_id(env), KEEP_REQ_LOC, KEEP_REQ_LOC);
}

void npu_drop_capture_inline(env_t env, std::uint32_t drop_reason, const std::uint8_t* pkt_start) {
  const std::uint32_t filter = RDC(COP_DROP_CAPTURE);
  if ((filter & CAPTURE_BY_REASON) && ((filter >> 3) & 0x1FFF) != drop_reason) return;
  if ((filter & CAPTURE_BY_INTERFACE) &&
      (pkt_rx_distr_type(env) != DST_FORMAT_LINE || (filter >> 16) != pkt_get_rx_uidb_index(env))) {
    return;
  }
  if ((filter & CAPTURE_TRACED_ONLY) && !cf::pkt_trace_on::get(*ps_get_common_flags(env))) return;
  const auto start = reinterpret_cast<std::uintptr_t>(pkt_start) & ~std::uintptr_t{PKT_MEM_ALIGN - 1};
  if (start == reinterpret_cast<std::uintptr_t>(*ps_get_pkt_mem_start(env))) capture_drop_packet_asm(drop_reason);
}
