#include "main_loop.h"

#include "arch_tie.h"
#include "dma_common.h"
#include "dplane/infra/ps.h"
#include "pkt_rx.h"
#include "platform/shared/handlers.h"
#include "platform/varn/entry_points.h"
#include "platform/varn/rx_dispatch.h"

namespace {
constexpr std::uint32_t DMEM_FILL_WORD = 0xDEADBEEF;
constexpr std::uint32_t FIRST_REQUEST_LOC = 0x20;
constexpr std::uint16_t HW_NP_PORT_UNKNOWN = 255;
}  // namespace

[[noreturn]] void power_fwcore_main() {
  be_u32* words = reinterpret_cast<be_u32*>(get_dmem_start_addr());
  for (std::uint32_t i = 0; i < DMEM_SIZE / 4; ++i) words[i] = DMEM_FILL_WORD;
  npu_main();
}

[[noreturn]] void npu_main() {
  env_init_st init;
  packet_loop_inline(main_init(&init));
}

env_t main_init(env_init_st* env_init) {
  env_t env = env_initialize(env_init);
  init_ing_entry_points(env);
  init_nph_entry_points(env);
  init_for_first_packet();
  return env;
}

void init_for_first_packet() { send_initial_ctn(FIRST_REQUEST_LOC, get_dmem_start_addr()); }

// The first request for a packet: returns when the first packet's header
// stands in data memory.
void send_initial_ctn(std::uint32_t req_loc, std::uint8_t* dmem_start) {
  reinterpret_cast<be_u32*>(dmem_start + req_loc)->set(FLB_CMD_FIRST_PACKET);
  std::uint32_t cmd = 0;
  mk_dma_reg(RES_FLB, PKT_END_RESPONSE_BYTES, 0, 4, req_loc, &cmd);
  WDC(cmd, COP_DMA_COMMAND);
}

void copy_dst_pkt_len_to_curr_pkt_len(env_t env) {
  *ps_put_def_curr_pkt_len(env) = static_cast<std::uint16_t>(get_orig_pkt_len(env));
}

void npu_init_hw_np_port(env_t env) { *ps_put_def_hw_np_port(env) = HW_NP_PORT_UNKNOWN; }

[[noreturn]] void packet_loop_inline(env_t env) {
  for (;;) {
    copy_dst_pkt_len_to_curr_pkt_len(env);
    *ps_put_def_pkt_mem_start(env) = get_gpb_start_addr() + PKT_BUF_HEAD_ROOM;
    internal_plat_per_packet_init(env, FALSE);
    npu_init_hw_np_port(env);
    if (!plat_rx_process(env)) continue;
    while (common_flags_st::do_multipass::get(*ps_get_common_flags(env))) multipass_process(env);
  }
}
