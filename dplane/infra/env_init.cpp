#include "env_init.h"

#include <cstdio>
#include <cstring>

#include "arch_tie.h"
#include "coherency_list.h"
#include "lookup_dbg.h"
#include "npu/zephra/stats.h"
#include "tlu_defs.h"

namespace {

constexpr std::uint32_t STACK_BASE = 0x4450000;
constexpr std::uint32_t STACK_BASE_HIGH_THREADS = 0x444FFE0;
constexpr std::uint32_t STACK_SIZE = 0xEC0;

using cf = common_flags_st;
using cf2 = common_flags2_st;

// Flags that survive into a new pass over the same packet.
constexpr std::uint32_t KEEP_W0_ALWAYS =
    be_word_mask<0, cf::inline_rep_in_progress, cf::keep_gpm, cf::pkt_trace_on, cf::pkt_recycled>();
constexpr std::uint32_t KEEP_W0_PWHE = be_word_mask<0, cf::critical_priority, cf::ing_gre_decap_egr_pri>();
constexpr std::uint32_t KEEP_W1_ALWAYS = be_word_mask<4, cf::gpm_allocated>();
constexpr std::uint32_t KEEP_W1_PWHE = be_word_mask<4, cf::l1_oh_en>();
constexpr std::uint32_t KEEP_W1_NOT_PWHE = be_word_mask<4, cf::gre_encap>();
constexpr std::uint32_t KEEP_F2_ALWAYS =
    be_word_mask<0, cf2::is_bvi, cf2::entropy_label_invalid_or_is_sfi, cf2::rx_tx_adj_pwhe, cf2::gre_over_mpls,
                 cf2::preroute_use_vlan_tags>();
constexpr std::uint32_t KEEP_F2_PWHE = be_word_mask<0, cf2::queue_en, cf2::pwhe>();

be_u32* flag_word(void* rec, std::size_t byte) {
  return reinterpret_cast<be_u32*>(static_cast<std::uint8_t*>(rec) + byte);
}

void keep_only(be_u32* word, std::uint32_t keep) { word->set(word->get() & keep); }

}  // namespace

env_t env_initialize(env_init_st*) {
  env_t env = reinterpret_cast<env_t>(get_dmem_start_addr());
  env_ps_initialize(env);
  coherency_init(env);
  ps_dbg_initialize(env);
  lookup_dbg_initialize(env);
  return env;
}

void env_stack_initialize(env_t env) {
  const std::uint32_t identity = RDC(COP_THREAD_IDENTITY);
  const std::uint32_t n = (identity >> 3) & 0xF;
  const std::uint32_t base = (identity & 0x80) ? STACK_BASE_HIGH_THREADS : STACK_BASE;
  *ps_put_def_thread_stack_top(env) = base - STACK_SIZE * n;
  *ps_put_def_thread_local_mem(env) = get_spill_start_addr();
}

void env_ps_initialize(env_t env) {
  env_stack_initialize(env);
  *ps_put_def_pkt_mem_start(env) = get_gpb_start_addr() + PKT_BUF_HEAD_ROOM;
  *ps_put_def_global_uidb_reg_router_id(env) = RDC(COP_ROUTER_ID);
  *ps_put_def_global_uidb_reg(env) = RDC(COP_GLOBAL_CONFIG);
  *ps_put_def_thread_lock_counter(env) = 0;
  *ps_put_def_pc_histogram_enable(env) = 0;
  *ps_put_def_stats_rep_offset(env) = (npu_get_thread_id(env) & 3) * STATS_REPLICA_STRIDE;
  tlu_init_cache_policy(env);
}

std::uint32_t npu_get_thread_id(env_t) { return RDC(COP_THREAD_IDENTITY) & 0xFFFF; }

void tlu_init_cache_policy(env_t env) {
  const bool policy_thread = (RDC(COP_THREAD_IDENTITY) & 0x3F) == TLU_POLICY_THREAD;
  *ps_put_def_tlu_alloc_policy_for_read(env) = policy_thread ? 0 : TLU_POLICY_NO_ALLOCATE;
}

