#include "fab_hdr_report.h"

#include <cstdio>

#include "fab_hdr.h"

namespace lcsim {

namespace {

using dc3 = dc3_nph_st;

template <class F>
void field(std::vector<std::string>& out, const dc3& hdr, const char* name) {
  char line[64];
  std::snprintf(line, sizeof line, "%s 0x%X", name, static_cast<unsigned>(F::get(hdr)));
  out.emplace_back(line);
}

}  // namespace

std::vector<std::string> fabric_header_fields(const std::vector<std::uint8_t>& frame) {
  std::vector<std::string> out;
  if (frame.size() < sizeof(dc3)) return out;
  dc3 hdr;
  std::copy(frame.begin(), frame.begin() + sizeof(dc3), hdr.bytes);
  field<dc3::dc3_version>(out, hdr, "dc3_version");
  field<dc3::dc3_pkt_type>(out, hdr, "dc3_pkt_type");
  field<dc3::dc3_plen>(out, hdr, "dc3_plen");
  field<dc3::dc3_cos>(out, hdr, "dc3_cos");
  field<dc3::dc3_sfp_valid>(out, hdr, "dc3_sfp_valid");
  field<dc3::dc3_fgid_or_sfp>(out, hdr, "dc3_fgid_or_sfp");
  field<dc3::dc3_rbh>(out, hdr, "dc3_rbh");
  field<dc3::dc3_checksum>(out, hdr, "dc3_checksum");
  field<dc3::nph_type>(out, hdr, "nph_type");
  field<dc3::ptrace>(out, hdr, "ptrace");
  field<dc3::critical_inject>(out, hdr, "critical_inject");
  field<dc3::nph_length>(out, hdr, "nph_length");
  return out;
}

}  // namespace lcsim
