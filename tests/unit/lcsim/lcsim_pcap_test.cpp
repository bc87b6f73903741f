// The tool end to end: frames from a pcap file go in on a line port, what
// leaves is written per destination, and a bad file or argument ends the
// run with a message and no output; free-running threads change nothing in
// the report.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <array>
#include <cstdio>
#include <string>

#include "pktlib/packet_builder.h"
#include "pktlib/pcap_file.h"
#include "unit/pktlib/scratch_dir.h"

namespace {

using records = std::vector<pkt::pcap_record>;

struct run_result {
  int status;
  std::string output;  // standard output and error
};

run_result lcsim(const std::string& args) {
  FILE* p = popen((std::string(LCSIM_PATH) + " " + args + " 2>&1").c_str(), "r");
  if (!p) return {-1, "popen failed"};
  std::string out;
  std::array<char, 512> chunk;
  while (std::fgets(chunk.data(), chunk.size(), p)) out += chunk.data();
  const int status = pclose(p);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out};
}

std::vector<std::uint8_t> frame(std::uint16_t dst_port) {
  return pkt::builder()
      .eth(pkt::mac("00:00:00:00:00:01"), pkt::mac("00:00:00:00:00:02"))
      .ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1"))
      .udp(1234, dst_port)
      .payload(18)
      .build();
}

TEST(LcsimPcap, FramesGoInOnTheChosenPortAndOutputsAreWritten) {
  pkt::scratch_dir dir;
  pkt::write_pcap(dir.file("in.pcap"),
                  records{{std::chrono::seconds(1), frame(53)}, {std::chrono::seconds(2), frame(80)}});
  const run_result r =
      lcsim("--in " + dir.file("in.pcap") + " --port 3 --mac 00:00:00:00:00:02 --out " + dir.file("out"));
  ASSERT_EQ(r.status, 0) << r.output;
  // Clean IPv4 to the router's MAC: the parser gives the fast vector.
  for (const char* said :
       {"pcap record 1, 60 bytes, line port 3", "pcap record 2, 60 bytes, line port 3", "vector 0, "}) {
    EXPECT_NE(r.output.find(said), std::string::npos) << said << "\n" << r.output;
  }
  EXPECT_TRUE(pkt::read_pcap(dir.file("out/fabric.pcap")).empty());
  EXPECT_TRUE(pkt::read_pcap(dir.file("out/host.pcap")).empty());
}

TEST(LcsimPcap, BadFilesAndArgumentsEndWithAMessageAndWriteNothing) {
  pkt::scratch_dir dir;
  pkt::write_pcap(dir.file("in.pcap"), records{{{}, frame(53)}});
  pkt::write_pcap(dir.file("cut.pcap"), records{{{}, frame(53)}, {{}, frame(80)}});
  std::filesystem::resize_file(dir.file("cut.pcap"), std::filesystem::file_size(dir.file("cut.pcap")) - 10);
  // The arguments, and what the message must name.
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"--in " + dir.file("cut.pcap"), {dir.file("cut.pcap"), "record 2"}},
      {"--in " + dir.file("in.pcap") + " --port 4096", {"--port"}},
      {"--in " + dir.file("missing.pcap"), {"missing.pcap"}},
      {"--port 1", {"--port requires --in"}},
      {"--in " + dir.file("in.pcap") + " --mac 00:11", {"00:11"}},
  };
  for (const auto& [args, said] : cases) {
    const run_result r = lcsim(args + " --out " + dir.file("out"));
    EXPECT_NE(r.status, 0) << args;
    for (const std::string& s : said) EXPECT_NE(r.output.find(s), std::string::npos) << args << ": " << r.output;
    EXPECT_FALSE(std::filesystem::exists(dir.file("out"))) << args;
  }
}

// The report lists packets by arrival, so free-running threads change
// nothing in it.
TEST(LcsimDefault, FabricFramesReachNpu1WithTheirHeaderDecodedWhateverTheThreads) {
  const run_result r = lcsim("");
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(r.output.find("ERROR"), std::string::npos) << r.output;
  for (const char* said : {"npu 1  fabric, IPv4 unicast header", "dc3_plen 0x24", "dc3_sfp_valid 0x1",
                           "dc3_fgid_or_sfp 0x123", "nph_type 0x1"}) {
    EXPECT_NE(r.output.find(said), std::string::npos) << said << "\n" << r.output;
  }
  EXPECT_EQ(lcsim("--threads 4").output, r.output);
}

}  // namespace
