// The ingress vectors by name, one constant per row of ingress_vectors.def.
#pragma once

#include <cstdint>

enum ingress_vector_e : std::uint32_t {
#define INGRESS_VECTOR(name, number, meaning) name = number,
#include "ingress_vectors.def"
#undef INGRESS_VECTOR
};
