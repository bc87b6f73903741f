#include "run.h"

#include <algorithm>
#include <tuple>

#include "ctrl/fabric.h"

namespace lcsim {

std::vector<packet_result> run_scenario(model::chassis& chassis, const scenario& sc) {
  for (const vqi_route& v : sc.vqis) ctrl::map_vqi(chassis, v.vqi, v.npu);
  for (const interface_record& i : sc.interfaces) ctrl::write_records(chassis.at(i.npu), i.uidb_index, {}, i.cfg);
  std::vector<std::uint64_t> seqs;
  for (const auto& p : sc.packets) {
    model::npu& n = chassis.at(p.npu);
    seqs.push_back(p.line_port ? n.receive_line_frame(*p.line_port, p.packet.bytes) : n.enqueue(p.packet));
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
  std::sort(results.begin(), results.end(),
            [](const auto& a, const auto& b) {
              return std::tie(a.outcome.npu, a.outcome.seq) < std::tie(b.outcome.npu, b.outcome.seq);
            });
  return results;
}

}  // namespace lcsim
