// The TLU: reads of table memory by address or by paged record through its
// cache, the long commands it carries out itself (address translation, plain
// and paged; the modulus command and its reads), and the cache invalidate.
// The long commands that forward a memory operation belong to the memory
// controller (dma_engine.cpp).
#pragma once

#include <cstdint>
#include <span>

#include "dma_request.h"

namespace model {

// Resources 376..383: one word, an address or a paged record.
void execute_tlu_read(dma_request& r);
// Resource 336: word 0 = m40ah << 24 | 2, word 1 = m40al.
void execute_tlu_invalidate(dma_request& r);
// Whether word 0 names a long command that the TLU carries out itself.
bool is_tlu_command(std::uint32_t word0);
// Translation or modulus on resource 120, 255 or 504.
void execute_tlu_command(dma_request& r);

// A read of out.size() bytes at a virtual address, through the cache when
// `allocate` (the request templates' reads).
void tlu_read_virtual(npu& n, std::uint32_t vaddr, std::span<std::uint8_t> out, bool allocate);

}  // namespace model
