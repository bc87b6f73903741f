#include "paged_records.h"

#include <vector>

#include "ctrl/page_descriptors.h"
#include "ctrl/protected_records.h"

namespace ctrl {

namespace {

constexpr std::uint32_t MAX_RECORD_INDEX = 0xFFFFFF;  // 24 bits of the paged command word
constexpr std::uint32_t CHAIN_PAGES[] = {rldi_id::TPD, nrldi_id::TPD, rx_adj_id::TPD, tx_adj_id::TPD, nh_index_id::TPD};

std::uint32_t record_bytes(std::uint32_t tpd) {
  for (const lookup_page_st& p : LOOKUP_PAGES) {
    if (p.tpd_idx == tpd) return p.record_bytes;
  }
  return 0;
}

}  // namespace

paged_records::paged_records(model::npu& n) : n_(n) {
  for (std::uint32_t tpd : CHAIN_PAGES) {
    const std::uint32_t count = std::min(PAGED_TABLE_REGION / record_bytes(tpd), MAX_RECORD_INDEX + 1);
    pools_.try_emplace(tpd, 1, count - 1);
  }
}

std::optional<std::uint32_t> paged_records::lowest_free_from(std::uint32_t tpd, std::uint32_t from) const {
  return pools_.at(tpd).lowest_free_from(from);
}

error paged_records::check_write(std::uint32_t tpd, std::uint32_t index, std::span<const std::uint8_t> contents) const {
  if (!pools_.at(tpd).in_use(index)) return error::not_found;
  return contents.size() > record_bytes(tpd) ? error::bad_size : error::none;
}

error paged_records::write(std::uint32_t tpd, std::uint32_t index, std::span<const std::uint8_t> contents) {
  if (const error e = check_write(tpd, index, contents); e != error::none) return e;
  write_record(n_, paged_record_address(n_, tpd, index).value(), contents);
  return error::none;
}

error paged_records::release(std::uint32_t tpd, std::uint32_t index) {
  if (!pools_.at(tpd).in_use(index)) return error::not_found;
  write_record(n_, paged_record_address(n_, tpd, index).value(), std::vector<std::uint8_t>(record_bytes(tpd)));
  pools_.at(tpd).give(index);
  return error::none;
}

}  // namespace ctrl
