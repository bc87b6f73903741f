// The packet-trace filters: which packets get pkt_trace_on, and the per-port
// counters of traced packets.
#include <cstring>
#include <initializer_list>

#include "dplane/infra/lookup.h"
#include "global_counters.h"
#include "npu/zephra/pkt_rx.h"
#include "rx_dispatch.h"

namespace {

bool port_selected(const global_pkt_trace_entry_st& e, std::uint32_t port) {
  for (std::uint8_t slot : {e.np_port1, e.np_port2, e.np_port3}) {
    if (slot != PKT_TRACE_EMPTY_PORT && slot == port) return true;
  }
  // A used fourth slot selects every port: it is not compared.
  return e.np_port4 != PKT_TRACE_EMPTY_PORT;
}

bool word_matches(const std::uint8_t* pkt_start, std::uint8_t offset, std::uint32_t value, std::uint32_t mask) {
  be_u32 word;
  std::memcpy(word.b, pkt_start + offset, sizeof(word.b));
  return (word.get() & mask) == value;
}

}  // namespace

void npu_ing_pkt_trace_proc(env_t env) {
  lookup_request_ID_GLOBAL_PKT_TRACE(env);
  const global_pkt_trace_entry_st& e = *lookup_result_ID_GLOBAL_PKT_TRACE(env);
  const std::uint32_t port = pkt_get_rx_physical_port(env);
  if (!port_selected(e, port)) return;
  const std::uint8_t* pkt_start = *ps_get_pkt_start(env);
  if (!word_matches(pkt_start, e.offset1, e.value1, e.mask1) ||
      !word_matches(pkt_start, e.offset2, e.value2, e.mask2) ||
      !word_matches(pkt_start, e.offset3, e.value3, e.mask3)) {
    return;
  }
  common_flags_st::pkt_trace_on::set(*ps_put_mod_common_flags(env), 1);
  lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, CNT_TRACED_RX_PORT + port);
}

void npu_pkt_trace_update_egr_line_stat(env_t env) {
  const std::uint32_t port = *ps_get_hw_np_port(env);
  if (!pkt_rx_is_ingress(env) && port < CNT_TRACED_TX_LINE_PORT_COUNT) {
    lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, CNT_TRACED_TX_LINE_PORT + port);
  }
}
