#include "testkit/line_card.h"

#include <cstring>
#include <stdexcept>

#include "testkit/routed_port.h"

namespace testkit {

void line_card::add_port(std::uint32_t port, ctrl::port_bits bits, std::uint32_t input_queue) {
  add_line_port(tables(), port, bits, input_queue, ROUTER_MAC);
}

ctrl::l3_interface line_card::routed(std::uint32_t if_handle, bool ipv4, bool ipv6, bool mpls) {
  ctrl::l3_interface cfg;
  cfg.if_handle = if_handle;
  cfg.ipv4 = ipv4;
  cfg.ipv6 = ipv6;
  cfg.mpls = mpls;
  return cfg;
}

dist_hdr_line_st line_card::parse(std::uint32_t port, const std::vector<std::uint8_t>& frame) {
  const auto bytes = npu().parser().parse(npu().memory(), port, frame);
  dist_hdr_line_st hdr;
  std::memcpy(hdr.bytes, bytes.data(), sizeof hdr.bytes);
  return hdr;
}

model::packet_outcome line_card::receive(std::uint32_t port, std::vector<std::uint8_t> frame) {
  npu().receive_line_frame(port, std::move(frame));
  const auto out = h_.run();
  if (out.size() != 1) throw std::logic_error("one frame in, not one outcome out");
  return out.front();
}

}  // namespace testkit
