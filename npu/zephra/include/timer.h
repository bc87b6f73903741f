// The clock: whole seconds in register 132, a low word in register 133.
#pragma once

#include <cstdint>

// Reads seconds, low word, seconds; if the seconds moved between the two
// reads, the low word is read again so that it belongs to the later second.
void timer_get_timestamp(std::uint32_t* timestamp_h, std::uint32_t* timestamp_l);
std::uint32_t timer_seconds();
// A coarse clock in units of about 30 seconds.
std::uint8_t timer_30sec();
