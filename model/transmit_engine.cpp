#include "transmit_engine.h"

#include "fabric_delivery.h"
#include "line_delivery.h"

namespace model {

namespace {

constexpr std::uint32_t HANDLE_WORD_LOW_HALF = 0x0001;

// A service-loopback shim: 00 28 (or 00 29) and the frame's length in the
// low 14 bits of bytes 2 and 3.
bool has_loopback_shim(const std::vector<std::uint8_t>& frame) {
  if (frame.size() < SERVICE_LOOPBACK_SHIM_BYTES) return false;
  const std::uint32_t len = ((frame[2] << 8) | frame[3]) & 0x3FFF;
  return frame[0] == 0 && (frame[1] == 0x28 || frame[1] == 0x29) && len == frame.size();
}

bool to_fabric(const gather_request& req, const std::vector<std::uint8_t>& frame) {
  if ((req.command & GATHER_CMD_MASK) == GATHER_CMD_INGRESS) return (req.handle_word & GATHER_IGPB_LINE) == 0;
  return has_loopback_shim(frame);
}

}  // namespace

bool is_gather_request(std::uint32_t word0) {
  const std::uint32_t cmd = word0 & GATHER_CMD_MASK;
  return cmd == GATHER_CMD_INGRESS || cmd == GATHER_CMD_LOOPBACK;
}

gather_request read_gather_request(const dma_request& r) {
  const bool lock_word = (r.word(2) & 0xFFFF) == HANDLE_WORD_LOW_HALF;
  return lock_word ? gather_request{r.word(0), r.word(2), 3} : gather_request{r.word(0), r.word(1), 2};
}

namespace {

std::uint32_t piece_count(const dma_request& r, const gather_request& req) {
  return gather_piece_st::count::get(r.record_at<gather_piece_st>(4 * req.first_piece_word));
}

}  // namespace

std::vector<std::uint8_t> gather_frame(const dma_request& r, const gather_request& req, npu_thread& t) {
  const std::uint32_t count = piece_count(r, req);
  std::vector<std::uint8_t> frame;
  for (std::uint32_t i = 0; i < count && i < GATHER_MAX_PIECES; ++i) {
    const auto& word = r.record_at<gather_piece_st>(4 * (req.first_piece_word + i));
    const std::uint32_t len = gather_piece_st::length::get(word);
    const std::uint32_t offset = gather_piece_st::offset::get(word);
    if (offset + len > t.pkt_bufs[t.current_buf].size()) return {};
    const std::uint8_t* piece = t.pkt_buf() + offset;
    frame.insert(frame.end(), piece, piece + len);
  }
  return frame;
}

void transmit_gather(dma_request& r) {
  npu_thread& t = r.thread();
  const gather_request req = read_gather_request(r);
  sent_frame frame;
  frame.bytes = gather_frame(r, req, t);
  const std::uint32_t count = piece_count(r, req);
  if (count == 0 || frame.bytes.empty()) return r.breach("gather request with no piece, or a piece beyond the buffer");
  if (to_fabric(req, frame.bytes)) {
    frame.to = frame_destination::fabric;
    if ((req.command & GATHER_CMD_MASK) == GATHER_CMD_LOOPBACK) {
      frame.bytes.erase(frame.bytes.begin(), frame.bytes.begin() + SERVICE_LOOPBACK_SHIM_BYTES);
    }
    deliver_to_fabric(r.owner(), frame, t.current.note);
  } else {
    const bool from_ingress_buffer = (req.handle_word & GATHER_IGPB_LINE) != 0;
    const line_delivery to_line = deliver_to_line(r.owner(), from_ingress_buffer, frame, t.current.note);
    if (to_line == line_delivery::short_frame) return r.breach("line frame shorter than the headers ahead of it");
    if (to_line == line_delivery::no_port) return;
  }
  t.current.sent.push_back(std::move(frame));
}

}  // namespace model
