#include "arch_tie.h"

#include <atomic>
#include <cstdio>

// The hosted platform cannot capture a dropped packet. It says so once, not
// for every drop, so that a drop storm does not turn into a print storm, and
// tells the platform, which may keep the packet.
void capture_drop_packet_asm(std::uint32_t drop_reason) {
  static std::atomic<bool> said{false};
  if (!said.exchange(true)) std::fprintf(stderr, "ERROR: function '%s' not implemented!\n", "capture_drop_packet_asm");
  power_dbg_drop_capture(drop_reason);
}
