#include "fabric.h"

#include <algorithm>

namespace ctrl {

error map_vqi(model::chassis& chassis, std::uint32_t vqi, std::uint32_t npu_id) {
  if (vqi >= model::chassis::VQI_COUNT || npu_id >= chassis.size()) return error::out_of_range;
  chassis.map_vqi(vqi, npu_id);
  return error::none;
}

error map_fabric_group(model::chassis& chassis, std::uint32_t fgid, const std::vector<std::uint32_t>& npus) {
  if (fgid >= model::chassis::FGID_COUNT) return error::out_of_range;
  if (npus.empty()) return error::bad_size;
  if (std::any_of(npus.begin(), npus.end(), [&](std::uint32_t id) { return id >= chassis.size(); })) {
    return error::out_of_range;
  }
  std::vector<std::uint32_t> sorted = npus;
  std::sort(sorted.begin(), sorted.end());
  if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) return error::exists;
  chassis.map_fabric_group(fgid, npus);
  return error::none;
}

}  // namespace ctrl
