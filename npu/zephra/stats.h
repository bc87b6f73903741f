// Statistics counters. A counter update is one request without a response:
// global counters through template 10, packet/byte pairs through template 8,
// and physical or TLU memory operations for the helpers below.
//
// A 24-bit index with bit 23 set is relative: (index AND 0x3FFF) plus the
// thread's stats_rep_offset picks the thread's replica, so that threads do
// not contend for one counter. The control side adds the four replicas.
#pragma once

#include <cstdint>

#include "arch_tie.h"
#include "dma_common.h"
#include "dma_defs.h"
#include "dplane/infra/ps.h"
#include "global_config.h"
#include "stats_defs.h"

inline constexpr std::uint32_t STATS_GLB_CNT_BASE = 0x4AEA00;
inline constexpr std::uint32_t STATS_ENTRY_BASE = 0x500000;
inline constexpr std::uint32_t STATS_ENTRY_BYTES = 8;
inline constexpr std::uint32_t STATS_RELATIVE_INDEX = 1u << 23;
inline constexpr std::uint32_t STATS_RELATIVE_MASK = 0x3FFF;
inline constexpr std::uint32_t STATS_REPLICA_STRIDE = 0x4004;
inline constexpr std::uint32_t STATS_REPLICAS = 4;

// Entries of an interface's ingress block, from its stats_p.
enum stats_uidb_static_ing_index_e : std::uint32_t {
  STATS_IF_LAYER2_UCAST_INPUT_CNT = 0,
  STATS_IF_LAYER2_BCAST_INPUT_CNT = 1,
  STATS_IF_LAYER2_MCAST_INPUT_CNT = 2,
  STATS_IF_LAYER2_UNK_UCAST_INPUT_CNT = 3,
  STATS_IF_LAYER2_MAC_MOVE_INPUT_CNT = 4,
  STATS_IF_PROTO_MPLS_INPUT_CNT = 5,
  STATS_IF_PROTO_IPV4_UCST_INPUT_CNT = 6,
  STATS_IF_PROTO_IPV6_UCST_INPUT_CNT = 7,
  MAX_UIDB_STATIC_ING_STATS = 8,  // end of the block; ingress drops count here
};

// Entries of an interface's egress block.
enum stats_uidb_static_egr_index_e : std::uint32_t {
  STATS_IF_LAYER2_UCAST_OUTPUT_CNT = 0,
  STATS_IF_LAYER2_BCAST_OUTPUT_CNT = 1,
  STATS_IF_LAYER2_MCAST_OUTPUT_CNT = 2,
  MAX_UIDB_STATIC_EGR_STATS = 3,
};

inline std::uint32_t compute_replicated_stats_index(env_t env, std::uint32_t stats_index) {
  if (!(stats_index & STATS_RELATIVE_INDEX)) return stats_index;
  return (stats_index & STATS_RELATIVE_MASK) + *ps_get_stats_rep_offset(env);
}
inline std::uint32_t compute_final_stats_address(env_t, std::uint32_t stats_index) {
  return STATS_ENTRY_BASE + stats_index * STATS_ENTRY_BYTES;
}
inline std::uint32_t compute_stats_address(env_t env, std::uint32_t stats_index) {
  return compute_final_stats_address(env, compute_replicated_stats_index(env, stats_index));
}

// Physical increments of a 4- or 8-byte counter, no response.
void stats_inc_32(env_t env, memaddr_t stats, std::uint32_t stats_req_loc);
void stats_inc_64(env_t env, memaddr_t stats, std::uint32_t stats_req_loc);
// Sends the prepared 3-word request at req_base_addr (word 0 its operation,
// word 2 its operand) with stats_addr as its word 1.
void stats_addinc_32_issue(env_t env, std::uint32_t stats_addr, unsigned char* req_base_addr,
                           std::uint32_t stats_req_loc);
