// The line card's parser: for each frame from a line port it fills the
// distribution header as the hardware does, from the frame, the port's
// settings, the (port, tags) map to an interface, and the interface's marks
// and port record in table memory (docs/parser.md).
//
// Concurrency: the control side changes the settings while frames arrive;
// one mutex guards the settings and the packet handle count. It is taken
// before any table memory lock and never under the chassis mutex.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <map>
#include <mutex>
#include <span>

#include "packet_io.h"
#include "parser_vector.h"
#include "table_memory.h"

namespace model {

struct parser_port {
  mac_address router_mac{};
  std::uint32_t input_queue = 0;  // INJECT_QUEUE_FIRST..LAST: an inject port
  std::uint32_t port_record = 0;  // virtual address of the port's ingress record
};

// The tags that select an interface on a port: none, one or two VLAN IDs.
struct parser_if_key {
  std::uint32_t port = 0;
  std::uint32_t tags = 0;
  std::array<std::uint16_t, 2> vids{};
  auto operator<=>(const parser_if_key&) const = default;
};

struct parser_interface {
  std::uint16_t uidb_index = 0;
  // An L2 interface takes frames with more tags than its key: the further
  // tags belong to the customer.
  bool takes_further_tags = false;
  std::uint32_t marks_record = 0;  // virtual address of the interface's ingress marks
};

class line_parser {
 public:
  void set_port(std::uint32_t port, const parser_port& p);
  void remove_port(std::uint32_t port);
  void set_interface(const parser_if_key& key, const parser_interface& i);
  void remove_interface(const parser_if_key& key);

  // The distribution header of `frame` arriving on line port `port`.
  std::array<std::uint8_t, DIST_HDR_BYTES> parse(const table_memory& mem, std::uint32_t port,
                                                 std::span<const std::uint8_t> frame);

 private:
  frame_class classify(const table_memory& mem, std::uint32_t port, std::span<const std::uint8_t> frame,
                       const parser_port* settings, baf_hdr_ing_st& b) const;
  const parser_interface* find_interface(std::uint32_t port, std::uint32_t tags,
                                         const std::array<std::uint16_t, 2>& vids) const;

  std::mutex mutex_;
  std::map<std::uint32_t, parser_port> ports_;
  std::map<parser_if_key, parser_interface> interfaces_;
  std::uint32_t next_handle_ = 0;
};

}  // namespace model
