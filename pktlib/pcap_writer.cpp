#include <pcap/pcap.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "pktlib/pcap_file.h"

namespace pkt {
namespace {

constexpr int max_frame_size = 262144;  // libpcap's largest snap length

std::string failure(const std::string& path, const std::string& why) { return "pcap file '" + path + "': " + why; }

}  // namespace

struct pcap_writer::open_file {
  std::string temp_path;
  pcap_t* pcap = nullptr;
  pcap_dumper_t* dumper = nullptr;

  // Frees the handles; the temporary file stays for the caller to rename or remove.
  ~open_file() {
    if (dumper) pcap_dump_close(dumper);
    if (pcap) pcap_close(pcap);
  }
};

pcap_writer::pcap_writer(std::string path) : path_(std::move(path)), file_(std::make_unique<open_file>()) {
  std::string temp = path_ + ".tmpXXXXXX";
  const int fd = mkstemp(temp.data());
  if (fd < 0) throw pcap_error(failure(path_, std::string("cannot create a temporary file: ") + std::strerror(errno)));
  file_->temp_path = temp;
  FILE* stream = fchmod(fd, 0644) == 0 ? fdopen(fd, "wb") : nullptr;
  if (!stream) {
    const int error = errno;
    ::close(fd);
    unlink(temp.c_str());
    throw pcap_error(failure(path_, std::string("cannot open a temporary file: ") + std::strerror(error)));
  }
  file_->pcap = pcap_open_dead_with_tstamp_precision(DLT_EN10MB, max_frame_size, PCAP_TSTAMP_PRECISION_NANO);
  file_->dumper = file_->pcap ? pcap_dump_fopen(file_->pcap, stream) : nullptr;
  if (!file_->dumper) {
    std::fclose(stream);
    unlink(temp.c_str());
    throw pcap_error(failure(path_, file_->pcap ? pcap_geterr(file_->pcap) : "libpcap cannot start a file"));
  }
}

pcap_writer::~pcap_writer() {
  if (!file_) return;
  const std::string temp = file_->temp_path;
  file_.reset();
  unlink(temp.c_str());
}

void pcap_writer::write(std::span<const std::uint8_t> frame, std::chrono::nanoseconds timestamp) {
  if (!file_) throw pcap_error(failure(path_, "written after close()"));
  if (frame.size() > max_frame_size) throw pcap_error(failure(path_, "frame larger than 262144 bytes"));
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(timestamp);
  pcap_pkthdr header{};
  header.ts.tv_sec = seconds.count();
  header.ts.tv_usec = (timestamp - seconds).count();  // nanoseconds in a nanosecond-resolution file
  header.caplen = header.len = static_cast<bpf_u_int32>(frame.size());
  pcap_dump(reinterpret_cast<u_char*>(file_->dumper), &header, frame.data());
}

// Without fsync: the rename keeps a crashed process from leaving a partial
// file; surviving power loss is not needed for test and tool output.
void pcap_writer::close() {
  if (!file_) return;
  const bool written = pcap_dump_flush(file_->dumper) == 0 && !std::ferror(pcap_dump_file(file_->dumper));
  const int write_error = errno;
  const std::string temp = file_->temp_path;
  file_.reset();
  if (!written || std::rename(temp.c_str(), path_.c_str()) != 0) {
    const int error = written ? errno : write_error;
    unlink(temp.c_str());
    throw pcap_error(
        failure(path_, std::string(written ? "cannot rename into place: " : "write failed: ") + std::strerror(error)));
  }
}

void write_pcap(const std::string& path, std::span<const pcap_record> records) {
  pcap_writer writer(path);
  for (const pcap_record& record : records) writer.write(record.frame, record.timestamp);
  writer.close();
}

}  // namespace pkt
