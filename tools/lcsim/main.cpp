// lcsim: runs packets through software NPUs and reports what came out.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "ctrl/page_descriptors.h"
#include "model/chassis.h"
#include "pcap_input.h"
#include "pcap_output.h"
#include "report.h"
#include "run.h"
#include "scenario.h"

namespace {

struct options {
  std::string in;
  std::uint32_t port = 0;
  std::string out;
};

int run(const options& opt) {
  const lcsim::scenario sc = opt.in.empty() ? lcsim::default_scenario() : lcsim::scenario_from_pcap(opt.in, opt.port);
  model::chassis chassis(std::vector<model::npu_config>(sc.npus, model::npu_config{}));
  for (std::size_t n = 0; n < chassis.size(); ++n) ctrl::install_page_descriptors(chassis.at(n));
  const std::vector<lcsim::packet_result> results = lcsim::run_scenario(chassis, sc);
  lcsim::print_report(stdout, chassis, results);
  chassis.stop();
  if (!opt.out.empty()) lcsim::write_outputs(opt.out, results);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "lcsim: the line card's forwarding program on software NPUs.\n"
      "With no arguments it runs an embedded default scenario and prints, per packet,\n"
      "the handler reached and how the packet ended, then the counters that moved."};
  options opt;
  app.add_option("--in", opt.in,
                 "Read the packets from this pcap file: each frame arrives on a line port (see --port). "
                 "Until the hardware parser is modelled, each frame's distribution header carries "
                 "format 6, the frame's length and the port, and no valid vector, so the report shows "
                 "where such a packet goes.")
      ->check(CLI::ExistingFile);
  app.add_option("--port", opt.port, "Line port (logical port) of the frames of --in")
      ->check(CLI::Range(0u, lcsim::MAX_LINE_PORT))
      ->needs("--in");
  app.add_option("--out", opt.out,
                 "Write what leaves into this directory: fabric.pcap, host.pcap and line-<port>.pcap "
                 "per line port. The transmit paths are not built yet, so the files hold no frames for now.");
  CLI11_PARSE(app, argc, argv);
  try {
    return run(opt);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "lcsim: %s\n", e.what());
    return 1;
  }
}
