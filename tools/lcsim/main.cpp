// lcsim: runs packets through software NPUs and reports what came out.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "ctrl/page_descriptors.h"
#include "model/chassis.h"
#include "report.h"
#include "scenario.h"

int main(int argc, char** argv) {
  CLI::App app{
      "lcsim: the line card's forwarding program on software NPUs.\n"
      "With no arguments it runs an embedded default scenario and prints, per packet,\n"
      "the handler reached and how the packet ended, then the counters that moved."};
  CLI11_PARSE(app, argc, argv);

  const lcsim::scenario sc = lcsim::default_scenario();
  model::chassis chassis(std::vector<model::npu_config>(sc.npus, model::npu_config{}));
  for (std::size_t n = 0; n < chassis.size(); ++n) ctrl::install_page_descriptors(chassis.at(n));
  std::vector<std::uint64_t> seqs;
  for (const auto& p : sc.packets) seqs.push_back(chassis.at(p.npu).enqueue(p.packet));
  chassis.run_until_idle();

  std::vector<lcsim::packet_result> results;
  for (std::size_t n = 0; n < chassis.size(); ++n) {
    for (auto& o : chassis.at(n).take_outcomes()) {
      for (std::size_t i = 0; i < sc.packets.size(); ++i) {
        if (sc.packets[i].npu == n && seqs[i] == o.seq) results.push_back({&sc.packets[i], std::move(o)});
      }
    }
  }
  std::sort(results.begin(), results.end(),
            [](const auto& a, const auto& b) { return a.outcome.seq < b.outcome.seq; });
  lcsim::print_report(stdout, chassis, results);
  chassis.stop();
  return 0;
}
