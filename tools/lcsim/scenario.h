// A run of the tool: named packets for the NPUs of a chassis.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ctrl/uidb_records.h"
#include "model/packet_io.h"

namespace lcsim {

struct scenario_packet {
  std::string description;
  std::uint32_t npu = 0;
  std::chrono::nanoseconds timestamp{};  // of its arrival, carried to what it sends
  // Set: packet.bytes is a frame from this line port, and the parser fills
  // its distribution header. Unset: packet.dist_hdr is given.
  std::optional<std::uint32_t> line_port;
  // Set: the given header names this interface of the scenario (its UIDB
  // index, which the control side chooses when the run sets it up).
  std::optional<std::size_t> interface;
  model::arriving_packet packet;
};

// A unicast fabric destination and the NPU that serves it.
struct vqi_route {
  std::uint32_t vqi = 0;
  std::uint32_t npu = 0;
};

// A line port with its own L3 interface, which given headers can name.
struct interface_record {
  std::uint32_t npu = 0;
  std::uint32_t port = 0;
  ctrl::l3_interface cfg;
};

struct scenario {
  std::uint32_t npus = 1;
  std::vector<vqi_route> vqis;
  std::vector<interface_record> interfaces;
  std::vector<scenario_packet> packets;
};

// The scenario that runs when the tool is given no input.
scenario default_scenario();

}  // namespace lcsim
