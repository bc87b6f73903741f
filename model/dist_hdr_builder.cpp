#include "dist_hdr_builder.h"

#include <cstring>

namespace model {

dist_hdr_builder dist_hdr_builder::format(std::uint32_t dst_format) {
  dist_hdr_builder h;
  h.set<dist_hdr_line_st::dst_format>(dst_format);
  return h;
}

dist_hdr_builder dist_hdr_builder::line(std::uint32_t vector) {
  dist_hdr_builder h = format(DST_FORMAT_LINE);
  h.set<dist_hdr_line_st::rt_result>(vector).set<dist_hdr_line_st::rt_result_valid>(1);
  return h;
}

dist_hdr_builder dist_hdr_builder::fabric() { return format(DST_FORMAT_FABRIC); }

std::array<std::uint8_t, 32> dist_hdr_builder::bytes() const {
  std::array<std::uint8_t, 32> out{};
  std::memcpy(out.data(), hdr_.bytes, out.size());
  return out;
}

}  // namespace model
