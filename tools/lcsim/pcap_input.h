// Packets from a pcap file, each a frame arriving on one line port.
#pragma once

#include <cstdint>
#include <string>

#include "scenario.h"

namespace lcsim {

// The line ports a distribution header can name (12 bits).
inline constexpr std::uint32_t MAX_LINE_PORT = 4095;

// Every frame of the file as a line frame from `port`, for the parser. Throws
// pkt::pcap_error naming the file and record for a file that cannot be read
// or a frame that no packet buffer holds.
scenario scenario_from_pcap(const std::string& path, std::uint32_t port);

}  // namespace lcsim
