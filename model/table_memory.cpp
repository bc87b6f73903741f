#include "table_memory.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "memory_word.h"

namespace model {

struct table_memory::page {
  std::mutex mutex;
  std::array<std::uint8_t, PAGE_SIZE> bytes{};
};

table_memory::table_memory() = default;
table_memory::~table_memory() = default;

table_memory::page* table_memory::find_page(paddr_t page_no) const {
  std::shared_lock lock(pages_mutex_);
  auto it = pages_.find(page_no);
  return it == pages_.end() ? nullptr : it->second.get();
}

table_memory::page& table_memory::get_page(paddr_t page_no) {
  if (page* p = find_page(page_no)) return *p;
  std::unique_lock lock(pages_mutex_);
  auto& slot = pages_[page_no];
  if (!slot) slot = std::make_unique<page>();
  return *slot;
}

// Calls fn(page*, offset in page, offset in the caller's buffer, length) for
// each page the range touches; page* is null for a page never written.
template <class Fn>
void table_memory::for_each_piece(paddr_t addr, std::size_t size, bool create, Fn&& fn) const {
  std::size_t done = 0;
  while (done < size) {
    const paddr_t a = (addr + done) & PADDR_MASK;
    const paddr_t page_no = a >> PAGE_BITS;
    const std::size_t in_page = static_cast<std::size_t>(a & (PAGE_SIZE - 1));
    const std::size_t len = std::min<std::size_t>(size - done, PAGE_SIZE - in_page);
    page* p = create ? &const_cast<table_memory*>(this)->get_page(page_no) : find_page(page_no);
    fn(p, in_page, done, len);
    done += len;
  }
}

void table_memory::read(paddr_t addr, std::span<std::uint8_t> out) const {
  for_each_piece(addr, out.size(), false, [&](page* p, std::size_t in_page, std::size_t off, std::size_t len) {
    if (!p) {
      std::memset(out.data() + off, 0, len);
      return;
    }
    std::lock_guard lock(p->mutex);
    std::memcpy(out.data() + off, p->bytes.data() + in_page, len);
  });
}

void table_memory::write(paddr_t addr, std::span<const std::uint8_t> data) {
  for_each_piece(addr, data.size(), true, [&](page* p, std::size_t in_page, std::size_t off, std::size_t len) {
    std::lock_guard lock(p->mutex);
    std::memcpy(p->bytes.data() + in_page, data.data() + off, len);
  });
}

void table_memory::read_clear(paddr_t addr, std::span<std::uint8_t> out) {
  for_each_piece(addr, out.size(), true, [&](page* p, std::size_t in_page, std::size_t off, std::size_t len) {
    std::lock_guard lock(p->mutex);
    std::memcpy(out.data() + off, p->bytes.data() + in_page, len);
    std::memset(p->bytes.data() + in_page, 0, len);
  });
}

namespace {

std::uint64_t apply(rmw_op op, std::uint64_t old, std::uint64_t operand, std::uint64_t mask) {
  switch (op) {
    case rmw_op::add:
      return (old + operand) & mask;
    case rmw_op::bit_or:
      return old | operand;
    case rmw_op::bit_and:
      return old & operand;
    case rmw_op::bit_xor:
      return old ^ operand;
    case rmw_op::nor:
      return ~(old | operand) & mask;
    case rmw_op::nand:
      return ~(old & operand) & mask;
    case rmw_op::xnor:
      return ~(old ^ operand) & mask;
    case rmw_op::bit_not:
      return ~old & mask;
    case rmw_op::write:
      return operand & mask;
    case rmw_op::cond_sub:
      return old >= operand ? old - operand : old;
    case rmw_op::inc_wrap:
      return (old + 1 >= operand) ? 0 : old + 1;
  }
  return old;
}

}  // namespace

// The memory controller works on naturally aligned words: the low address
// bits below the word size are ignored, so a word never straddles a page.
std::uint64_t table_memory::rmw(paddr_t addr, unsigned width, rmw_op op, std::uint64_t operand) {
  const paddr_t a = addr & PADDR_MASK & ~paddr_t{width - 1};
  const std::size_t in_page = static_cast<std::size_t>(a & (PAGE_SIZE - 1));
  page& p = get_page(a >> PAGE_BITS);
  std::lock_guard lock(p.mutex);
  std::uint8_t* word = p.bytes.data() + in_page;
  const std::uint64_t mask = width == 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * width)) - 1;
  const std::uint64_t old = load_word(word, width);
  store_word(word, width, apply(op, old, operand, mask));
  return old;
}

std::uint32_t table_memory::read_u32(paddr_t addr) const {
  be_u32 w;
  read(addr, w.b);
  return w.get();
}

void table_memory::write_u32(paddr_t addr, std::uint32_t v) {
  be_u32 w;
  w.set(v);
  write(addr, w.b);
}

void table_memory::map_range(std::uint32_t vaddr, std::uint32_t size, paddr_t paddr) {
  std::unique_lock lock(ranges_mutex_);
  ranges_.push_back({vaddr, size, paddr & PADDR_MASK});
}

paddr_t table_memory::translate(std::uint32_t vaddr) const {
  std::shared_lock lock(ranges_mutex_);
  for (const range& r : ranges_) {
    if (vaddr >= r.vaddr && vaddr - r.vaddr < r.size) return r.paddr + (vaddr - r.vaddr);
  }
  return vaddr;
}

}  // namespace model
