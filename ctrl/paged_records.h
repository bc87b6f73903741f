// The records of the paged tables that forwarding chains point into: one
// index allocator per page descriptor, so tables that share a descriptor
// (RLDI and RX_ADJ, NRLDI and the TE adjacencies) never hand out one index
// twice. Ids are typed by table; index 0 is never handed out, so that a
// zero field names no record.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>

#include "ctrl/error.h"
#include "ctrl/index_pool.h"
#include "dplane/infra/lookup_tables.h"
#include "model/npu.h"

namespace ctrl {

template <std::uint32_t Tpd, class Table>
struct record_id {
  static constexpr std::uint32_t TPD = Tpd;
  std::uint32_t index = 0;
  bool operator==(const record_id&) const = default;
};
using rldi_id = record_id<TPD_IDX_L3_RLDI_ING, struct rldi_table>;
using nrldi_id = record_id<TPD_IDX_L3_NRLDI_ING, struct nrldi_table>;
using rx_adj_id = record_id<TPD_IDX_RX_ADJ_ING, struct rx_adj_table>;
using tx_adj_id = record_id<TPD_IDX_TX_ADJ, struct tx_adj_table>;
using nh_index_id = record_id<TPD_IDX_NHINDEX, struct nh_index_table>;

template <class Id>
struct allocated {
  error err = error::none;
  Id id{};
};

class paged_records {
 public:
  explicit paged_records(model::npu& n);

  // table_full when the table has no free index.
  template <class Id>
  allocated<Id> allocate() {
    const std::optional<std::uint32_t> index = pools_.at(Id::TPD).take();
    return index ? allocated<Id>{error::none, Id{*index}} : allocated<Id>{error::table_full, {}};
  }
  // Clears the record and frees its index. not_found: not allocated.
  template <class Id>
  error release(Id id) {
    return release(Id::TPD, id.index);
  }
  // The whole record or its start. not_found: not allocated; bad_size: more
  // than the table's record.
  template <class Id>
  error write(Id id, std::span<const std::uint8_t> contents) {
    return write(Id::TPD, id.index, contents);
  }

  // For the chassis owner, which gives one index on every NPU.
  std::optional<std::uint32_t> lowest_free_from(std::uint32_t tpd, std::uint32_t from) const;
  bool take_at(std::uint32_t tpd, std::uint32_t index) { return pools_.at(tpd).take_at(index); }
  error check_write(std::uint32_t tpd, std::uint32_t index, std::span<const std::uint8_t> contents) const;
  error write(std::uint32_t tpd, std::uint32_t index, std::span<const std::uint8_t> contents);
  error release(std::uint32_t tpd, std::uint32_t index);

 private:
  model::npu& n_;
  std::map<std::uint32_t, index_pool> pools_;  // by page descriptor
};

}  // namespace ctrl
