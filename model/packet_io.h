// What enters an NPU and what the model records about each packet's end.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace model {

inline constexpr std::uint32_t DIST_HDR_BYTES = 32;

struct arriving_packet {
  std::array<std::uint8_t, DIST_HDR_BYTES> dist_hdr{};
  std::vector<std::uint8_t> bytes;
};

enum class packet_end {
  freed,            // the buffer was given back (drop, or a finished packet)
  sent,             // the packet left through the transmit engine
  contract_breach,  // the program broke the platform contract; see note
};

const char* packet_end_name(packet_end end);

// Where a frame that leaves an NPU goes.
enum class frame_destination { line, fabric, host };

// A frame as it left: its destination (with the line port) and its bytes.
struct sent_frame {
  frame_destination to = frame_destination::line;
  std::uint32_t port = 0;
  std::vector<std::uint8_t> bytes;
};

struct packet_outcome {
  std::uint64_t seq = 0;  // arrival number on its NPU, from 1
  std::uint32_t npu = 0;
  std::uint32_t thread = 0;
  std::array<std::uint8_t, DIST_HDR_BYTES> dist_hdr{};  // the header it arrived with
  packet_end end = packet_end::freed;
  std::int32_t placeholder = -1;               // unbuilt handler that ended it, if any
  std::vector<std::uint32_t> global_counters;  // global counters bumped while the thread held it
  std::vector<sent_frame> sent;                // frames that left while the thread held it
  std::optional<std::uint32_t> captured_drop;  // the reason under which the drop capture took it
  std::optional<std::uint32_t> drop_counter;   // a freed packet's drop counter, as its drop named it
  std::string note;
};

}  // namespace model
