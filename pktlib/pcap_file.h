// pcap files of Ethernet frames, read and written through libpcap.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace pkt {

// A pcap file could not be read or written. The message names the file and,
// for a bad record, its number counted from 1.
class pcap_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct pcap_record {
  std::chrono::nanoseconds timestamp{};  // since the Unix epoch
  std::vector<std::uint8_t> frame;
};

// Writes a nanosecond-resolution pcap file. Frames go to a temporary file in
// the same directory, which close() renames onto the path, so nobody ever
// sees a half-written file. A writer destroyed without close() (say, by an
// exception) removes the temporary file and leaves the path untouched.
class pcap_writer {
 public:
  explicit pcap_writer(std::string path);
  ~pcap_writer();
  pcap_writer(const pcap_writer&) = delete;
  pcap_writer& operator=(const pcap_writer&) = delete;

  void write(std::span<const std::uint8_t> frame, std::chrono::nanoseconds timestamp);
  void close();

 private:
  struct open_file;
  std::string path_;
  std::unique_ptr<open_file> file_;  // null once closed
};

void write_pcap(const std::string& path, std::span<const pcap_record> records);

// All records of a pcap or pcapng file with Ethernet link type. Throws
// pcap_error if the file is missing, not a capture file, of another link type,
// truncated, or holds a frame cut short by the capture's snap length.
std::vector<pcap_record> read_pcap(const std::string& path);

}  // namespace pkt
