// Bundles (link aggregation) of one NPU, as the control side writes them:
// the bundle record by bundle ID and a block of member records per bundle.
// The egress NPU reads member base + lagm, with lagm up to 63, so every
// bundle owns a block of 64 member records, and the records past its member
// list are written invalid: a member number beyond the list reads an invalid
// member, never another bundle's. The page descriptors must be installed.
#pragma once

#include <cstdint>
#include <vector>

#include "ctrl/error.h"
#include "dplane/infra/lookup_tables.h"
#include "model/npu.h"

namespace ctrl {

// The bundle table's room, up to the table behind it.
inline constexpr std::uint32_t BUNDLE_COUNT =
    (TABLE_BASE_TBPG_ANCHOR_TABLE - TABLE_BASE_LAG_INFO_ING) / TABLE_STRIDE_LAG_INFO_ING;
// Member numbers travel in 6 bits (lagm).
inline constexpr std::uint32_t BUNDLE_MEMBER_BLOCK = 64;

struct bundle_member {
  std::uint32_t vqi = 0;      // fabric destination of the member's NPU
  std::uint16_t np_port = 0;  // the port on that NPU: egr_port_id
  bool local = false;         // the port lies on this NPU
  bool remote_rack = false;
  std::uint8_t selector = 0;
};

struct bundle {
  std::uint16_t name_id = 0;
  bool truncate_hash = false;  // members chosen by the low 8 bits of the hash
  std::vector<bundle_member> members;
};

class bundles {
 public:
  explicit bundles(model::npu& n) : n_(n) {}

  // Adds bundle_id, or replaces it while threads read it: the new members
  // are written before the bundle record that counts them, and the records
  // past the list are cleared after it. out_of_range: a bundle ID beyond the
  // table or a VQI beyond the fabric's; bad_size: no members or more than
  // 64. Nothing is written on error.
  error write(std::uint32_t bundle_id, const bundle& b);
  // The bundle record first, then its members: the block is free again.
  // not_found: no such bundle.
  error remove(std::uint32_t bundle_id);

 private:
  model::npu& n_;
};

}  // namespace ctrl
