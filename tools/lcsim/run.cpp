#include "run.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <tuple>

#include "dist_hdr.h"
#include "line_setup.h"

namespace lcsim {

namespace {

// The router MAC of the scenario's own interfaces.
const pkt::mac_addr ROUTER_MAC = {0x02, 0x00, 0x00, 0x00, 0x00, 0x01};

// The packet with the UIDB index of the interface its header names.
model::arriving_packet as_sent(const scenario_packet& p, const std::vector<std::uint16_t>& uidb_indexes) {
  model::arriving_packet pkt = p.packet;
  if (!p.interface) return pkt;
  dist_hdr_line_st hdr;
  std::memcpy(hdr.bytes, pkt.dist_hdr.data(), sizeof hdr.bytes);
  dist_hdr_line_st::uidb_index::set(hdr, uidb_indexes.at(*p.interface));
  std::memcpy(pkt.dist_hdr.data(), hdr.bytes, sizeof hdr.bytes);
  return pkt;
}

}  // namespace

std::vector<packet_result> run_scenario(model::chassis& chassis, ctrl::chassis_tables& tables, const scenario& sc) {
  for (const vqi_route& v : sc.vqis) require_accepted(tables.map_vqi(v.vqi, v.npu), "VQI " + std::to_string(v.vqi));
  std::vector<std::uint16_t> uidb_indexes;
  for (const interface_record& i : sc.interfaces) {
    uidb_indexes.push_back(set_up_line_port(tables.npu(i.npu), i.port, ROUTER_MAC, i.cfg));
  }
  std::vector<std::uint64_t> seqs;
  for (const auto& p : sc.packets) {
    model::npu& n = chassis.at(p.npu);
    seqs.push_back(p.line_port ? n.receive_line_frame(*p.line_port, p.packet.bytes)
                               : n.enqueue(as_sent(p, uidb_indexes)));
  }
  chassis.run_until_idle();

  std::vector<packet_result> results;
  for (std::size_t n = 0; n < chassis.size(); ++n) {
    for (auto& o : chassis.at(n).take_outcomes()) {
      const scenario_packet* input = nullptr;
      for (std::size_t i = 0; i < sc.packets.size(); ++i) {
        if (sc.packets[i].npu == n && seqs[i] == o.seq) input = &sc.packets[i];
      }
      results.push_back({input, std::move(o)});
    }
  }
  std::sort(results.begin(), results.end(), [](const auto& a, const auto& b) {
    return std::tie(a.outcome.npu, a.outcome.seq) < std::tie(b.outcome.npu, b.outcome.seq);
  });
  return results;
}

}  // namespace lcsim
