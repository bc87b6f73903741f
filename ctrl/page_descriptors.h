// The table page descriptors, through which the TLU finds the records of the
// paged tables. The control side lays the paged tables out at start: each
// descriptor in use gets a region of its own.
#pragma once

#include <cstdint>
#include <optional>

#include "ctrl/error.h"
#include "model/npu.h"

namespace ctrl {

inline constexpr std::uint32_t PAGED_TABLES_BASE = 0x90000000;
inline constexpr std::uint32_t PAGED_TABLE_REGION = 0x01000000;

error write_page_descriptor(model::npu& n, std::uint32_t tpd_idx, std::uint32_t base, std::uint32_t record_bytes);
// Table-memory address of record `index` behind tpd_idx; none if the
// descriptor is not written.
std::optional<std::uint32_t> paged_record_address(model::npu& n, std::uint32_t tpd_idx, std::uint32_t index);

}  // namespace ctrl
