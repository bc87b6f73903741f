// A software NPU with the control side's interface tables: line ports and
// interfaces set up through ctrl, frames sent through the model's parser.
#pragma once

#include <cstdint>
#include <vector>

#include "pktlib/addresses.h"
#include "testkit/npu_harness.h"

namespace testkit {

// The router's MAC on every port a line_card sets up, and a station beside it.
inline const pkt::mac_addr ROUTER_MAC = {0x02, 0x00, 0x00, 0x00, 0x00, 0x01};
inline const pkt::mac_addr PEER_MAC = {0x02, 0x00, 0x00, 0x00, 0x00, 0x99};

class line_card {
 public:
  // A chassis of `npus` NPUs; the ports and interfaces are NPU 0's.
  explicit line_card(std::uint32_t npus = 1) : h_(npus) {}

  npu_harness& harness() { return h_; }
  model::npu& npu() { return h_.npu(); }
  ctrl::npu_tables& tables() { return h_.tables(); }
  ctrl::interfaces& ifs() { return h_.tables().ifs(); }

  // A line port with the router's MAC (add_line_port).
  void add_port(std::uint32_t port, ctrl::port_bits bits = {}, std::uint32_t input_queue = 0);
  // L3 settings routing the given protocols, with handle `if_handle`.
  static ctrl::l3_interface routed(std::uint32_t if_handle, bool ipv4, bool ipv6, bool mpls);

  // The distribution header the parser gives a frame, without sending it.
  dist_hdr_line_st parse(std::uint32_t port, const std::vector<std::uint8_t>& frame);
  // Sends one frame from `port` through the parser and returns its outcome.
  model::packet_outcome receive(std::uint32_t port, std::vector<std::uint8_t> frame);

 private:
  npu_harness h_;
};

}  // namespace testkit
