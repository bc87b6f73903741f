// Short descriptions of global counter and drop counter numbers, for reports
// and test messages. The program numbers its counters; this is the one table
// that says what the numbers mean.
#pragma once

#include <cstdint>
#include <string>

namespace names {

// The description of counter n, or null for a number without one.
const char* counter_description(std::uint32_t n);

// "0x294 (fabric header type without a handler)", or "0x294" alone.
std::string counter_label(std::uint32_t n);

}  // namespace names
