// Drops with the interface's part: its drop statistics, its flow export and
// its mirror capture. Each ends the packet as drop_packet does, so a caller
// returns at once.
#pragma once

#include <cstdint>

#include "drop.h"
#include "fwc_types.h"

// An ingress drop before the protocol path has begun: counted on the
// interface (entry 8 of its statistics block), then dropped with its reason.
void l3_ing_drop(env_t env, boolean_t uidb_results_ready, std::uint32_t rx_pkt_len, std::uint32_t drop_counter_index);

// Per path (drop_paths.def). The early drop runs on a path that has asked for
// its interface record (UIDB_L3_ING__COMM); the egress drop on one that has
// asked for its egress record (UIDB_L3_EGR__COMM), waited for unless
// uidb_completed. The NETFLOW forms, used inside flow export, only drop.
#define DROP_PATH(path, meaning)                                                                            \
  void early_drop_packet_ing__##path(env_t env, std::uint32_t rx_pkt_len, nfpkt_drop_reason_e drop_reason,  \
                                     std::uint32_t drop_ctr_idx, boolean_t need_uidb_l3_stats);             \
  void drop_packet_egr_common__##path(env_t env, boolean_t uidb_completed, nfpkt_drop_reason_e drop_reason, \
                                      std::uint32_t drop_ctr_idx);                                          \
  void call_nf_code_ing_common__##path(env_t env);                                                          \
  void call_nf_code_egr_common__##path(env_t env, boolean_t uidb_completed);
#include "drop_paths.def"
#undef DROP_PATH
