// The buffer engine's head allocation: up to three 128-byte blocks of head
// space below pkt_mem_start, one request per block.
#pragma once

#include <cstdint>

#include "be_types.h"

inline constexpr std::uint32_t GPM_BLOCK_BYTES = 128;
inline constexpr std::uint32_t GPM_MAX_BLOCKS = 3;
// Blocks count from the start of the packet buffer: the one just below
// pkt_mem_start is this one, the next one down one less.
inline constexpr std::uint32_t GPB_FIRST_HEAD_SEGMENT = 31;

inline constexpr std::uint32_t GPB_CMD_ALLOC_INGRESS = 0xC0000304;
inline constexpr std::uint32_t GPB_CMD_ALLOC_EGRESS = 0xC8000304;
inline constexpr std::uint32_t GPB_RESOURCE_INGRESS = 0x30;
inline constexpr std::uint32_t GPB_RESOURCE_EGRESS = 0x34;
// The low two bits of the packet handle pick one of four engines, this far apart.
inline constexpr std::uint32_t GPB_RESOURCE_STRIDE = 128;
inline constexpr std::uint32_t GPB_ENGINES = 4;

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
inline constexpr std::uint32_t GPB_ACK_GRANTED = 0;
inline constexpr std::uint32_t GPB_ACK_REFUSED = 1;
