#include "report.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "dist_hdr.h"
#include "fab_hdr.h"
#include "fab_hdr_report.h"
#include "model/stats_memory.h"
#include "names/counter_names.h"
#include "platform/shared/placeholder.h"

namespace lcsim {

namespace {

// The vector of a line packet, as the parser (or a given header) set it.
std::string vector_of(const model::packet_outcome& o) {
  using L = dist_hdr_line_st;
  L hdr;
  std::memcpy(hdr.bytes, o.dist_hdr.data(), sizeof hdr.bytes);
  if (L::dst_format::get(hdr) != DST_FORMAT_LINE) return "";
  if (!L::rt_result_valid::get(hdr)) return "no vector, ";
  return "vector " + std::to_string(L::rt_result::get(hdr)) + ", ";
}

std::string ending(const model::packet_outcome& o) {
  std::string s = vector_of(o);
  if (o.placeholder >= 0) {
    const char* name = unbuilt_handler_name(static_cast<std::uint32_t>(o.placeholder));
    s += std::string("reached ") + (name ? name : "?") + " (not built yet), ";
  }
  if (o.end == model::packet_end::contract_breach) return s + "contract breach: " + o.note;
  return s + packet_fate(o);
}

void print_fields(std::FILE* out, const std::vector<std::uint8_t>& frame) {
  for (const std::string& f : fabric_header_fields(frame)) std::fprintf(out, "         %s\n", f.c_str());
}

// Where a frame left to: a line port, or the fabric's VQI or group.
std::string destination_of(const model::sent_frame& f) {
  if (f.to == model::frame_destination::line) return "line port " + std::to_string(f.port);
  const bool unicast = f.bytes.size() >= sizeof(dc3_nph_st) &&
                       dc3_nph_st::dc3_sfp_valid::get(*reinterpret_cast<const dc3_nph_st*>(f.bytes.data()));
  return std::string("the fabric, ") + (unicast ? "VQI " : "group ") + std::to_string(f.port);
}

// The fabric header a packet arrived with, the frames it sent, and those
// of the fabric's headers.
void print_frames(std::FILE* out, const packet_result& r) {
  dist_hdr_fabric_st hdr;
  std::memcpy(hdr.bytes, r.outcome.dist_hdr.data(), sizeof hdr.bytes);
  if (r.input && dist_hdr_fabric_st::dst_format::get(hdr) == DST_FORMAT_FABRIC) {
    std::fprintf(out, "       arrived with fabric header:\n");
    print_fields(out, r.input->packet.bytes);
  }
  for (const model::sent_frame& f : r.outcome.sent) {
    const bool fabric = f.to == model::frame_destination::fabric;
    std::fprintf(out, "       sent %zu bytes to %s%s\n", f.bytes.size(), destination_of(f).c_str(),
                 fabric ? ", header:" : "");
    if (fabric) print_fields(out, f.bytes);
  }
}

}  // namespace

std::string packet_fate(const model::packet_outcome& o) {
  const auto to_host = [](const model::sent_frame& f) { return f.to == model::frame_destination::host; };
  if (std::any_of(o.sent.begin(), o.sent.end(), to_host)) return "punted";
  if (o.end == model::packet_end::sent) return "sent";
  if (o.drop_counter) return "dropped " + names::counter_label(*o.drop_counter);
  return model::packet_end_name(o.end);
}

void print_report(std::FILE* out, ctrl::chassis_tables& tables, const std::vector<packet_result>& results) {
  std::fprintf(out, "Packets\n");
  for (const packet_result& r : results) {
    std::fprintf(out, "  #%-3llu npu %u  %-52s -> %s\n", static_cast<unsigned long long>(r.outcome.seq), r.outcome.npu,
                 r.input ? r.input->description.c_str() : "from the fabric", ending(r.outcome).c_str());
    print_frames(out, r);
  }
  std::fprintf(out, "Counters\n");
  for (std::uint32_t n = 0; n < tables.size(); ++n) {
    std::map<std::uint32_t, std::uint64_t> moved;
    for (std::uint32_t i = 0; i < model::GLOBAL_COUNTER_COUNT; ++i) {
      if (std::uint64_t v = tables.npu(n).stats().global(i)) moved[i] = v;
    }
    for (const auto& [index, value] : moved) {
      std::fprintf(out, "  npu %u  global %-48s %llu\n", n, names::counter_label(index).c_str(),
                   static_cast<unsigned long long>(value));
    }
  }
}

}  // namespace lcsim
