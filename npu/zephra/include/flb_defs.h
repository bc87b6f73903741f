// The FLB's requests (resource 44): packet end and next packet, flow-lock
// conversion, and the gather request that sends a packet's pieces.
#pragma once

#include <cstdint>

#include "be_types.h"

// Word 0 of a packet-ending request. The first request for a packet ends
// nothing; a free gives the packet up, by the ingress bit of its header.
inline constexpr std::uint32_t FLB_CMD_FIRST_PACKET = 0x00000020;
inline constexpr std::uint32_t FLB_CMD_FREE_INGRESS = 0x00000C14;
inline constexpr std::uint32_t FLB_CMD_FREE_EGRESS = 0x00000C15;
// Size of a packet-ending response: the next packet's 128-byte header area.
inline constexpr std::uint32_t PKT_END_RESPONSE_BYTES = 128;

// Flow-lock conversion: the packet moves to the lock of word 1; the READ16
// form also reads 16 bytes through the physical memory request (without byte
// mask, with response) of words 2 and 3.
inline constexpr std::uint32_t FLB_CMD_FLOWLOCK_CONVERT = 0x00000810;
inline constexpr std::uint32_t FLB_CMD_FLOWLOCK_CONVERT_READ16 = 0x00000916;

// Gather request, big-endian words:
//   0  command: 0x00000F13 ingress gather, 0x00000F12 service loopback
//   1  0, or the flow lock the packet moves to in a keep send
//   2  gpm_pkt_handle in bits 28..16, bit 0 set, bit 31 for multicast,
//      bit 30 for a packet still in the ingress buffer, bit 23 for a keep send
//   3+ one word per piece: piece count in the top 2 bits of the first,
//      length in bits 29..16, offset from the packet buffer start below
// The v3 form leaves word 1 out: its pieces start at word 2.
inline constexpr std::uint32_t GATHER_CMD_MASK = 0xFFFF;
inline constexpr std::uint32_t GATHER_CMD_INGRESS = 0x00000F13;
inline constexpr std::uint32_t GATHER_CMD_LOOPBACK = 0x00000F12;
inline constexpr std::uint32_t GATHER_HANDLE_VALID = 0x1;
inline constexpr std::uint32_t GATHER_MCAST = 0x80000000;
inline constexpr std::uint32_t GATHER_IGPB_LINE = 0x40000000;
inline constexpr std::uint32_t GATHER_KEEP = 0x800000;
// A keep send with word 1 also converts the packet to that flow lock.
inline constexpr std::uint32_t GATHER_KEEP_REQ_BYTES = 24;

// A piece word; the first piece's count says how many follow it, itself included.
struct gather_piece_st {
  std::uint8_t bytes[4];
  using word = be_bits<0, 0, 32>;
  using count = be_word_bits<0, 30, 2>;
  using length = be_word_bits<0, 16, 14>;
  using offset = be_word_bits<0, 0, 16>;  // from the packet buffer start
};
static_assert(sizeof(gather_piece_st) == 4);
inline constexpr std::uint32_t GATHER_MAX_PIECES = 3;
