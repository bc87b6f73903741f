// The statistics engine: every request that reaches a counter, whether by a
// request template or by a memory operation on statistics memory.
#pragma once

#include <cstdint>

#include "npu.h"

namespace model {

// Template 10: one more for the global counter at `address`.
void stats_count_global(npu_thread& t, std::uint32_t address);
// Template 8: one packet of `bytes` bytes for the entry at `address`.
void stats_add(npu_thread& t, std::uint32_t address, std::uint32_t bytes);
// A memory operation (word 0's opcode) on statistics memory: increments
// count one, the add-and-increment counts one packet of `operand` bytes, the
// reads answer with the count (a global counter: 8 bytes; an entry: the low
// 32 bits of packets, then of bytes), read-and-clear clears it too.
void stats_memory_op(npu_thread& t, std::uint32_t opcode, paddr_t addr, std::uint32_t operand, std::uint8_t* resp,
                     std::uint32_t resp_bytes);

}  // namespace model
