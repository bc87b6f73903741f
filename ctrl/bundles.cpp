#include "bundles.h"

#include <span>

#include "ctrl/page_descriptors.h"
#include "ctrl/protected_records.h"
#include "fwc_lag.h"
#include "model/chassis.h"

namespace ctrl {

namespace {

using info = lag_tbl_info_fields_st;
using member = lag_mem_info_fields_st;

constexpr std::uint32_t bundle_address(std::uint32_t bundle_id) {
  return TABLE_BASE_LAG_INFO_ING + bundle_id * TABLE_STRIDE_LAG_INFO_ING;
}
constexpr std::uint32_t first_member(std::uint32_t bundle_id) { return bundle_id * BUNDLE_MEMBER_BLOCK; }

void write_member(model::npu& n, std::uint32_t bundle_id, std::uint32_t number, const member& rec) {
  write_record(n, paged_record_address(n, TPD_IDX_LAG_ING, first_member(bundle_id) + number).value(), rec.bytes);
}

member member_record(const bundle& b, const bundle_member& m) {
  member rec{};
  member::bf::valid::set(rec, 1);
  member::bf::np_local::set(rec, m.local);
  member::bf::remote_rack::set(rec, m.remote_rack);
  member::lag_selector::set(rec, m.selector);
  member::bdl_name_id::set(rec, b.name_id);
  member::vqi_voq::set(rec, m.vqi);
  member::np_port_id::set(rec, m.np_port);
  return rec;
}

info bundle_record(std::uint32_t bundle_id, const bundle& b) {
  info rec{};
  info::valid::set(rec, 1);
  info::truncate_hash::set(rec, b.truncate_hash);
  info::global_mem_base_ptr::set(rec, first_member(bundle_id));
  info::num_members_global::set(rec, static_cast<std::uint32_t>(b.members.size()));
  return rec;
}

void clear_members(model::npu& n, std::uint32_t bundle_id, std::uint32_t from) {
  for (std::uint32_t i = from; i < BUNDLE_MEMBER_BLOCK; ++i) write_member(n, bundle_id, i, member{});
}

error check(std::uint32_t bundle_id, const bundle& b) {
  if (bundle_id >= BUNDLE_COUNT) return error::out_of_range;
  if (b.members.empty() || b.members.size() > BUNDLE_MEMBER_BLOCK) return error::bad_size;
  for (const bundle_member& m : b.members) {
    if (m.vqi >= model::chassis::VQI_COUNT) return error::out_of_range;
  }
  return error::none;
}

}  // namespace

error bundles::write(std::uint32_t bundle_id, const bundle& b) {
  if (const error e = check(bundle_id, b); e != error::none) return e;
  const auto count = static_cast<std::uint32_t>(b.members.size());
  for (std::uint32_t i = 0; i < count; ++i) write_member(n_, bundle_id, i, member_record(b, b.members[i]));
  write_record(n_, bundle_address(bundle_id), bundle_record(bundle_id, b).bytes);
  clear_members(n_, bundle_id, count);
  return error::none;
}

error bundles::remove(std::uint32_t bundle_id) {
  if (bundle_id >= BUNDLE_COUNT) return error::out_of_range;
  info rec{};
  n_.memory().read(n_.memory().translate(bundle_address(bundle_id)), rec.bytes);
  if (!info::valid::get(rec)) return error::not_found;
  write_record(n_, bundle_address(bundle_id), info{}.bytes);
  clear_members(n_, bundle_id, 0);
  return error::none;
}

}  // namespace ctrl
