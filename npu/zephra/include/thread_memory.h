// The memories of an NPU thread and where a packet lands in its buffer: the
// sizes the hardware gives every thread, which the program lays out and the
// NPU fills.
#pragma once

#include <cstdint>

// Data memory: the distribution header of the current packet first, then the
// request and result cells and the thread's own state.
inline constexpr std::uint32_t DMEM_SIZE = 2048;
inline constexpr std::uint32_t DMEM_DIST_HDR_SIZE = 32;
// Thread-local memory, behind the packet buffer.
inline constexpr std::uint32_t TLM_SIZE = 4096;

// Packet buffer: packet memory starts 4096 bytes into the buffer; the packet
// arrives 160 bytes into packet memory.
inline constexpr std::uint32_t PKT_BUF_HEAD_ROOM = 4096;
inline constexpr std::uint32_t PKT_START_OFFSET = 160;
