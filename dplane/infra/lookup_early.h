// Interim lookups used by the packet loop until the generated catalogue
// provides them. Reads go straight to the TLU by address.
#pragma once

#include "arch_tie.h"
#include "dma_common.h"
#include "dplane/infra/ps.h"
#include "fwc_global.h"
#include "fwc_port.h"
#include "fwc_uidb.h"
#include "global_config.h"

void npu_drop_packet_guts(env_t env);
void npu_drop_keep_packet(env_t env);

namespace lookup_early {
inline void tlu_read(env_t env, std::uint32_t resource, std::uint32_t vaddr, std::uint32_t cell, std::uint32_t size) {
  dma_cell_words(env, cell)[0] = vaddr;
  dma_initiate(env, dma_build_cmd(resource, cell, 4, cell, size));
}
inline void glb_cnt(env_t env, std::uint32_t stat_index, std::uint32_t cell) {
  qrsc(rtt_index(0, 10), 0x4AEA00 + stat_index * 8, cell, 0);
  if (global_config_is_np_monitor_enabled(env)) np_counter_monitor_check(stat_index);
}
}  // namespace lookup_early

inline void lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env_t env, std::uint32_t i) { lookup_early::glb_cnt(env, i, 0x2D0); }
inline void lookup_request_ID_STATS_INC_GLB_CNT__DROP(env_t env, std::uint32_t i) { lookup_early::glb_cnt(env, i, 0x210); }
inline void lookup_request_ID_PORT_CONFIG_ING__SAT(env_t env, std::uint32_t index) {
  lookup_early::tlu_read(env, 378, 0x81540C00 + index * 16, 0x20, 16);
}
inline ingress_port_fields_part1_st* lookup_result_ID_PORT_CONFIG_ING__SAT(env_t env) {
  return reinterpret_cast<ingress_port_fields_part1_st*>(env_get_dmem_start(env) + 0x20);
}
inline void lookup_request_ID_UIDB_L3_ING__COMM(env_t env, std::uint32_t record_index) {
  lookup_early::tlu_read(env, 379, (record_index << 2) | 2, 0x140, 32);
}
inline void lookup_wait_ID_UIDB_L3_ING__COMM(env_t) {}
inline uidb_l3_ing_fields_st* lookup_result_ID_UIDB_L3_ING__COMM(env_t env) {
  return reinterpret_cast<uidb_l3_ing_fields_st*>(env_get_dmem_start(env) + 0x140);
}
inline void lookup_request_ID_GLOBAL_PKT_TRACE(env_t env) { lookup_early::tlu_read(env, 379, 0x40342040, 0x20, 32); }
inline global_pkt_trace_entry_st* lookup_result_ID_GLOBAL_PKT_TRACE(env_t env) {
  return reinterpret_cast<global_pkt_trace_entry_st*>(env_get_dmem_start(env) + 0x20);
}
inline void lookup_request_ID_DROP_PKT(env_t env) { npu_drop_packet_guts(env); }
inline void lookup_request_ID_DROP_KEEP_PKT(env_t env) { npu_drop_keep_packet(env); }
