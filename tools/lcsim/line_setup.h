// The line port of --in: set up through the control side as a routed port
// with IPv4, IPv6 and MPLS on, so that the parser places its frames.
#pragma once

#include <cstdint>

#include "model/npu.h"
#include "pktlib/addresses.h"

namespace lcsim {

// Throws std::runtime_error naming what the control side refused.
void set_up_line_port(model::npu& n, std::uint32_t port, const pkt::mac_addr& router_mac);

}  // namespace lcsim
