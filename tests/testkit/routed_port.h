// Line ports set up through the control side: a port alone, or a port with
// its own routed interface for tests that need an interface's records and
// not its frames.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>

#include "ctrl/npu_tables.h"

namespace testkit {

// A line port whose handle is 0x100 + port. Throws when the control side
// refuses it.
inline void add_line_port(ctrl::npu_tables& tables, std::uint32_t port, ctrl::port_bits bits = {},
                          std::uint32_t input_queue = 0, const std::array<std::uint8_t, 6>& router_mac = {}) {
  const ctrl::line_port p{port, router_mac, input_queue, 0x100 + port, bits};
  if (tables.ifs().add_port(p) != ctrl::error::none) throw std::invalid_argument("line port refused");
}

// The port with its own routed interface, which keeps cfg's handle, or gets
// 0x200 + port when cfg has none. Throws when the control side refuses.
inline ctrl::interface_added add_routed_port(ctrl::npu_tables& tables, std::uint32_t port,
                                             ctrl::l3_interface cfg = {}) {
  add_line_port(tables, port);
  if (cfg.if_handle == 0) cfg.if_handle = 0x200 + port;
  const ctrl::interface_added added = tables.ifs().add_physical_port(port, cfg);
  if (added.err != ctrl::error::none) throw std::invalid_argument("interface refused");
  return added;
}

}  // namespace testkit
