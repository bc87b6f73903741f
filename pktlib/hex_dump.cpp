#include "pktlib/hex_dump.h"

#include <cstdio>

namespace pkt {

std::string hex_dump(std::span<const std::uint8_t> bytes) {
  std::string out;
  char cell[24];
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % 16 == 0) {
      std::snprintf(cell, sizeof cell, "%04zx ", i);
      out += cell;
    }
    std::snprintf(cell, sizeof cell, i % 16 == 8 ? "  %02x" : " %02x", bytes[i]);
    out += cell;
    if (i % 16 == 15 || i + 1 == bytes.size()) out += '\n';
  }
  return out;
}

}  // namespace pkt
