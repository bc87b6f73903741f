#include "line_setup.h"

#include <stdexcept>
#include <string>

namespace lcsim {

namespace {
// The interface handles the tool gives a port and the port's interface.
constexpr std::uint32_t IF_HANDLE_BASE = 0x1000;
std::uint32_t port_if_handle(std::uint32_t port) { return IF_HANDLE_BASE + 2 * port; }
std::uint32_t interface_if_handle(std::uint32_t port) { return port_if_handle(port) + 1; }
}  // namespace

void require_accepted(ctrl::error e, const std::string& what) {
  if (e != ctrl::error::none) {
    throw std::runtime_error("the control side refused " + what + " (error " + std::to_string(static_cast<int>(e)) +
                             ")");
  }
}

ctrl::l3_interface routed_interface() {
  ctrl::l3_interface l3;
  l3.ipv4 = l3.ipv6 = l3.mpls = true;
  return l3;
}

std::uint16_t set_up_line_port(ctrl::npu_tables& tables, std::uint32_t port, const pkt::mac_addr& router_mac,
                               ctrl::l3_interface cfg) {
  ctrl::line_port p;
  p.port = port;
  p.mac = router_mac;
  p.if_handle = port_if_handle(port);
  require_accepted(tables.ifs().add_port(p), "the line port");
  cfg.if_handle = interface_if_handle(port);
  const ctrl::interface_added added = tables.ifs().add_physical_port(port, cfg);
  require_accepted(added.err, "the port's interface");
  return added.uidb_index;
}

}  // namespace lcsim
