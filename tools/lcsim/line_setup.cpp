#include "line_setup.h"

#include <stdexcept>
#include <string>

#include "ctrl/hash_tables.h"
#include "ctrl/interfaces.h"

namespace lcsim {

namespace {
// The interface handle the tool gives its port and the port's interface.
constexpr std::uint32_t PORT_IF_HANDLE = 0x1000;
constexpr std::uint32_t INTERFACE_IF_HANDLE = 0x1001;

void check(ctrl::error e, const char* what) {
  if (e != ctrl::error::none) {
    throw std::runtime_error(std::string("the control side refused ") + what + " (error " +
                             std::to_string(static_cast<int>(e)) + ")");
  }
}
}  // namespace

void set_up_line_port(model::npu& n, std::uint32_t port, const pkt::mac_addr& router_mac) {
  ctrl::hash_tables hashes(n);
  ctrl::interfaces ifs(n, hashes);
  ctrl::line_port p;
  p.port = port;
  p.mac = router_mac;
  p.if_handle = PORT_IF_HANDLE;
  check(ifs.add_port(p), "the line port");
  ctrl::l3_interface l3;
  l3.if_handle = INTERFACE_IF_HANDLE;
  l3.ipv4 = l3.ipv6 = l3.mpls = true;
  check(ifs.add_physical_port(port, l3).err, "the port's interface");
}

}  // namespace lcsim
