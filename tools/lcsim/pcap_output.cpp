#include "pcap_output.h"

#include <filesystem>
#include <map>
#include <stdexcept>
#include <system_error>

#include "pktlib/pcap_file.h"

namespace lcsim {

namespace {

std::string file_of(const model::sent_frame& f) {
  switch (f.to) {
    case model::frame_destination::line:
      return "line-" + std::to_string(f.port) + ".pcap";
    case model::frame_destination::fabric:
      return "fabric.pcap";
    case model::frame_destination::host:
      return "host.pcap";
  }
  return "unknown.pcap";
}

void make_directory(const std::filesystem::path& dir) {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (ec || !std::filesystem::is_directory(dir)) {
    throw std::runtime_error("output directory '" + dir.string() +
                             "': " + (ec ? ec.message() : std::string("not a directory")));
  }
}

}  // namespace

void write_outputs(const std::string& dir, const std::vector<packet_result>& results) {
  std::map<std::string, std::vector<pkt::pcap_record>> files{{"fabric.pcap", {}}, {"host.pcap", {}}};
  for (const packet_result& r : results) {
    // A frame that came from the fabric has no arrival time in the scenario.
    const std::chrono::nanoseconds at = r.input ? r.input->timestamp : std::chrono::nanoseconds{};
    for (const model::sent_frame& f : r.outcome.sent) files[file_of(f)].push_back({at, f.bytes});
  }
  const std::filesystem::path base(dir);
  make_directory(base);
  for (const auto& [name, records] : files) pkt::write_pcap((base / name).string(), records);
}

}  // namespace lcsim
