#include "line_delivery.h"

#include "line_hdr.h"

namespace model {

line_delivery deliver_to_line(npu& from, bool from_ingress_buffer, sent_frame& frame, std::string& note) {
  frame.to = frame_destination::line;
  const std::size_t qsm_bytes = from_ingress_buffer ? QSM_HEADER_BYTES : 0;
  if (frame.bytes.size() < qsm_bytes + LINE_HDR_BYTES) return line_delivery::short_frame;
  if (from_ingress_buffer) {
    frame.port = frame.bytes[1];
  } else {
    const auto& line = *reinterpret_cast<const line_hdr_st*>(frame.bytes.data());
    const std::uint32_t queue = line_hdr_st::queue_id::get(line);
    const auto port = from.port_of_queue(queue);
    if (!port) {
      note += "queue " + std::to_string(queue) + " maps to no line port; ";
      return line_delivery::no_port;
    }
    frame.port = *port;
  }
  frame.bytes.erase(frame.bytes.begin(), frame.bytes.begin() + static_cast<std::ptrdiff_t>(qsm_bytes + LINE_HDR_BYTES));
  return line_delivery::delivered;
}

}  // namespace model
