// A frame to a line port leaves behind the line header (14 bytes), and from
// the ingress buffer memory behind the 2-byte QSM header ahead of that. The
// QSM header names the port (byte 1, hw_np_port); otherwise the line
// header's queue_id does, through the NPU's queue-to-port map.
#pragma once

#include <string>

#include "npu.h"

namespace model {

inline constexpr std::uint32_t QSM_HEADER_BYTES = 2;

enum class line_delivery {
  delivered,    // frame.bytes is the Ethernet frame, frame.port its port
  no_port,      // the queue maps to no port: a note says so, the frame is lost
  short_frame,  // the frame is shorter than its headers
};

// Takes the headers off frame.bytes, leaving the Ethernet frame, and sets
// frame.port.
line_delivery deliver_to_line(npu& from, bool from_ingress_buffer, sent_frame& frame, std::string& note);

}  // namespace model
