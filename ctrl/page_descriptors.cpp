#include "page_descriptors.h"

#include "dplane/infra/lookup_tables.h"

namespace ctrl {

namespace {
constexpr std::uint32_t MAX_RECORD_INDEX = 0xFFFFFF;  // 24 bits of the paged command word
}

error write_page_descriptor(model::npu& n, std::uint32_t tpd_idx, std::uint32_t base, std::uint32_t record_bytes) {
  if (tpd_idx >= model::page_descriptors::COUNT) return error::out_of_range;
  if (record_bytes == 0) return error::bad_size;
  n.pages().set(tpd_idx, {base, record_bytes});
  return error::none;
}

std::optional<std::uint32_t> paged_record_address(model::npu& n, std::uint32_t tpd_idx, std::uint32_t index) {
  if (index > MAX_RECORD_INDEX) return std::nullopt;
  return n.pages().record_address(tpd_idx, index);
}

}  // namespace ctrl
