// The NPU's table memory: sparse, byte-addressed, 40-bit physical addresses,
// with the virtual-to-physical translation of the TLU.
//
// Concurrency: pages are created under `pages_mutex_` (shared for lookups,
// exclusive for creation); each page carries its own mutex, held for every
// access to its bytes, so a read-modify-write of one word is indivisible and
// a record write is never seen half done. No two page mutexes are held at once.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <span>
#include <unordered_map>
#include <vector>

namespace model {

using paddr_t = std::uint64_t;  // 40-bit physical address

inline constexpr paddr_t PADDR_MASK = (paddr_t{1} << 40) - 1;

// Operations of the memory controller on one 4- or 8-byte big-endian word.
enum class rmw_op { add, bit_or, bit_and, bit_xor, nor, nand, xnor, bit_not, write, cond_sub, inc_wrap };

class table_memory {
 public:
  table_memory();
  ~table_memory();
  table_memory(const table_memory&) = delete;
  table_memory& operator=(const table_memory&) = delete;

  void read(paddr_t addr, std::span<std::uint8_t> out) const;
  void write(paddr_t addr, std::span<const std::uint8_t> data);
  // Reads and clears `out.size()` bytes in one step.
  void read_clear(paddr_t addr, std::span<std::uint8_t> out);

  // One indivisible read-modify-write of the naturally aligned big-endian word
  // of `width` bytes (4 or 8) holding addr; returns the old value. For cond_sub the word is reduced
  // by `operand` only if it holds at least that much; for inc_wrap it is
  // incremented and restarts at 0 when it reaches `operand`.
  std::uint64_t rmw(paddr_t addr, unsigned width, rmw_op op, std::uint64_t operand);

  std::uint32_t read_u32(paddr_t addr) const;
  void write_u32(paddr_t addr, std::uint32_t v);

  // Virtual-to-physical translation. Unmapped virtual addresses map to the
  // same physical address.
  void map_range(std::uint32_t vaddr, std::uint32_t size, paddr_t paddr);
  paddr_t translate(std::uint32_t vaddr) const;

 private:
  static constexpr unsigned PAGE_BITS = 16;
  static constexpr paddr_t PAGE_SIZE = paddr_t{1} << PAGE_BITS;
  struct page;
  struct range {
    std::uint32_t vaddr;
    std::uint32_t size;
    paddr_t paddr;
  };

  page* find_page(paddr_t page_no) const;
  page& get_page(paddr_t page_no);
  template <class Fn>
  void for_each_piece(paddr_t addr, std::size_t size, bool create, Fn&& fn) const;

  mutable std::shared_mutex pages_mutex_;
  std::unordered_map<paddr_t, std::unique_ptr<page>> pages_;
  mutable std::shared_mutex ranges_mutex_;
  std::vector<range> ranges_;
};

}  // namespace model
