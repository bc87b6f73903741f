// The embedded default: one packet of each class the dispatch tells apart, on
// a chassis of two NPUs. Line packets enter NPU 0; frames from the fabric
// enter NPU 1, which serves VQI EGRESS_VQI. No built ingress handler sends to
// the fabric yet (ipv4_ing_perf will, through npu_pkt_tx_request_ing), so the
// fabric frames here are given as NPU 1 receives them.
#include "fab_hdr.h"
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

constexpr std::uint32_t EGRESS_NPU = 1;
constexpr std::uint32_t EGRESS_VQI = 0x123;
constexpr std::uint32_t FABRIC_FRAME_BYTES = 64;

// A unicast fabric frame to EGRESS_VQI with a header of the given type.
std::vector<std::uint8_t> fabric_frame(std::uint32_t nph_type) {
  using dc3 = dc3_nph_st;
  dc3 hdr{};
  dc3::dc3_plen::set(hdr, FABRIC_FRAME_BYTES - 28);
  dc3::dc3_sfp_valid::set(hdr, 1);
  dc3::dc3_fgid_or_sfp::set(hdr, EGRESS_VQI);
  dc3::nph_type::set(hdr, nph_type);
  std::vector<std::uint8_t> frame(FABRIC_FRAME_BYTES, 0);
  std::copy(hdr.bytes, hdr.bytes + sizeof hdr.bytes, frame.begin());
  return frame;
}

scenario_packet from_fabric(std::string description, dist_hdr_builder hdr, std::uint32_t nph_type) {
  scenario_packet p =
      make(std::move(description), hdr.set<dist_hdr_fabric_st::pktlen>(FABRIC_FRAME_BYTES), fabric_frame(nph_type));
  p.npu = EGRESS_NPU;
  return p;
}

}  // namespace

scenario default_scenario() {
  scenario s;
  s.npus = 2;
  s.vqis.push_back({EGRESS_VQI, EGRESS_NPU});
  ctrl::l3_interface v6_only;
  v6_only.ipv6 = true;
  s.interfaces.push_back({0, 0, v6_only});
  auto& p = s.packets;
  p.push_back(make("line, IPv4 unicast vector", dist_hdr_builder::line(0).set<L::ipv4_en>(1)));
  p.push_back(make("line, MPLS vector", dist_hdr_builder::line(4).set<L::mpls_en>(1)));
  p.push_back(make("line, IPv4 exception on an interface without IPv4", dist_hdr_builder::line(7)));
  p.push_back(
      make("line, interface in maintenance mode", dist_hdr_builder::line(8).set<L::l3_uidb_maintenance_mode>(1)));
  p.push_back(make("line, host inject from a wrong queue", dist_hdr_builder::line(13).set<L::igpb_queue>(12)));
  p.push_back(make("line, no vector on an L2 interface",
                   dist_hdr_builder::line(0).set<L::rt_result_valid>(0).set<L::l2_uidb>(1)));
  p.push_back(make("line, vector 20", dist_hdr_builder::line(20)));
  p.push_back(from_fabric("fabric, IPv4 unicast header", dist_hdr_builder::fabric(), NPH_TYPE_IPV4_UNI));
  p.push_back(from_fabric("fabric, header type without a handler", dist_hdr_builder::fabric(), 11));
  p.push_back(from_fabric("fabric, marked bad", dist_hdr_builder::fabric().set<L::error>(1), NPH_TYPE_IPV4_UNI));
  for (scenario_packet& line : p) line.interface = 0;
  p.push_back(make("host buffer of unknown type", dist_hdr_builder::format(DST_FORMAT_PDMA_3), {0x03, 0, 0, 0}));
  return s;
}

}  // namespace lcsim
