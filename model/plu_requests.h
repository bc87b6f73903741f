// PLU requests, by DMA to resource 200 or through the templates of table 1
// (entry 11 IPv4, 12 IPv6): the key's code picks the search, whose answer
// fills the response. The MAC codes and the bucket commands belong to the
// MAC table, which the model does not serve.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "dma_request.h"

namespace model {

// Searches `key` (code first) on thread t's NPU and writes the answer to
// `resp`; returns what is wrong with the request, or an empty string.
std::string serve_plu_key(npu_thread& t, std::span<const std::uint8_t> key, std::span<std::uint8_t> resp);

void execute_plu(dma_request& r);

}  // namespace model
