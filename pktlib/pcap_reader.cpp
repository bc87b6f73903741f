#include <pcap/pcap.h>

#include <memory>

#include "pktlib/pcap_file.h"

namespace pkt {

std::vector<pcap_record> read_pcap(const std::string& path) {
  const std::string where = "pcap file '" + path + "': ";
  char error[PCAP_ERRBUF_SIZE] = "";
  std::unique_ptr<pcap_t, decltype(&pcap_close)> pcap(
      pcap_open_offline_with_tstamp_precision(path.c_str(), PCAP_TSTAMP_PRECISION_NANO, error), &pcap_close);
  if (!pcap) throw pcap_error(where + error);
  if (const int link = pcap_datalink(pcap.get()); link != DLT_EN10MB) {
    const char* name = pcap_datalink_val_to_name(link);
    throw pcap_error(where + "link type " + (name ? name : std::to_string(link)) + " is not Ethernet");
  }

  std::vector<pcap_record> records;
  for (std::size_t number = 1;; ++number) {
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    const int status = pcap_next_ex(pcap.get(), &header, &data);
    if (status == PCAP_ERROR_BREAK) break;  // end of file
    const std::string record = where + "record " + std::to_string(number) + ": ";
    if (status != 1) throw pcap_error(record + pcap_geterr(pcap.get()));
    if (header->caplen < header->len) {
      throw pcap_error(record + "holds " + std::to_string(header->caplen) + " of its " + std::to_string(header->len) +
                       " bytes (cut by the capture's snap length)");
    }
    records.push_back(
        pcap_record{std::chrono::seconds(header->ts.tv_sec) + std::chrono::nanoseconds(header->ts.tv_usec),
                    std::vector<std::uint8_t>(data, data + header->caplen)});
  }
  return records;
}

}  // namespace pkt
