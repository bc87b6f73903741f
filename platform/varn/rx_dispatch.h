// Dispatch of one packet by its distribution format.
#pragma once

#include <cstdint>

#include "entry_points.h"
#include "fwc_types.h"

// Runs the handler of the current packet. Returns FALSE when the packet was
// finished before a handler ran (satellite or subscriber intake), in which
// case the loop skips the test for another pass.
boolean_t plat_rx_process(env_t env);
void plat_rx_process_egr(env_t env, std::uint32_t dst_format);
void plat_rx_process_slow(env_t env);
void handle_egr_ci(env_t env, nph_fn_type nph_fn);
void pdma_rx(env_t env);
void process_fhpdma(env_t env);
void npu_ing_pkt_trace_proc(env_t env);
void npu_pkt_trace_update_egr_line_stat(env_t env);
void rtl_test(env_t env);
