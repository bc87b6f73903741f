// What a parsed line frame promises the program, checked against the frame's
// own bytes and the fixture's set-up rather than against the parser's code:
// the vector is one of the list, offsets lie inside the frame, the interface
// found is one configured on the port, and a clean vector comes only with the
// decode bits, header and destination MAC that allow it.
#pragma once

#include <cstdint>
#include <span>

#include "dist_hdr.h"

namespace fuzz {

// The promise the header breaks, or nullptr when it keeps them all.
const char* broken_promise(std::uint32_t port, std::span<const std::uint8_t> frame, const dist_hdr_line_st& hdr);

}  // namespace fuzz
