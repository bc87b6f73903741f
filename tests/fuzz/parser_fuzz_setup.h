// The parser with four ports of each kind of interface, for the fuzz target
// and for the test that runs its corpus: an L3 port with every protocol, one
// with VLAN sub-interfaces, an L2 bridge port and an inject port.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "dist_hdr.h"
#include "model/line_parser.h"
#include "model/table_memory.h"

namespace fuzz {

inline constexpr std::uint32_t PORTS = 4;
inline constexpr std::uint32_t INJECT_PORT = 3;
inline constexpr model::mac_address ROUTER_MAC = {0x02, 0, 0, 0, 0, 0x01};

struct fixture_interface {
  model::parser_if_key key;
  model::parser_interface iface;
  bool l2;
};
inline constexpr std::array<fixture_interface, 4> INTERFACES = {{
    {{0, 0, {}}, {1, false}, false},
    {{1, 1, {100, 0}}, {2, false}, false},
    {{1, 2, {200, 300}}, {3, false}, false},
    {{2, 0, {}}, {4, true}, true},
}};

class parser_fixture {
 public:
  parser_fixture();
  dist_hdr_line_st parse(std::uint32_t port, std::span<const std::uint8_t> frame);
  // Parses the frame, and traps when the header breaks one of the parser's
  // promises (parser_promises.h).
  void check(std::uint32_t port, std::span<const std::uint8_t> frame);

 private:
  model::table_memory mem_;
  model::line_parser parser_;
};

}  // namespace fuzz
