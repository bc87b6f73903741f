// The parser's walk of a frame's Ethernet header: up to four tags, the type
// behind them and where the L3 header begins.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace model {

struct ethernet_view {
  bool complete = false;  // the frame holds its whole Ethernet header, tags included
  std::uint32_t tags = 0;
  std::array<std::uint16_t, 2> vids{};  // of the first two tags
  std::uint32_t outer_pbits = 0;        // priority and DEI bits of the outermost tag
  std::uint16_t ethertype = 0;          // behind the tags
  std::uint32_t l3_offset = 0;
};

ethernet_view walk_ethernet(std::span<const std::uint8_t> frame);

}  // namespace model
