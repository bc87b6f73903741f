// Setting up a thread's context, and the per-packet reset of its state.
#pragma once

#include <cstdint>

#include "ps.h"

struct env_init_st {};

env_t env_initialize(env_init_st* env_init);
void env_ps_initialize(env_t env);
void env_stack_initialize(env_t env);
void internal_plat_per_packet_init(env_t env, boolean_t multipass);

std::uint32_t npu_get_thread_id(env_t env);
void tlu_init_cache_policy(env_t env);

// Places behind the current packet memory start.
inline std::uint8_t* env_get_pkt_mem_start(env_t env) { return *ps_get_pkt_mem_start(env); }
inline std::uint8_t* env_get_pkt_start(env_t env) { return env_get_pkt_mem_start(env) + PKT_START_OFFSET; }
inline std::uint8_t* env_get_pkt_ing_save_area_start(env_t env) {
  return env_get_pkt_mem_start(env) + PKT_ING_SAVE_AREA_OFFSET;
}
inline std::uint32_t env_sizeof_pkt_ing_save_area(env_t) { return PKT_ING_SAVE_AREA_SIZE; }
inline std::uint8_t* env_get_pkt_egr_second_encap_start(env_t env) {
  return env_get_pkt_mem_start(env) + PKT_EGR_SECOND_ENCAP_OFFSET;
}
inline std::uint32_t env_sizeof_pkt_egr_second_encap_area(env_t) { return PKT_EGR_SECOND_ENCAP_SIZE; }

// Debug aids: poison what a new pass (or a recycled packet) must not rely on.
void npu_mark_multipass_memory(env_t env);
void npu_mark_recycle_memory(env_t env);
