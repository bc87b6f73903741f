#include "pcap_input.h"

#include "model/npu.h"
#include "pktlib/pcap_file.h"

namespace lcsim {

scenario scenario_from_pcap(const std::string& path, std::uint32_t port) {
  scenario sc;
  std::size_t number = 0;
  for (pkt::pcap_record& record : pkt::read_pcap(path)) {
    ++number;
    const std::size_t length = record.frame.size();
    if (length == 0 || length > model::MAX_LINE_FRAME_BYTES) {
      throw pkt::pcap_error("pcap file '" + path + "': record " + std::to_string(number) + ": a frame of " +
                            std::to_string(length) + " bytes; a packet holds 1 to " +
                            std::to_string(model::MAX_LINE_FRAME_BYTES));
    }
    scenario_packet p;
    p.description = "pcap record " + std::to_string(number) + ", " + std::to_string(length) + " bytes, line port " +
                    std::to_string(port);
    p.timestamp = record.timestamp;
    p.line_port = port;
    p.packet.bytes = std::move(record.frame);
    sc.packets.push_back(std::move(p));
  }
  return sc;
}

}  // namespace lcsim
