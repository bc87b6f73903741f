#include "fabric.h"

namespace ctrl {

error map_vqi(model::chassis& chassis, std::uint32_t vqi, std::uint32_t npu_id) {
  if (vqi >= model::chassis::VQI_COUNT || npu_id >= chassis.size()) return error::out_of_range;
  chassis.map_vqi(vqi, npu_id);
  return error::none;
}

}  // namespace ctrl
