// The FLB's transmit side: a gather request (resource 44) names up to three
// pieces of the packet buffer; the engine joins them into one frame and tells
// a fabric send from a line send. A fabric frame goes to the NPUs of the
// chassis that its header names (fabric_delivery); a line frame gets its port
// from the headers ahead of it (line_delivery).
#pragma once

#include <cstdint>
#include <vector>

#include "dma_request.h"
#include "flb_defs.h"

namespace model {

inline constexpr std::uint32_t SERVICE_LOOPBACK_SHIM_BYTES = 7;

bool is_gather_request(std::uint32_t word0);

// The words of a gather request that the engine reads. Every request with
// a word 1 (flow lock) has 0x0001 as the low half of its handle word, word 2;
// in the form without word 1, word 2 is the first piece, whose low half is
// an offset in the packet buffer, never 1: a packet's bytes lie thousands of
// bytes into its buffer.
struct gather_request {
  std::uint32_t command = 0;
  std::uint32_t handle_word = 0;
  std::uint32_t first_piece_word = 0;
};
gather_request read_gather_request(const dma_request& r);

// The frame that the pieces of a gather request make, in order.
std::vector<std::uint8_t> gather_frame(const dma_request& r, const gather_request& req, npu_thread& t);

// Sends the frame of the gather request in r: records it on the held
// packet's outcome and, for the fabric, queues it on the destination NPUs.
void transmit_gather(dma_request& r);

}  // namespace model
