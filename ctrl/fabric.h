// The fabric of a chassis: which NPU serves each unicast destination (VQI).
#pragma once

#include <cstdint>

#include "error.h"
#include "model/chassis.h"

namespace ctrl {

// Frames to vqi go to NPU npu_id. out_of_range for a VQI beyond 11 bits or
// an NPU the chassis lacks.
error map_vqi(model::chassis& chassis, std::uint32_t vqi, std::uint32_t npu_id);

}  // namespace ctrl
