#include "pcap_input.h"

#include <algorithm>

#include "model/dist_hdr_builder.h"
#include "model/npu.h"
#include "pktlib/pcap_file.h"

namespace lcsim {

namespace {

using L = dist_hdr_line_st;

// The distribution header's length field is 14 bits wide, and the packet
// buffer holds no more than the model's largest packet.
constexpr std::size_t MAX_FRAME_BYTES = std::min<std::size_t>((1u << L::pktlen::width) - 1, model::MAX_PACKET_BYTES);

model::dist_hdr_builder line_header(std::size_t length, std::uint32_t port) {
  return model::dist_hdr_builder::format(DST_FORMAT_LINE)
      .set<L::pktlen>(static_cast<std::uint32_t>(length))
      .set<L::logical_port>(port);
}

}  // namespace

scenario scenario_from_pcap(const std::string& path, std::uint32_t port) {
  scenario sc;
  std::size_t number = 0;
  for (pkt::pcap_record& record : pkt::read_pcap(path)) {
    ++number;
    const std::size_t length = record.frame.size();
    if (length == 0 || length > MAX_FRAME_BYTES) {
      throw pkt::pcap_error("pcap file '" + path + "': record " + std::to_string(number) + ": a frame of " +
                            std::to_string(length) + " bytes; a packet holds 1 to " +
                            std::to_string(MAX_FRAME_BYTES));
    }
    scenario_packet p;
    p.description = "pcap record " + std::to_string(number) + ", " + std::to_string(length) + " bytes, line port " +
                    std::to_string(port);
    p.timestamp = record.timestamp;
    p.packet.dist_hdr = line_header(length, port).bytes();
    p.packet.bytes = std::move(record.frame);
    sc.packets.push_back(std::move(p));
  }
  return sc;
}

}  // namespace lcsim