// The same operations on a virtual address, translated by the TLU.
void stats_inc_32_tlu(env_t env, memaddr_t stats, std::uint32_t tlu_resource_id, std::uint32_t stats_req_loc);
void stats_inc_64_tlu(env_t env, memaddr_t stats, std::uint32_t tlu_resource_id, std::uint32_t stats_req_loc);
void stats_addinc_64_format_tlu(env_t env, memaddr_t stats, std::uint32_t count, std::uint32_t stats_req_loc);
void stats_addinc_64_issue_tlu(env_t env, std::uint32_t tlu_resource_id, std::uint32_t stats_req_loc);
void stats_addinc_64_tlu(env_t env, memaddr_t stats, std::uint32_t count, std::uint32_t tlu_resource_id,
                         std::uint32_t stats_req_loc);
// Reads an entry into resp_loc (stats_counter_pair_st) and clears it, in one step.
void stats_read_clear64(env_t env, std::uint32_t stats_index, std::uint32_t req_loc, std::uint32_t resp_loc);

// ---- the requests behind the generated counter lookups; `cell` is the tag's cell ----

inline void stats_glb_cnt_request(env_t env, std::uint32_t cell, std::uint32_t stat_index) {
  qrsc(RTT_GLOBAL_COUNTER, STATS_GLB_CNT_BASE + stat_index * STATS_ENTRY_BYTES, cell, cell);
  if (global_config_is_np_monitor_enabled(env)) np_counter_monitor_check(stat_index);
}

inline stats_add_request_st* stats_request_cell(env_t env, std::uint32_t cell) {
  return reinterpret_cast<stats_add_request_st*>(dma_cell_words(env, cell));
}
inline void stats_put_count(env_t env, std::uint32_t cell, std::uint32_t count) {
  stats_request_cell(env, cell)->count = count;
}
// One packet and the cell's byte count to the entry at stats_address.
inline void stats_add_request(std::uint32_t cell, std::uint32_t stats_address) {
  qrsc(RTT_STATS_PAIR, stats_address, cell, cell);
}

inline void stats_add_inc_request(env_t env, std::uint32_t cell, std::uint32_t stat_index, std::uint32_t count) {
  stats_put_count(env, cell, count);
  stats_add_request(cell, compute_stats_address(env, stat_index));
}
inline void stats_add_inc_split_request(env_t env, std::uint32_t cell, std::uint32_t stat_index) {
  stats_add_request(cell, compute_stats_address(env, stat_index));
}
// The relative test applies to the sum, so base and index share the 14-bit field.
inline void stats_uidb_add_inc_request(env_t env, std::uint32_t cell, std::uint32_t stat_base, std::uint32_t stat_index,
                                       std::uint32_t count) {
  stats_put_count(env, cell, count);
  stats_add_request(cell, compute_stats_address(env, stat_base + stat_index));
}
inline void stats_uidb_add_inc_split_request(env_t env, std::uint32_t cell, std::uint32_t stat_base,
                                             std::uint32_t stat_index) {
  stats_add_request(cell, compute_stats_address(env, stat_base + stat_index));
}
// Two entries of one block: the base is resolved once. The cell serves both
// requests in turn, as each is taken up when it is issued.
inline void stats_uidb_add_inc_twin_request(env_t env, std::uint32_t cell, std::uint32_t stat_base,
                                            std::uint32_t stat_index1, std::uint32_t count1, std::uint32_t stat_index2,
                                            std::uint32_t count2) {
  const std::uint32_t base = compute_replicated_stats_index(env, stat_base);
  stats_put_count(env, cell, count1);
  stats_add_request(cell, compute_final_stats_address(env, base + stat_index1));
  stats_put_count(env, cell, count2);
  stats_add_request(cell, compute_final_stats_address(env, base + stat_index2));
}
// A packet with no bytes.
inline void stats_inc_dyn_pool_cnt_request(env_t env, std::uint32_t cell, std::uint32_t stat_index,
                                           std::uint32_t offset) {
  stats_put_count(env, cell, 0);
  stats_add_request(cell, compute_stats_address(env, stat_index + offset));
}
inline void stats_read_clr_dyn_pool_cnt_request(env_t env, std::uint32_t cell, std::uint32_t stat_index) {
  stats_read_clear64(env, stat_index, cell, cell);
}
