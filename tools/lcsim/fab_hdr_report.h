// The fabric header of a frame, field by field, for the report.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lcsim {

// "name value" for each field of the header's fixed part and common bytes;
// empty for a frame shorter than a header.
std::vector<std::string> fabric_header_fields(const std::vector<std::uint8_t>& frame);

}  // namespace lcsim
