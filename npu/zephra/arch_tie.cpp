#include "arch_tie.h"

// The hosted platform captures a dropped packet by telling the platform,
// which records the capture with the packet's outcome.
void capture_drop_packet_asm(std::uint32_t drop_reason) { power_dbg_drop_capture(drop_reason); }
