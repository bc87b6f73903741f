// The parser with four ports of each kind of interface, for the fuzz target
// and for the test that runs its corpus: an L3 port with every protocol, one
// with VLAN sub-interfaces, an L2 bridge port and an inject port.
#pragma once

#include <cstdint>
#include <span>

#include "model/line_parser.h"
#include "model/table_memory.h"

namespace fuzz {

inline constexpr std::uint32_t PORTS = 4;

class parser_fixture {
 public:
  parser_fixture();
  // Parses the frame, and traps when the header breaks one of the parser's
  // promises.
  void check(std::uint32_t port, std::span<const std::uint8_t> frame);

 private:
  model::table_memory mem_;
  model::line_parser parser_;
};

}  // namespace fuzz
