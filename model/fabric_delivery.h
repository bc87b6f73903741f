// The fabric of a chassis: a unicast frame goes to the NPU that serves its
// VQI, a multicast frame (no fabric port in its header) to a copy on every
// NPU of its group. Each arrives with a fabric distribution header.
#pragma once

#include <string>

#include "npu.h"

namespace model {

// The 24-bit fabric group of a multicast header: its low 12 bits in
// dc3_fgid_or_sfp, the rest in ext_fgid, which every multicast type carries.
std::uint32_t fabric_header_fgid(const std::uint8_t* fab);

// Queues the frame on its destination NPUs and sets frame.port to its VQI or
// its group. A destination the chassis does not map leaves a note.
void deliver_to_fabric(npu& from, sent_frame& frame, std::string& note);

}  // namespace model
