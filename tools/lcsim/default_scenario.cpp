// The embedded default: one packet of each class the dispatch tells apart.
#include "model/dist_hdr_builder.h"
#include "scenario.h"

namespace lcsim {

namespace {

using model::dist_hdr_builder;
using L = dist_hdr_line_st;

scenario_packet make(std::string description, const dist_hdr_builder& hdr, std::vector<std::uint8_t> bytes = {}) {
  scenario_packet p;
  p.description = std::move(description);
  p.packet.dist_hdr = hdr.bytes();
  p.packet.bytes = std::move(bytes);
  return p;
}

// A fabric frame whose header carries the given type in byte 8.
std::vector<std::uint8_t> fabric_frame(std::uint8_t nph_type) {
  std::vector<std::uint8_t> frame(64, 0);
  frame[0] = 0xC0;
  frame[8] = nph_type;
  return frame;
}

}  // namespace

scenario default_scenario() {
  scenario s;
  auto& p = s.packets;
  p.push_back(make("line, IPv4 unicast vector", dist_hdr_builder::line(0).set<L::ipv4_en>(1)));
  p.push_back(make("line, MPLS vector", dist_hdr_builder::line(4).set<L::mpls_en>(1)));
  p.push_back(make("line, IPv4 exception on an interface without IPv4", dist_hdr_builder::line(7)));
  p.push_back(make("line, interface in maintenance mode", dist_hdr_builder::line(8).set<L::l3_uidb_maintenance_mode>(1)));
  p.push_back(make("line, host inject from a wrong queue", dist_hdr_builder::line(13).set<L::igpb_queue>(12)));
  p.push_back(make("line, no vector on an L2 interface",
                   dist_hdr_builder::line(0).set<L::rt_result_valid>(0).set<L::l2_uidb>(1)));
  p.push_back(make("line, vector 20", dist_hdr_builder::line(20)));
  p.push_back(make("fabric, IPv4 unicast header", dist_hdr_builder::fabric(), fabric_frame(1)));
  p.push_back(make("fabric, header type without a handler", dist_hdr_builder::fabric(), fabric_frame(11)));
  p.push_back(make("fabric, marked bad", dist_hdr_builder::fabric().set<L::error>(1), fabric_frame(1)));
  p.push_back(make("host buffer of unknown type", dist_hdr_builder::format(DST_FORMAT_PDMA_3), {0x03, 0, 0, 0}));
  return s;
}

}  // namespace lcsim
