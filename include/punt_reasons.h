// The punt reasons by name, one constant per row of punt_reasons.def.
#pragma once

#include <cstdint>

enum punt_reason_e : std::uint32_t {
#define PUNT_REASON(name, number, meaning) name = number,
#include "punt_reasons.def"
#undef PUNT_REASON
};
