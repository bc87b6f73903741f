#include "pktlib/checksum.h"

namespace pkt {

std::uint16_t internet_checksum(std::span<const std::uint8_t> bytes) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const std::uint32_t low = i + 1 < bytes.size() ? bytes[i + 1] : 0;
    sum += static_cast<std::uint32_t>(bytes[i]) << 8 | low;
  }
  while (sum >> 16) sum = (sum & 0xffff) + (sum >> 16);
  return static_cast<std::uint16_t>(~sum);
}

}  // namespace pkt
