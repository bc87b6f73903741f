// Turns the builder's layer list into frame bytes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "pktlib/layers.h"

namespace pkt {

std::vector<std::uint8_t> assemble_frame(std::span<const layer> layers);

}  // namespace pkt
