#include "chassis_tables.h"

#include <algorithm>

namespace ctrl {

chassis_tables::chassis_tables(model::chassis& chassis) : chassis_(chassis) {
  for (std::size_t i = 0; i < chassis.size(); ++i) npus_.push_back(std::make_unique<npu_tables>(chassis.at(i)));
}

// Every NPU holds what every other holds, so NPU 0's answer stands for all:
// the change goes to the others only when NPU 0 took it.
template <class Change>
error chassis_tables::on_every_npu(Change change) {
  for (auto& n : npus_) {
    if (const error e = change(*n); e != error::none) return e;
  }
  return error::none;
}

error chassis_tables::add_vrf(vrf_id vrf) {
  return on_every_npu([&](npu_tables& n) { return n.routes().add_vrf(vrf); });
}

error chassis_tables::add_prefix(const route_prefix& prefix, const route_leaf& leaf) {
  return on_every_npu([&](npu_tables& n) { return n.routes().add_prefix(prefix, leaf); });
}

error chassis_tables::replace_prefix(const route_prefix& prefix, const route_leaf& leaf) {
  return on_every_npu([&](npu_tables& n) { return n.routes().replace_prefix(prefix, leaf); });
}

error chassis_tables::delete_prefix(const route_prefix& prefix) {
  return on_every_npu([&](npu_tables& n) { return n.routes().delete_prefix(prefix); });
}

std::optional<std::uint32_t> chassis_tables::common_free_index(std::uint32_t tpd) const {
  std::optional<std::uint32_t> index = npus_.front()->records().lowest_free_from(tpd, 0);
  for (bool moved = true; index && moved;) {
    moved = false;
    for (const auto& n : npus_) {
      const std::optional<std::uint32_t> free = n->records().lowest_free_from(tpd, *index);
      if (free != index) {
        index = free;
        moved = true;
        break;
      }
    }
  }
  return index;
}

error chassis_tables::write_record(std::uint32_t tpd, std::uint32_t index, std::span<const std::uint8_t> contents) {
  for (const auto& n : npus_) {
    if (const error e = n->records().check_write(tpd, index, contents); e != error::none) return e;
  }
  return on_every_npu([&](npu_tables& n) { return n.records().write(tpd, index, contents); });
}

error chassis_tables::release_record(std::uint32_t tpd, std::uint32_t index) {
  for (const auto& n : npus_) {
    if (n->records().check_write(tpd, index, {}) != error::none) return error::not_found;
  }
  return on_every_npu([&](npu_tables& n) { return n.records().release(tpd, index); });
}

error chassis_tables::write_bundle(std::uint32_t bundle_id, const bundle& b,
                                   std::span<const std::uint32_t> member_npus) {
  if (member_npus.size() != b.members.size()) return error::bad_size;
  if (std::any_of(member_npus.begin(), member_npus.end(), [&](std::uint32_t id) { return id >= npus_.size(); })) {
    return error::out_of_range;
  }
  for (std::uint32_t id = 0; id < npus_.size(); ++id) {
    bundle held = b;
    for (std::size_t i = 0; i < held.members.size(); ++i) held.members[i].local = member_npus[i] == id;
    if (const error e = npus_[id]->lags().write(bundle_id, held); e != error::none) return e;
  }
  return error::none;
}

error chassis_tables::remove_bundle(std::uint32_t bundle_id) {
  return on_every_npu([&](npu_tables& n) { return n.lags().remove(bundle_id); });
}

error chassis_tables::map_vqi(std::uint32_t vqi, std::uint32_t npu_id) {
  if (vqi >= model::chassis::VQI_COUNT || npu_id >= npus_.size()) return error::out_of_range;
  vqis_.take_at(vqi);
  chassis_.map_vqi(vqi, npu_id);
  return error::none;
}

vqi_added chassis_tables::add_vqi(std::uint32_t npu_id) {
  if (npu_id >= npus_.size()) return {error::out_of_range};
  const std::optional<std::uint32_t> vqi = vqis_.take();
  if (!vqi) return {error::table_full};
  chassis_.map_vqi(*vqi, npu_id);
  return {error::none, *vqi};
}

error chassis_tables::remove_vqi(std::uint32_t vqi) {
  if (!vqis_.give(vqi)) return error::not_found;
  chassis_.unmap_vqi(vqi);
  return error::none;
}

error chassis_tables::map_fabric_group(std::uint32_t fgid, const std::vector<std::uint32_t>& npus) {
  if (fgid >= model::chassis::FGID_COUNT) return error::out_of_range;
  if (npus.empty()) return error::bad_size;
  if (std::any_of(npus.begin(), npus.end(), [&](std::uint32_t id) { return id >= npus_.size(); })) {
    return error::out_of_range;
  }
  std::vector<std::uint32_t> sorted = npus;
  std::sort(sorted.begin(), sorted.end());
  if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) return error::exists;
  chassis_.map_fabric_group(fgid, npus);
  return error::none;
}

}  // namespace ctrl
