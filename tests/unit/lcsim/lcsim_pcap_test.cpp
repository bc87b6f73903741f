// The tool end to end: frames from a pcap file go in on a line port, what
// leaves is written per destination, and a bad file or argument ends the
// run with a message and no output; free-running threads change nothing in
// the report.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <string>
#include <sys/wait.h>

#include "pktlib/packet_builder.h"
#include "pktlib/pcap_file.h"
#include "unit/pktlib/scratch_dir.h"

namespace {

struct run_result {
  int status;
  std::string output;  // standard output and error
};

run_result lcsim(const std::string& args) {
  const std::string cmd = std::string(LCSIM_PATH) + " " + args + " 2>&1";
  FILE* p = popen(cmd.c_str(), "r");
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
  const std::vector<pkt::pcap_record> in = {{std::chrono::seconds(1), frame(53)}, {std::chrono::seconds(2), frame(80)}};
  pkt::write_pcap(dir.file("in.pcap"), in);
  const run_result r =
      lcsim("--in " + dir.file("in.pcap") + " --port 3 --mac 00:00:00:00:00:02 --out " + dir.file("out"));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_NE(r.output.find("pcap record 1, 60 bytes, line port 3"), std::string::npos) << r.output;
  EXPECT_NE(r.output.find("pcap record 2, 60 bytes, line port 3"), std::string::npos) << r.output;
  // Clean IPv4 to the router's MAC: the parser gives the fast vector.
  EXPECT_NE(r.output.find("vector 0, "), std::string::npos) << r.output;
  for (const char* name : {"fabric.pcap", "host.pcap"}) {
    EXPECT_TRUE(pkt::read_pcap(dir.file("out/") + name).empty()) << name;
  }
}

TEST(LcsimPcap, TruncatedFileNamesFileAndRecordAndWritesNothing) {
  pkt::scratch_dir dir;
  pkt::write_pcap(dir.file("in.pcap"), std::vector<pkt::pcap_record>{{{}, frame(53)}, {{}, frame(80)}});
  std::filesystem::resize_file(dir.file("in.pcap"), std::filesystem::file_size(dir.file("in.pcap")) - 10);
  const run_result r = lcsim("--in " + dir.file("in.pcap") + " --out " + dir.file("out"));
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.output.find(dir.file("in.pcap")), std::string::npos) << r.output;
  EXPECT_NE(r.output.find("record 2"), std::string::npos) << r.output;
  EXPECT_FALSE(std::filesystem::exists(dir.file("out")));
}

TEST(LcsimPcap, BadArgumentsEndWithAMessage) {
  pkt::scratch_dir dir;
  pkt::write_pcap(dir.file("in.pcap"), std::vector<pkt::pcap_record>{{{}, frame(53)}});
  const std::pair<std::string, std::string> cases[] = {
      {"--in " + dir.file("in.pcap") + " --port 4096", "--port"},
      {"--in " + dir.file("missing.pcap"), "missing.pcap"},
      {"--port 1", "--port requires --in"},
      {"--in " + dir.file("in.pcap") + " --mac 00:11", "00:11"},
  };
  for (const auto& [args, said] : cases) {
    const run_result r = lcsim(args);
    EXPECT_NE(r.status, 0) << args;
    EXPECT_NE(r.output.find(said), std::string::npos) << args << ": " << r.output;
  }
}

TEST(LcsimDefault, FabricFramesReachTheEgressDispatchOfNpu1WithTheirHeaderDecoded) {
  const run_result r = lcsim("");
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(r.output.find("ERROR"), std::string::npos) << r.output;
  EXPECT_NE(r.output.find("npu 1  fabric, IPv4 unicast header"), std::string::npos) << r.output;
  for (const char* field : {"dc3_plen 0x24", "dc3_sfp_valid 0x1", "dc3_fgid_or_sfp 0x123", "nph_type 0x1"}) {
    EXPECT_NE(r.output.find(field), std::string::npos) << field << "\n" << r.output;
  }
}

// The report lists packets by arrival, so free-running threads change
// nothing in it.
TEST(LcsimThreads, FreeRunningNpusReportWhatOneThreadReports) {
  const run_result one = lcsim("");
  const run_result four = lcsim("--threads 4");
  ASSERT_EQ(four.status, 0) << four.output;
  EXPECT_EQ(four.output, one.output);
}

}  // namespace
