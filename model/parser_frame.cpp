#include "parser_frame.h"

#include "ethernet.h"

namespace model {

namespace {
constexpr std::uint32_t TYPE_OFFSET = 2 * ETHER_ADDR_BYTES;
constexpr std::uint32_t PBITS_SHIFT = 12;  // priority and DEI: the top nibble of the tag word
constexpr std::uint16_t VID_MASK = 0x0FFF;

std::uint16_t be16_at(std::span<const std::uint8_t> frame, std::size_t at) {
  return static_cast<std::uint16_t>((frame[at] << 8) | frame[at + 1]);
}
}  // namespace

ethernet_view walk_ethernet(std::span<const std::uint8_t> frame) {
  ethernet_view v;
  std::size_t type_at = TYPE_OFFSET;
  while (type_at + 2 <= frame.size()) {
    const std::uint16_t type = be16_at(frame, type_at);
    if (v.tags == ETHER_MAX_TAGS || !ether_type_is_tag(type)) {
      v.ethertype = type;
      v.l3_offset = static_cast<std::uint32_t>(type_at + 2);
      v.complete = true;
      return v;
    }
    if (type_at + VLAN_TAG_BYTES + 2 > frame.size()) return v;
    const std::uint16_t tci = be16_at(frame, type_at + 2);
    if (v.tags == 0) v.outer_pbits = tci >> PBITS_SHIFT;
    if (v.tags < v.vids.size()) v.vids[v.tags] = tci & VID_MASK;
    ++v.tags;
    type_at += VLAN_TAG_BYTES;
  }
  return v;
}

}  // namespace model