void internal_plat_per_packet_init(env_t env, boolean_t multipass) {
  common_flags_st* flags = ps_put_mod_common_flags(env);
  common_flags2_st* flags2 = ps_put_mod_common_flags2(env);
  if (!multipass) {
    std::memset(flags, 0, sizeof(*flags));
    std::memset(flags2, 0, sizeof(*flags2));
    ps_put_def_inject_flags(env)->bits = 0;
    *ps_put_def_vrf_id(env) = 0;
    *ps_put_def_pkt_start(env) = env_get_pkt_start(env);
    return;
  }
  const bool pwhe = cf2::rx_tx_adj_pwhe::get(*flags2) != 0;
  keep_only(flag_word(flags, 0), KEEP_W0_ALWAYS | (pwhe ? KEEP_W0_PWHE : 0));
  keep_only(flag_word(flags, 4), KEEP_W1_ALWAYS | (pwhe ? KEEP_W1_PWHE : KEEP_W1_NOT_PWHE));
  keep_only(flag_word(flags2, 0), KEEP_F2_ALWAYS | (pwhe ? KEEP_F2_PWHE : 0));
}

// ---- packet-state debug table ----

thread_local ps_dbg_entry ps_dbg[PS_FIELD_COUNT];

void ps_dbg_initialize(env_t env) {
  std::uint32_t i = 0;
#define PS_DMEM(name, type) ps_dbg[i++] = {#name, ps_field_addr_##name(env)};
#define PS_TLM(name, type) ps_dbg[i++] = {#name, ps_field_addr_##name(env)};
#include "ps_fields.def"
#undef PS_DMEM
#undef PS_TLM
  ps_dbg[i++] = {"common_flags2", ps_field_addr_common_flags2(env)};
  ps_dbg[i++] = {"common_flags", ps_field_addr_common_flags(env)};
}

void ps_initialize(env_t) {}

void ps_print_bytes(const char* prefix, const char* field, const void* addr, std::uint32_t size) {
#ifndef NDEBUG
  std::printf("%s%s:", prefix, field);
  for (std::uint32_t i = 0; i < size; ++i) std::printf(" %02x", static_cast<const std::uint8_t*>(addr)[i]);
  std::printf("\n");
#else
  (void)prefix;
  (void)field;
  (void)addr;
  (void)size;
#endif
}

// ---- pass poisoning ----

namespace {

constexpr std::uint8_t PASS_POISON = 0xA5;

// Saves the fields that outlive a pass, poisons data memory from offset 32 on,
// and puts the saved fields back. A recycled packet starts anew, so its pass
// parameters (in thread-local memory) are poisoned too.
void mark_memory(env_t env, bool poison_multipass_param) {
  const auto pkt_mem_start = *ps_get_pkt_mem_start(env);
  const auto pkt_start = *ps_get_pkt_start(env);
  const auto curr_pkt_len = *ps_get_curr_pkt_len(env);
  const auto l3_raw_hash = *ps_get_l3_raw_hash(env);
  const auto inject_flags = *ps_get_inject_flags(env);
  const auto thread_local_mem = *ps_get_thread_local_mem(env);
  const auto thread_stack_top = *ps_get_thread_stack_top(env);
  const auto stats_rep_offset = *ps_get_stats_rep_offset(env);
  const auto tlu_policy = *ps_get_tlu_alloc_policy_for_read(env);
  const auto lock_counter = *ps_get_thread_lock_counter(env);
  const auto global_reg = *ps_get_global_uidb_reg(env);
  const auto router_id = *ps_get_global_uidb_reg_router_id(env);
  const auto flags = *ps_get_common_flags(env);
  const auto flags2 = *ps_get_common_flags2(env);

  std::memset(env_get_dmem_start(env) + DMEM_DIST_HDR_SIZE, PASS_POISON, DMEM_SIZE - DMEM_DIST_HDR_SIZE);

  *ps_put_def_pkt_mem_start(env) = pkt_mem_start;
  *ps_put_def_pkt_start(env) = pkt_start;
  *ps_put_def_curr_pkt_len(env) = curr_pkt_len;
  *ps_put_def_l3_raw_hash(env) = l3_raw_hash;
  *ps_put_def_inject_flags(env) = inject_flags;
  *ps_put_def_thread_local_mem(env) = thread_local_mem;
  *ps_put_def_thread_stack_top(env) = thread_stack_top;
  *ps_put_def_stats_rep_offset(env) = stats_rep_offset;
  *ps_put_def_tlu_alloc_policy_for_read(env) = tlu_policy;
  *ps_put_def_thread_lock_counter(env) = lock_counter;
  *ps_put_def_global_uidb_reg(env) = global_reg;
  *ps_put_def_global_uidb_reg_router_id(env) = router_id;
  *ps_put_def_common_flags(env) = flags;
  *ps_put_def_common_flags2(env) = flags2;
  if (poison_multipass_param) std::memset(ps_put_def_multipass_param(env), PASS_POISON, sizeof(multipass_param_t));
}

}  // namespace

void npu_mark_multipass_memory(env_t env) { mark_memory(env, false); }
void npu_mark_recycle_memory(env_t env) { mark_memory(env, true); }
