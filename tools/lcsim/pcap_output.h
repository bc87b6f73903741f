// What left the NPUs, as pcap files: one per destination.
#pragma once

#include <string>
#include <vector>

#include "report.h"

namespace lcsim {

// Writes fabric.pcap and host.pcap, and line-<port>.pcap for each line port
// that frames left on, into dir (created if missing). Each frame carries the
// timestamp of the packet it left with. Throws std::runtime_error with the
// path on failure; a file is either written whole or not at all.
void write_outputs(const std::string& dir, const std::vector<packet_result>& results);

}  // namespace lcsim
