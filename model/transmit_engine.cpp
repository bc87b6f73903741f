#include "transmit_engine.h"

#include <string>

#include "chassis.h"
#include "dist_hdr_builder.h"
#include "platform/varn/fab_hdr.h"

namespace model {

namespace {

constexpr std::uint32_t FIRST_PIECE_WORD = 3;
constexpr std::uint32_t MAX_PIECES = 3;
constexpr std::uint32_t VQI_MASK = 0x7FF;

// A service-loopback shim: 00 28 (or 00 29) and the frame's length in the
// low 14 bits of bytes 2 and 3.
bool has_loopback_shim(const std::vector<std::uint8_t>& frame) {
  if (frame.size() < SERVICE_LOOPBACK_SHIM_BYTES) return false;
  const std::uint32_t len = ((frame[2] << 8) | frame[3]) & 0x3FFF;
  return frame[0] == 0 && (frame[1] == 0x28 || frame[1] == 0x29) && len == frame.size();
}

bool to_fabric(std::uint32_t word0, std::uint32_t word2, const std::vector<std::uint8_t>& frame) {
  if ((word0 & GATHER_CMD_MASK) == GATHER_INGRESS) return (word2 & GATHER_IGPB_LINE_BIT) == 0;
  return has_loopback_shim(frame);
}

void deliver_to_fabric(npu& from, sent_frame& frame, std::string& note) {
  const auto& hdr = *reinterpret_cast<const dc3_nph_st*>(frame.bytes.data());
  if (frame.bytes.size() < sizeof(dc3_nph_st) || !dc3_nph_st::dc3_sfp_valid::get(hdr)) {
    note += "fabric frame to a group: no replication in the fabric; ";
    return;
  }
  frame.port = dc3_nph_st::dc3_fgid_or_sfp::get(hdr) & VQI_MASK;
  const auto dest = from.owner_chassis().npu_of_vqi(frame.port);
  if (!dest) {
    note += "VQI " + std::to_string(frame.port) + " maps to no NPU; ";
    return;
  }
  arriving_packet pkt;
  pkt.dist_hdr = dist_hdr_builder::fabric()
                     .set<dist_hdr_fabric_st::pktlen>(static_cast<std::uint32_t>(frame.bytes.size()))
                     .bytes();
  pkt.bytes = frame.bytes;
  from.owner_chassis().at(*dest).enqueue(std::move(pkt));
}

}  // namespace

bool is_gather_request(std::uint32_t word0) {
  const std::uint32_t cmd = word0 & GATHER_CMD_MASK;
  return cmd == GATHER_INGRESS || cmd == GATHER_LOOPBACK;
}

std::vector<std::uint8_t> gather_frame(const dma_request& r, npu_thread& t) {
  const std::uint32_t count = r.word(FIRST_PIECE_WORD) >> 30;
  std::vector<std::uint8_t> frame;
  for (std::uint32_t i = 0; i < count && i < MAX_PIECES; ++i) {
    const std::uint32_t w = r.word(FIRST_PIECE_WORD + i);
    const std::uint32_t len = (w >> 16) & 0x3FFF;
    const std::uint32_t offset = w & 0xFFFF;
    if (offset + len > t.pkt_bufs[t.current_buf].size()) return {};
    const std::uint8_t* piece = t.pkt_buf() + offset;
    frame.insert(frame.end(), piece, piece + len);
  }
  return frame;
}

void transmit_gather(dma_request& r) {
  npu_thread& t = r.thread();
  sent_frame frame;
  frame.bytes = gather_frame(r, t);
  const std::uint32_t count = r.word(FIRST_PIECE_WORD) >> 30;
  if (count == 0 || frame.bytes.empty()) return r.breach("gather request with no piece, or a piece beyond the buffer");
  if (to_fabric(r.word(0), r.word(2), frame.bytes)) {
    frame.to = frame_destination::fabric;
    if ((r.word(0) & GATHER_CMD_MASK) == GATHER_LOOPBACK) {
      frame.bytes.erase(frame.bytes.begin(), frame.bytes.begin() + SERVICE_LOOPBACK_SHIM_BYTES);
    }
    deliver_to_fabric(r.owner(), frame, t.current.note);
  }
  t.current.sent.push_back(std::move(frame));
}

}  // namespace model
