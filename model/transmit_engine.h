// The FLB's transmit side: a gather request (resource 44) names up to three
// pieces of the packet buffer; the engine joins them into one frame and tells
// a fabric send from a line send. A fabric frame goes by its VQI to the NPU
// of the chassis that serves it and arrives there with a fabric distribution
// header; a line frame stays on the packet's outcome.
#pragma once

#include <cstdint>
#include <vector>

#include "dma_request.h"

namespace model {

inline constexpr std::uint32_t GATHER_CMD_MASK = 0xFFFF;
inline constexpr std::uint32_t GATHER_INGRESS = 0x0F13;
inline constexpr std::uint32_t GATHER_LOOPBACK = 0x0F12;
inline constexpr std::uint32_t GATHER_KEEP_BIT = 0x800000;
inline constexpr std::uint32_t GATHER_IGPB_LINE_BIT = 0x40000000;
inline constexpr std::uint32_t SERVICE_LOOPBACK_SHIM_BYTES = 7;

bool is_gather_request(std::uint32_t word0);

// The frame that the pieces of a gather request make, in order.
std::vector<std::uint8_t> gather_frame(const dma_request& r, npu_thread& t);

// Sends the frame of the gather request in r: records it on the held
// packet's outcome and, for the fabric, queues it on the destination NPU.
void transmit_gather(dma_request& r);

}  // namespace model
