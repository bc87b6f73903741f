#include "run.h"

#include <algorithm>

namespace lcsim {

std::vector<packet_result> run_scenario(model::chassis& chassis, const scenario& sc) {
  std::vector<std::uint64_t> seqs;
  for (const auto& p : sc.packets) {
    model::npu& n = chassis.at(p.npu);
    seqs.push_back(p.line_port ? n.receive_line_frame(*p.line_port, p.packet.bytes) : n.enqueue(p.packet));
  }
  chassis.run_until_idle();

  std::vector<packet_result> results;
  for (std::size_t n = 0; n < chassis.size(); ++n) {
    for (auto& o : chassis.at(n).take_outcomes()) {
      for (std::size_t i = 0; i < sc.packets.size(); ++i) {
        if (sc.packets[i].npu == n && seqs[i] == o.seq) results.push_back({&sc.packets[i], std::move(o)});
      }
    }
  }
  std::sort(results.begin(), results.end(),
            [](const auto& a, const auto& b) { return a.outcome.seq < b.outcome.seq; });
  return results;
}

}  // namespace lcsim
