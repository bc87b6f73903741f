// A line port with its own routed interface, set up through the control
// side, for tests that need an interface's records and not its frames.
#pragma once

#include <cstdint>
#include <stdexcept>

#include "ctrl/npu_tables.h"

namespace testkit {

// The port's handle is 0x100 + port; the interface keeps cfg's handle, or
// gets 0x200 + port when cfg has none. Throws when the control side refuses.
inline ctrl::interface_added add_routed_port(ctrl::npu_tables& tables, std::uint32_t port,
                                             ctrl::l3_interface cfg = {}) {
  ctrl::line_port p;
  p.port = port;
  p.if_handle = 0x100 + port;
  if (tables.ifs().add_port(p) != ctrl::error::none) throw std::invalid_argument("line port refused");
  if (cfg.if_handle == 0) cfg.if_handle = 0x200 + port;
  const ctrl::interface_added added = tables.ifs().add_physical_port(port, cfg);
  if (added.err != ctrl::error::none) throw std::invalid_argument("interface refused");
  return added;
}

}  // namespace testkit
