// The control side of a whole chassis: one npu_tables per NPU, and the
// writes that must be identical on every NPU. A route, a chain record or a
// bundle has the same index and the same member order on every NPU, so that
// an index chosen by one NPU names the same thing on the next; the fabric's
// VQI map and groups are the chassis's own. The NPUs are written only
// through this owner, so they hold the same and answer alike: a call that
// NPU 0 refuses is refused with nothing written anywhere.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "ctrl/npu_tables.h"
#include "model/chassis.h"

namespace ctrl {

struct vqi_added {
  error err = error::none;
  std::uint32_t vqi = 0;
};

class chassis_tables {
 public:
  explicit chassis_tables(model::chassis& chassis);

  std::size_t size() const { return npus_.size(); }
  npu_tables& npu(std::uint32_t i) { return *npus_.at(i); }

  error add_vrf(vrf_id vrf);
  error add_prefix(const route_prefix& prefix, const route_leaf& leaf);
  error replace_prefix(const route_prefix& prefix, const route_leaf& leaf);
  error delete_prefix(const route_prefix& prefix);

  // An index free on every NPU, taken on each.
  template <class Id>
  allocated<Id> allocate() {
    const std::optional<std::uint32_t> index = common_free_index(Id::TPD);
    if (!index) return {error::table_full, {}};
    for (auto& n : npus_) n->records().take_at(Id::TPD, *index);
    return {error::none, Id{*index}};
  }
  template <class Id>
  error write(Id id, std::span<const std::uint8_t> contents) {
    return write_record(Id::TPD, id.index, contents);
  }
  template <class Id>
  error release(Id id) {
    return release_record(Id::TPD, id.index);
  }

  // Bundle bundle_id with the same members in the same order on every NPU;
  // member i's port lies on NPU member_npus[i], the one NPU where the member
  // is local. bad_size: not one NPU per member; out_of_range: an NPU the
  // chassis lacks, or what a single NPU refuses.
  error write_bundle(std::uint32_t bundle_id, const bundle& b, std::span<const std::uint32_t> member_npus);
  error remove_bundle(std::uint32_t bundle_id);

  // Frames to vqi go to NPU npu_id. out_of_range for a VQI beyond 11 bits or
  // an NPU the chassis lacks.
  error map_vqi(std::uint32_t vqi, std::uint32_t npu_id);
  // A VQI that no NPU serves yet, mapped to NPU npu_id: the fabric
  // destination of a port or bundle member there. out_of_range for an NPU
  // the chassis lacks; table_full when every VQI is taken.
  vqi_added add_vqi(std::uint32_t npu_id);
  // No NPU serves the VQI any more. not_found: not in use.
  error remove_vqi(std::uint32_t vqi);
  // Frames to fabric group fgid go to each NPU of npus, which replaces the
  // group's members. out_of_range for an FGID beyond 24 bits or an NPU the
  // chassis lacks, bad_size for no NPU, exists for an NPU named twice.
  error map_fabric_group(std::uint32_t fgid, const std::vector<std::uint32_t>& npus);

 private:
  std::optional<std::uint32_t> common_free_index(std::uint32_t tpd) const;
  error write_record(std::uint32_t tpd, std::uint32_t index, std::span<const std::uint8_t> contents);
  error release_record(std::uint32_t tpd, std::uint32_t index);
  template <class Change>
  error on_every_npu(Change change);

  model::chassis& chassis_;
  std::vector<std::unique_ptr<npu_tables>> npus_;
  index_pool vqis_{0, model::chassis::VQI_COUNT};
};

}  // namespace ctrl
