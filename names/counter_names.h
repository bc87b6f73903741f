// Short descriptions of global counter and drop counter numbers, for reports
// and test messages, read from the program's counter list
// (include/global_counters.def).
#pragma once

#include <cstdint>
#include <string>

namespace names {

// The description of counter n, or null for a number without one.
const char* counter_description(std::uint32_t n);

// "0x294 (fabric header type without a handler)", or "0x294" alone; a
// counter of a block indexed by port adds the port: "0x12 (... by logical port 2)".
std::string counter_label(std::uint32_t n);

}  // namespace names
