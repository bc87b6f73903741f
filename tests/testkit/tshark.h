// Frames checked by tshark, a dissector written independently of this
// project: fields of each frame of a pcap file, as tshark decodes them, with
// the IP, TCP and UDP checksums checked. Tests skip when tshark is absent.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace testkit {

using field_values = std::map<std::string, std::string>;

inline bool tshark_available() { return std::system("command -v tshark >/dev/null 2>&1") == 0; }

inline std::string read_file(const std::string& path) {
  std::ifstream in(path);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// One line of tab-separated fields per frame. tshark decodes one extra
// tag TPID besides 0x8100 and 0x88a8, here 0x9200. Its errors go to
// stderr_path.
inline std::vector<field_values> dissect(const std::string& pcap, const std::vector<std::string>& fields,
                                         const std::string& stderr_path) {
  std::string command = "tshark -n -r '" + pcap +
                        "' -o ip.check_checksum:TRUE -o tcp.check_checksum:TRUE -o udp.check_checksum:TRUE -o "
                        "vlan.qinq_ethertype:0x9200 -T fields";
  for (const std::string& f : fields) command += " -e " + f;
  command += " 2>'" + stderr_path + "'";
  std::string output;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[4096];
    while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, n);
    pclose(pipe);
  }
  std::vector<field_values> frames;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream cells(line);
    field_values& values = frames.emplace_back();
    for (const std::string& f : fields) std::getline(cells, values[f], '\t');
  }
  return frames;
}

}  // namespace testkit
