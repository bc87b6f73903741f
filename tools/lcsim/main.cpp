// lcsim: runs packets through software NPUs and reports what came out.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "ctrl/chassis_tables.h"
#include "line_setup.h"
#include "model/chassis.h"
#include "pcap_input.h"
#include "pcap_output.h"
#include "power.h"
#include "report.h"
#include "run.h"
#include "scenario.h"

namespace {

// The most threads an NPU of the tool runs.
constexpr std::uint32_t MAX_THREADS = 64;

struct options {
  std::string in;
  std::uint32_t port = 0;
  std::string mac = "02:00:00:00:00:01";
  std::string out;
  std::uint32_t threads = 1;
};

int run(const options& opt) {
  const lcsim::scenario sc = opt.in.empty() ? lcsim::default_scenario() : lcsim::scenario_from_pcap(opt.in, opt.port);
  model::chassis chassis(std::vector<model::npu_config>(sc.npus, model::npu_config{opt.threads, 1}), power_fwcore_main);
  ctrl::chassis_tables tables(chassis);
  if (!opt.in.empty()) lcsim::set_up_line_port(tables.npu(0), opt.port, pkt::mac(opt.mac), lcsim::routed_interface());
  const std::vector<lcsim::packet_result> results = lcsim::run_scenario(chassis, tables, sc);
  lcsim::print_report(stdout, tables, results);
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
                 "Read the packets from this pcap file: each frame arrives on a line port (see --port), "
                 "set up as a routed port with IPv4, IPv6 and MPLS on, and the parser gives it its "
                 "vector (docs/parser.md): the report shows the vector and where the packet went.")
      ->check(CLI::ExistingFile);
  app.add_option("--port", opt.port, "Line port (logical port) of the frames of --in")
      ->check(CLI::Range(0u, lcsim::MAX_LINE_PORT))
      ->needs("--in");
  app.add_option("--mac", opt.mac,
                 "The router's MAC on the port of --in: frames to another unicast MAC take the exception "
                 "vectors (default 02:00:00:00:00:01)")
      ->check([](const std::string& text) {
        try {
          pkt::mac(text);
          return std::string();
        } catch (const std::exception& e) {
          return std::string(e.what());
        }
      })
      ->needs("--in");
  app.add_option("--threads", opt.threads,
                 "Threads per NPU. With more than one the NPUs run free: their threads work at once on real "
                 "cores, and packets that share a flow lock still leave in arrival order")
      ->check(CLI::Range(1u, MAX_THREADS));
  app.add_option("--out", opt.out,
                 "Write what leaves into this directory: fabric.pcap (frames with their fabric header), "
                 "host.pcap, and line-<port>.pcap per line port (the Ethernet frames behind the line header). "
                 "No built forwarding path sends yet, so the files hold no frames for now.");
  CLI11_PARSE(app, argc, argv);
  try {
    return run(opt);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "lcsim: %s\n", e.what());
    return 1;
  }
}
