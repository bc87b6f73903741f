// Head space ahead of the packet: up to three 128-byte blocks below
// pkt_mem_start, granted by the buffer engine (GPB) on demand, the nearest
// block first. gpm_allocated in common_flags counts the blocks held.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "gpb_defs.h"

inline constexpr std::uint32_t GPM_MAX_HEAD_BYTES = GPM_BLOCK_BYTES * GPM_MAX_BLOCKS;
// Request and response of a head allocation, in the cell at gpb_req_loc.
inline constexpr std::uint32_t GPB_ALLOC_CELL = 0x210;

enum packet_mem_feature : std::uint32_t {
  PACKET_MEM_INVALID = 0,
  PACKET_MEM_PUNT = 1,
  PACKET_MEM_LI = 2,
  PACKET_MEM_RECYCLE = 3,
  PACKET_MEM_TBPG = 4,
};

unsigned char* npu_alloc_packet_mem_start(env_t env);
unsigned char* npu_alloc_packet_mem_end(env_t env);

// Head space of size bytes, ending at pkt_mem_start; NULL if size is 0 or
// above 384, or if the buffer engine refuses a block (the blocks granted so
// far stay). The caller drops or punts.
unsigned char* npu_alloc_packet_mem(env_t env, std::uint32_t size);
// The fixed area of a feature in head space; a bad request or a refusal
// drops the packet and gives NULL.
unsigned char* packet_mem_alloc(env_t env, packet_mem_feature feature, std::uint32_t size);
void gpb_alloc_head(env_t env, std::uint32_t packet_handle, std::uint32_t virtual_segment, std::uint32_t req_loc,
                    std::uint32_t resp_loc);
