// Readable dump of frame bytes for test failure messages.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace pkt {

// Sixteen bytes per line, each line led by its offset, e.g.
// "0000  00 11 22 33 44 55 66 77  88 99 aa bb 08 00 45 00\n".
std::string hex_dump(std::span<const std::uint8_t> bytes);

}  // namespace pkt
