// The TLU's table page descriptors: for each tpd_idx, where a paged table
// starts in table memory and how large its records are. The control side
// writes them while threads read them, so each is one atomic word.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

#include "tlu_defs.h"

namespace model {

class page_descriptors {
 public:
  static constexpr std::uint32_t COUNT = 64;  // tpd_idx is 6 bits

  struct descriptor {
    std::uint32_t base = 0;         // table-memory address of record 0
    std::uint32_t record_size = 0;  // bytes
  };

  void set(std::uint32_t tpd_idx, descriptor d) {
    slots_[tpd_idx % COUNT].store((std::uint64_t{d.base} << 32) | d.record_size, std::memory_order_release);
  }
  // The descriptor, if the control side has written it.
  std::optional<descriptor> get(std::uint32_t tpd_idx) const {
    const std::uint64_t v = slots_[tpd_idx % COUNT].load(std::memory_order_acquire);
    if (static_cast<std::uint32_t>(v) == 0) return std::nullopt;
    return descriptor{static_cast<std::uint32_t>(v >> 32), static_cast<std::uint32_t>(v)};
  }
  // Table-memory address of `record` of the table behind tpd_idx.
  std::optional<std::uint32_t> record_address(std::uint32_t tpd_idx, std::uint32_t record) const {
    const auto d = get(tpd_idx);
    if (!d) return std::nullopt;
    return d->base + record * d->record_size;
  }
  // The address a TLU read word names: the word itself, or with bit 1 set
  // the paged record (tpd_idx << 26) | (record << 2) | 2.
  std::optional<std::uint32_t> address_of(std::uint32_t word) const {
    if (!tlu_paged_word_st::paged::get(paged_word(word))) return word;
    return paged_address(word);
  }
  // The address of the record that a paged word names, `further` records on.
  std::optional<std::uint32_t> paged_address(std::uint32_t word, std::uint32_t further = 0) const {
    const tlu_paged_word_st w = paged_word(word);
    return record_address(tlu_paged_word_st::tpd_idx::get(w), tlu_paged_word_st::record_idx::get(w) + further);
  }
  static std::uint32_t descriptor_of(std::uint32_t word) { return tlu_paged_word_st::tpd_idx::get(paged_word(word)); }
  static tlu_paged_word_st paged_word(std::uint32_t word) {
    tlu_paged_word_st w;
    tlu_paged_word_st::word::set(w, word);
    return w;
  }

 private:
  std::array<std::atomic<std::uint64_t>, COUNT> slots_{};  // base << 32 | record size; size 0: not set
};

}  // namespace model
