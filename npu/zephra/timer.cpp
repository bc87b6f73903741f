#include "timer.h"

#include "arch_tie.h"

void timer_get_timestamp(std::uint32_t* timestamp_h, std::uint32_t* timestamp_l) {
  const std::uint32_t first_seconds = RDC(COP_TIME_SECONDS);
  std::uint32_t low = RDC(COP_TIME_LOW);
  const std::uint32_t seconds = RDC(COP_TIME_SECONDS);
  if (seconds != first_seconds) low = RDC(COP_TIME_LOW);
  *timestamp_h = seconds;
  *timestamp_l = low;
}

std::uint32_t timer_seconds() { return RDC(COP_TIME_SECONDS); }

std::uint8_t timer_30sec() { return static_cast<std::uint8_t>((timer_seconds() * 17) >> 9); }
