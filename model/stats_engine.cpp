#include "stats_engine.h"

#include <cstdio>
#include <string>

#include "dma_defs.h"
#include "stats_defs.h"

namespace model {

namespace {

std::string hex(paddr_t v) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "0x%llX", static_cast<unsigned long long>(v));
  return buf;
}

// Global counters bumped while a thread holds a packet go on its outcome.
void bump(npu_thread& t, std::uint32_t index) {
  t.owner->stats().bump_global(index);
  if (t.holds_packet) t.current.global_counters.push_back(index);
}

void respond(std::uint8_t* resp, std::uint32_t resp_bytes, const stats_entry& e) {
  if (!resp || resp_bytes < sizeof(stats_counter_pair_st)) return;
  auto& pair = *reinterpret_cast<stats_counter_pair_st*>(resp);
  pair.packets = static_cast<std::uint32_t>(e.packets);
  pair.bytes = static_cast<std::uint32_t>(e.bytes);
}

void respond(std::uint8_t* resp, std::uint32_t resp_bytes, std::uint64_t count) {
  if (resp && resp_bytes >= sizeof(be_u64)) reinterpret_cast<be_u64*>(resp)->set(count);
}

}  // namespace

void stats_count_global(npu_thread& t, std::uint32_t address) {
  const auto index = stats_memory::global_index_at(address);
  if (!index) return t.owner->breach(t, "global counter request at " + hex(address) + ", which names no counter");
  bump(t, *index);
}

void stats_add(npu_thread& t, std::uint32_t address, std::uint32_t bytes) {
  const auto index = stats_memory::entry_index_at(address);
  if (!index) return t.owner->breach(t, "statistics request at " + hex(address) + ", which names no entry");
  t.owner->stats().add(*index, bytes);
}

void stats_memory_op(npu_thread& t, std::uint32_t opcode, paddr_t addr, std::uint32_t operand, std::uint8_t* resp,
                     std::uint32_t resp_bytes) {
  stats_memory& mem = t.owner->stats();
  const auto global = stats_memory::global_index_at(addr);
  const auto entry = stats_memory::entry_index_at(addr);
  if (!global && !entry) {
    return t.owner->breach(t, "memory request at " + hex(addr) + " inside statistics memory but on no counter");
  }
  switch (opcode) {
    case MEM_OP_INCR_4B:
    case MEM_OP_INCR_8B:
      if (global) return bump(t, *global);
      return mem.add(*entry, 0);
    case MEM_OP_ADD_INCR_8B:
      if (global) return bump(t, *global);
      return mem.add(*entry, operand);
    case MEM_OP_READ_8B:
      if (global) return respond(resp, resp_bytes, mem.global(*global));
      return respond(resp, resp_bytes, mem.entry(*entry));
    case MEM_OP_READ_CLR_8B:
      if (global) return respond(resp, resp_bytes, mem.read_clear_global(*global));
      return respond(resp, resp_bytes, mem.read_clear(*entry));
    default:
      break;
  }
  t.owner->breach(t, "memory opcode " + hex(opcode) + " on statistics memory at " + hex(addr) +
                         ", which the statistics engine does not serve");
}

}  // namespace model
