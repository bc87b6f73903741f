// Decoding and carrying out the DMA commands of a thread. Every request is
// complete when the command returns, which is a valid order of events for
// the program: a result is in place before its first read.
#include <cstring>
#include <string>

#include "classify_requests.h"
#include "dma_request.h"
#include "flb_defs.h"
#include "gpb_engine.h"
#include "platform_ops.h"
#include "plu_requests.h"
#include "stats_engine.h"
#include "tlu_engine.h"
#include "transmit_engine.h"

namespace model {

namespace {

paddr_t physical(const mem_request_st& req) {
  return (paddr_t{mem_request_st::m40ah::get(req)} << 32) | mem_request_st::address_low::get(req);
}

rmw_op alu_op(std::uint32_t opcode) {
  switch (opcode) {
    case MEM_OP_SADD:
      return rmw_op::add;
    case MEM_OP_NOR:
      return rmw_op::nor;
    case MEM_OP_NOT:
      return rmw_op::bit_not;
    case MEM_OP_XOR:
      return rmw_op::bit_xor;
    case MEM_OP_NAND:
      return rmw_op::nand;
    case MEM_OP_AND:
      return rmw_op::bit_and;
    case MEM_OP_XNOR:
      return rmw_op::xnor;
    case MEM_OP_OR:
      return rmw_op::bit_or;
    default:
      return rmw_op::write;
  }
}

void respond_old_word(dma_request& r, std::uint64_t old, unsigned width) {
  if (std::uint8_t* resp = r.response()) store_word(resp, width, old);
}

// Plain reads and writes of 4 to 32 bytes; false for any other opcode.
bool plain_access(dma_request& r, table_memory& mem, std::uint32_t opcode, paddr_t addr, std::uint32_t data_word) {
  auto read_into_response = [&](std::size_t n) {
    if (std::uint8_t* resp = r.response()) mem.read(addr, {resp, std::min<std::size_t>(n, r.cmd().resp_bytes)});
    return true;
  };
  auto write_from_request = [&](std::size_t n) {
    mem.write(addr, {r.bytes_from(4 * data_word), n});
    r.response();
    return true;
  };
  switch (opcode) {
    case MEM_OP_READ_4B:
      return read_into_response(4);
    case MEM_OP_READ_8B:
      return read_into_response(8);
    case MEM_OP_READ_16B:
      return read_into_response(16);
    case MEM_OP_READ_32B:
      return read_into_response(32);
    case MEM_OP_WRITE_4B:
      return write_from_request(4);
    case MEM_OP_WRITE_8B:
      return write_from_request(8);
    case MEM_OP_WRITE_16B:
      return write_from_request(16);
    case MEM_OP_WRITE_32B:
    case MEM_OP_DPE_WRITE_32B:
      return write_from_request(32);
    default:
      return false;
  }
}

// The indivisible read-clears and read-modify-writes, answered with the old
// contents; false for any other opcode.
bool read_modify_write(dma_request& r, table_memory& mem, std::uint32_t opcode, paddr_t addr, std::uint32_t data_word) {
  auto read_clear = [&](std::size_t n) {
    std::uint8_t* resp = r.response();
    std::uint8_t scratch[16];
    mem.read_clear(addr, {resp ? resp : scratch, n});
    return true;
  };
  auto old_word = [&](unsigned width, rmw_op op, std::uint64_t operand) {
    respond_old_word(r, mem.rmw(addr, width, op, operand), width);
    return true;
  };
  switch (opcode) {
    case MEM_OP_EPE_READ_CLR_16B:
      return read_clear(16);
    case MEM_OP_READ_CLR_8B:
      return read_clear(8);
    case MEM_OP_INCR_4B: {
      // With a second command behind it, this is the increment with wrap.
      const auto& next = r.record_at<mem_request_st>(4 * data_word);
      if (r.cmd().req_bytes >= 24 && mem_request_st::opcode::get(next) == MEM_OP_INCR_WRAP_PART2) {
        return old_word(4, rmw_op::inc_wrap, r.word(data_word + 2));
      }
      return old_word(4, rmw_op::add, 1);
    }
    case MEM_OP_INCR_8B:
      return old_word(8, rmw_op::add, 1);
    case MEM_OP_CONDSUB_4B:
      return old_word(4, rmw_op::cond_sub, r.word(data_word));
    case MEM_OP_SADD:
    case MEM_OP_NOR:
    case MEM_OP_NOT:
    case MEM_OP_XOR:
    case MEM_OP_NAND:
    case MEM_OP_AND:
    case MEM_OP_XNOR:
    case MEM_OP_OR:
      return old_word(4, alu_op(opcode), r.word(data_word));
    default:
      return false;
  }
}

// One operation of the memory controller: its operation word (word 0 of a
// physical request, or the word that a long TLU command forwards), its
// address, and the request word where its data or operand begins. Addresses
// of statistics memory go to the statistics engine.
void memory_op(dma_request& r, const mem_request_st& op, paddr_t addr, std::uint32_t data_word) {
  const std::uint32_t opcode = mem_request_st::opcode::get(op);
  if (stats_memory::contains(addr)) {
    return stats_memory_op(r.thread(), opcode, addr, r.word(data_word), r.response(), r.cmd().resp_bytes);
  }
  table_memory& mem = r.owner().memory();
  if (plain_access(r, mem, opcode, addr, data_word) || read_modify_write(r, mem, opcode, addr, data_word)) return;
  r.breach("memory request with opcode " + std::to_string(opcode) + ", which nothing serves");
}

// Physical memory requests (resource 511).
void memory_request(dma_request& r) {
  const auto& req = r.record_at<mem_request_st>(0);
  memory_op(r, req, physical(req), 2);
}

// Long TLU commands: one memory operation (word 2) forwarded to a virtual
// address (word 1) with its operand in word 3; the TLU serves the others.
void tlu_long_request(dma_request& r) {
  const std::uint32_t w0 = r.word(0);
  if (w0 == TLU_CMD_ERC2 || w0 == TLU_CMD_ERC3 || w0 == TLU_CMD_ERC4) {
    return memory_op(r, r.record_at<mem_request_st>(8), r.owner().memory().translate(r.word(1)), 3);
  }
  if (is_tlu_command(w0)) return execute_tlu_command(r);
  r.breach("long TLU command " + std::to_string(w0) + ", which nothing serves");
}

// Moves the held packet to the flow lock of word 1 when its turn in its
// present lock comes (model/flow_locks.h).
void convert_to_lock_of_word1(dma_request& r) {
  npu_thread& t = r.thread();
  const std::uint32_t lock = r.word(1);
  if (lock > flow_locks::MAX_PROGRAM_LOCK) return r.breach("flow lock " + std::to_string(lock) + " beyond 16 bits");
  if (t.holds_packet) r.owner().flow_order().convert(t.index, lock);
}

void flowlock_convert(dma_request& r) {
  convert_to_lock_of_word1(r);
  std::uint8_t* resp = r.response();
  if (resp && r.word(0) == FLB_CMD_FLOWLOCK_CONVERT_READ16) {
    r.owner().memory().read(physical(r.record_at<mem_request_st>(8)), {resp, std::min(16u, r.cmd().resp_bytes)});
  }
}

// A keep send: a copy leaves in the packet's turn, and the packet stays with
// the thread; a 24-byte request converts it to the flow lock of word 1.
void keep_send(dma_request& r) {
  npu_thread& t = r.thread();
  if (!t.holds_packet) return r.breach("keep send without a packet");
  r.owner().flow_order().wait_turn(t.index);
  transmit_gather(r);
  if (r.cmd().req_bytes == GATHER_KEEP_REQ_BYTES) convert_to_lock_of_word1(r);
}

// The FLB: packet end (free or send) and next packet, keep sends, flow-lock
// conversion.
void flb_request(dma_request& r) {
  npu_thread& t = r.thread();
  const dma_cmd& c = r.cmd();
  const std::uint32_t w0 = r.word(0);
  const bool packet_end = c.resp_bytes == PKT_END_RESPONSE_BYTES && (c.resp_loc == 0 || is_gather_request(w0));
  if (!packet_end) {
    if (w0 == FLB_CMD_FLOWLOCK_CONVERT || w0 == FLB_CMD_FLOWLOCK_CONVERT_READ16) return flowlock_convert(r);
    if (is_gather_request(w0) && (read_gather_request(r).handle_word & GATHER_KEEP)) return keep_send(r);
    r.breach("FLB request " + std::to_string(w0) + ", which nothing serves");
    return;
  }
  if (t.holds_packet) {
    // The end is the packet's last ordering point: what it sends leaves in its turn.
    r.owner().flow_order().wait_turn(t.index);
    if (w0 == FLB_CMD_FREE_EGRESS || w0 == FLB_CMD_FREE_INGRESS) {
      t.current.end = packet_end::freed;
    } else if (is_gather_request(w0)) {
      transmit_gather(r);
      if (t.current.end != packet_end::contract_breach) t.current.end = packet_end::sent;
    } else {
      r.breach("packet-ending request " + std::to_string(w0) + ", which nothing serves");
    }
    t.owner->finish_packet(t);
  } else if (w0 != FLB_CMD_FIRST_PACKET) {
    r.breach("packet-ending request without a packet");
  }
  t.owner->wait_for_packet(t);
}

void unbuilt_handler_request(dma_request& r) {
  r.owner().note_placeholder(r.thread(), static_cast<std::int32_t>(r.word(0)));
}

}  // namespace

void execute_dma(npu_thread& t, std::uint32_t cmd) {
  dma_request r(t, decode_dma_cmd(cmd));
  const std::uint32_t res = r.cmd().resource;
  if (res == RES_MEMORY) return memory_request(r);
  if (res == RES_FLB) return flb_request(r);
  if (res == RES_TLU_LONG || res == RES_TLU_DIV || res == RES_TLU_LONG_WRITE) return tlu_long_request(r);
  if (res >= RES_TLU_READ_4B && res <= RES_TLU_READ_NC_32B) return execute_tlu_read(r);
  if (res == RES_TLU_COUNTERS) {
    return memory_op(r, r.record_at<mem_request_st>(0), r.owner().memory().translate(r.word(1)), 2);
  }
  if (is_gpb_resource(res)) return execute_gpb(t, res, r.cmd().req_loc, r.cmd().resp_loc, r.cmd().resp_bytes);
  if (res == RES_TLU_INVALIDATE) return execute_tlu_invalidate(r);
  if (res == RES_PLU) return execute_plu(r);
  if (res == RES_ITC_ACL_QOS || res == RES_ITC_DIRECT) return execute_tcam(r);
  if (res == RES_IGPU) return execute_igpu(r);
  if (res == RES_UNBUILT_HANDLER) return unbuilt_handler_request(r);
  r.breach("request to resource " + std::to_string(res) + ", which nothing serves");
}

}  // namespace model
