// A line port of the tool, set up through the control side with its own
// routed interface, so that the parser places its frames.
#pragma once

#include <cstdint>
#include <string>

#include "ctrl/npu_tables.h"
#include "pktlib/addresses.h"

namespace lcsim {

// Throws std::runtime_error naming `what` when the control side refused it.
void require_accepted(ctrl::error e, const std::string& what);

// The port's interface routing IPv4, IPv6 and MPLS.
ctrl::l3_interface routed_interface();

// Sets up `port` and its interface with `cfg` (the tool gives the handles)
// and returns the interface's UIDB index. Throws std::runtime_error naming
// what the control side refused.
std::uint16_t set_up_line_port(ctrl::npu_tables& tables, std::uint32_t port, const pkt::mac_addr& router_mac,
                               ctrl::l3_interface cfg);

}  // namespace lcsim
