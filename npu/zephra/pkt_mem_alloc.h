// Head space ahead of the packet: up to three 128-byte blocks below
// pkt_mem_start, granted by the buffer engine (GPB) on demand, the nearest
// block first. gpm_allocated in common_flags counts the blocks held.
#pragma once

#include <cstdint>

#include "be_types.h"
#include "fwc_types.h"

inline constexpr std::uint32_t GPM_BLOCK_BYTES = 128;
inline constexpr std::uint32_t GPM_MAX_BLOCKS = 3;
inline constexpr std::uint32_t GPM_MAX_HEAD_BYTES = GPM_BLOCK_BYTES * GPM_MAX_BLOCKS;
// Blocks count from the start of the packet buffer: the one just below
// pkt_mem_start is this one, the next one down one less.
inline constexpr std::uint32_t GPB_FIRST_HEAD_SEGMENT = 31;

// Request and response of a head allocation, in the cell at gpb_req_loc.
inline constexpr std::uint32_t GPB_ALLOC_CELL = 0x210;
inline constexpr std::uint32_t GPB_CMD_ALLOC_INGRESS = 0xC0000304;
inline constexpr std::uint32_t GPB_CMD_ALLOC_EGRESS = 0xC8000304;
inline constexpr std::uint32_t GPB_RESOURCE_INGRESS = 0x30;
inline constexpr std::uint32_t GPB_RESOURCE_EGRESS = 0x34;
// The low two bits of the packet handle pick one of four engines, this far apart.
inline constexpr std::uint32_t GPB_RESOURCE_STRIDE = 128;

struct gpb_alloc_request_st {
  std::uint8_t bytes[8];
  using cmd = be_bits<0, 0, 32>;
  using packet_handle = be_bits<4, 0, 16>;
  using virtual_segment = be_bits<6, 0, 9>;
};
static_assert(sizeof(gpb_alloc_request_st) == 8);

// The answer lands over the request: ack, 8 bytes in; 0 means granted.
struct gpb_alloc_response_ {
  std::uint8_t bytes[16];
  using ack = be_bits<8, 0, 32>;
};
static_assert(sizeof(gpb_alloc_response_) == 16);

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
