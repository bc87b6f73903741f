#include "pktlib/pcap_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "scratch_dir.h"

namespace pkt {
namespace {

using namespace std::chrono_literals;
using bytes = std::vector<std::uint8_t>;

constexpr std::size_t file_header_size = 24, record_header_size = 16;

const std::vector<pcap_record> sample = {
    {1'700'000'000s + 123'456'789ns, bytes(60, 0xaa)},
    {1'700'000'001s, bytes(1514, 0x55)},
    {1'700'000'001s + 1ns, bytes(14, 0x01)},
};

bytes read_bytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return bytes(std::istreambuf_iterator<char>(in), {});
}

void write_bytes(const std::string& path, const bytes& data) {
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(data.data()), data.size());
}

std::string read_error(const std::string& path) {
  try {
    read_pcap(path);
  } catch (const pcap_error& e) {
    return e.what();
  }
  return "no error";
}

std::size_t entries(const std::filesystem::path& dir) {
  return std::distance(std::filesystem::directory_iterator(dir), {});
}

TEST(PcapFile, RoundTripKeepsFramesAndNanosecondTimestamps) {
  scratch_dir dir;
  write_pcap(dir.file("a.pcap"), sample);
  const std::vector<pcap_record> back = read_pcap(dir.file("a.pcap"));
  ASSERT_EQ(back.size(), sample.size());
  for (std::size_t i = 0; i < sample.size(); ++i) {
    EXPECT_EQ(back[i].timestamp, sample[i].timestamp) << i;
    EXPECT_EQ(back[i].frame, sample[i].frame) << i;
  }
  EXPECT_EQ(entries(dir.path()), 1u) << "no temporary file left behind";
}

TEST(PcapFile, NothingAppearsUntilClose) {
  scratch_dir dir;
  const std::string path = dir.file("out.pcap");
  write_pcap(path, std::span(sample).first(1));
  {
    pcap_writer writer(path);
    writer.write(sample[1].frame, sample[1].timestamp);
    EXPECT_EQ(read_pcap(path).size(), 1u) << "the old file stays until close()";
  }  // abandoned without close(), as when an exception unwinds
  EXPECT_EQ(read_pcap(path).size(), 1u);
  EXPECT_EQ(entries(dir.path()), 1u) << "the temporary file is removed";

  pcap_writer writer(path);
  writer.write(sample[1].frame, sample[1].timestamp);
  writer.close();
  EXPECT_EQ(read_pcap(path).at(0).frame, sample[1].frame);
}

TEST(PcapFile, WriterReportsAnUnwritableDirectory) { EXPECT_THROW(pcap_writer("/nonexistent-dir/x.pcap"), pcap_error); }

TEST(PcapFile, BadFilesNameTheFileAndTheRecord) {
  scratch_dir dir;
  write_pcap(dir.file("good.pcap"), sample);
  const bytes good = read_bytes(dir.file("good.pcap"));
  const std::size_t record2 = file_header_size + record_header_size + sample[0].frame.size();

  const auto variant = [&](const std::string& name, bytes data) {
    write_bytes(dir.file(name), data);
    return dir.file(name);
  };
  bytes snapped = good;
  snapped[record2 + 14] = 0x01;  // wire length (little-endian) above the captured length
  bytes raw_ip = good;
  raw_ip[20] = 101;  // link type: raw IP

  struct bad_case {
    std::string path;
    std::string expected;
  };
  const bad_case cases[] = {
      {dir.file("missing.pcap"), "missing.pcap"},
      {variant("garbage.pcap", bytes(100, 0x42)), "garbage.pcap"},
      {variant("short_header.pcap", bytes(good.begin(), good.begin() + 10)), "short_header.pcap"},
      {variant("cut_record_data.pcap", bytes(good.begin(), good.end() - 5)), "record 3: truncated"},
      {variant("cut_record_header.pcap", bytes(good.begin(), good.begin() + record2 + 7)), "record 2: truncated"},
      {variant("snapped.pcap", snapped), "record 2: holds 1514 of its"},
      {variant("raw_ip.pcap", raw_ip), "not Ethernet"},
  };
  for (const bad_case& c : cases) {
    const std::string error = read_error(c.path);
    EXPECT_NE(error.find(c.expected), std::string::npos) << c.path << ": " << error;
    EXPECT_NE(error.find(c.path), std::string::npos) << error;
  }
}

}  // namespace
}  // namespace pkt
