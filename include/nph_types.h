// The fabric header types by name, one constant per row of nph_types.def.
#pragma once

#include <cstdint>

enum nph_type_e : std::uint32_t {
#define NPH_TYPE(name, number, meaning) name = number,
#include "nph_types.def"
#undef NPH_TYPE
};
