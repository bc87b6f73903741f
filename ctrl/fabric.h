// The fabric of a chassis: which NPU serves each unicast destination (VQI),
// and which NPUs get a copy of a frame to each multicast group.
#pragma once

#include <cstdint>
#include <vector>

#include "error.h"
#include "model/chassis.h"

namespace ctrl {

// Frames to vqi go to NPU npu_id. out_of_range for a VQI beyond 11 bits or
// an NPU the chassis lacks.
error map_vqi(model::chassis& chassis, std::uint32_t vqi, std::uint32_t npu_id);

// Frames to fabric group fgid go to each NPU of npus, which replaces the
// group's members. out_of_range for an FGID beyond 24 bits or an NPU the
// chassis lacks, bad_size for no NPU, exists for an NPU named twice; nothing changes
// on an error.
error map_fabric_group(model::chassis& chassis, std::uint32_t fgid, const std::vector<std::uint32_t>& npus);

}  // namespace ctrl
