// The thread's entry and its packet loop.
#pragma once

#include <cstdint>

#include "dplane/infra/env_init.h"
#include "power.h"

// The same without the fill. (The program's own `main`; a hosted build keeps
// the name `main` for the host process.)
[[noreturn]] void npu_main();

env_t main_init(env_init_st* env_init);
void init_for_first_packet();
void send_initial_ctn(std::uint32_t req_loc, std::uint8_t* dmem_start);
[[noreturn]] void packet_loop_inline(env_t env);

void copy_dst_pkt_len_to_curr_pkt_len(env_t env);
void npu_init_hw_np_port(env_t env);
