// Numbers of the DMA interface: resources, memory opcodes, request words.
#pragma once

#include <cstdint>

#include "be_types.h"

// Resources, the target blocks of a DMA command.
enum dma_resource_e : std::uint32_t {
  RES_FLB = 44,              // packet send, free and next packet; flow locks
  RES_ITC_ACL_QOS = 59,      // ACL and QoS key searches
  RES_ITC_DIRECT = 63,       // direct TCAM searches
  RES_IGPU = 80,             // classification
  RES_TLU_LONG = 120,        // long commands: translation, policers, chain reads
  RES_PLU = 200,             // prefix-unit commands
  RES_WRR = 208,             // WRED queue table
  RES_TLU_COUNTERS = 248,    // increments, conditional subtracts, learn counters
  RES_TLU_DIV = 255,         // division and modulus, translation
  RES_TLU_INVALIDATE = 336,  // cache invalidate
  RES_TLU_READ_4B = 376,     // cached reads of 4, 8, 16, 32 bytes: 376..379
  RES_TLU_READ_NC_4B = 380,  // the same without cache allocation: 380..383
  RES_TLU_READ_NC_32B = 383,
  RES_TLU_LONG_WRITE = 504,  // long commands ahead of writes and ALU operations
  RES_MEMORY = 511,          // physical memory requests
  // Not a block of the NPU: the software platform's counter of packets that
  // reached a handler which is not built yet (one word: the handler's number).
  RES_UNBUILT_HANDLER = 500,
};

// Opcodes of physical memory requests (low byte of word 0).
enum dma_mem_opcode_e : std::uint32_t {
  MEM_OP_READ_4B = 0x8A,
  MEM_OP_READ_8B = 0x9A,
  MEM_OP_READ_16B = 0xAA,
  MEM_OP_READ_32B = 0xCA,
  MEM_OP_WRITE_4B = 0x8C,
  MEM_OP_WRITE_8B = 0x9C,
  MEM_OP_WRITE_16B = 0xAC,
  MEM_OP_WRITE_32B = 0xCC,
  MEM_OP_DPE_WRITE_32B = 0x2C,
  MEM_OP_EPE_READ_CLR_16B = 0xA0,
  MEM_OP_INCR_4B = 0x07,
  MEM_OP_INCR_8B = 0x08,
  MEM_OP_ADD_INCR_8B = 0x0A,
  MEM_OP_READ_CLR_8B = 0x90,
  MEM_OP_INCR_WRAP_PART2 = 0x86,
  MEM_OP_CONDSUB_4B = 0x0B,
  MEM_OP_SADD = 0x05,
  MEM_OP_NOR = 0xC1,
  MEM_OP_NOT = 0xC5,
  MEM_OP_XOR = 0xC6,
  MEM_OP_NAND = 0xC7,
  MEM_OP_AND = 0xC8,
  MEM_OP_XNOR = 0xC9,
  MEM_OP_OR = 0xCE,
  MEM_OP_SEQNI32 = 0xF1,
};

enum dma_alu_op_e : std::uint32_t {
  OP_SADD = 0,
  OP_CSUB = 1,
  OP_NOR = 2,
  OP_NOT = 3,
  OP_XOR = 4,
  OP_NAND = 5,
  OP_AND = 6,
  OP_OR = 7,
  OP_XNOR = 8,
  OP_WRITE = 9,
  OP_SEQNI32 = 10,
};

// A physical memory request: the operation word, then the low 32 bits of
// the address; data or operand follow from word 2. A long TLU command
// forwards the same operation word to a virtual address.
struct mem_request_st {
  std::uint8_t bytes[8];
  using op_word = be_bits<0, 0, 32>;
  using m40ah = be_word_bits<0, 24, 8>;  // address bits 39..32
  using byte_mask = be_word_bits<0, 16, 4>;
  using response = be_word_bits<0, 9>;
  using be = be_word_bits<0, 8>;
  using opcode = be_word_bits<0, 0, 8>;
  using address_low = be_bits<4, 0, 32>;
};
static_assert(sizeof(mem_request_st) == 8);

// The operation word with every byte of the mask set or none.
constexpr std::uint32_t mem_req_word0(std::uint32_t m40ah, std::uint32_t opcode, bool byte_mask, bool resp,
                                      bool be = true) {
  std::uint8_t w[sizeof(mem_request_st)] = {};
  mem_request_st::m40ah::set_raw(w, m40ah);
  mem_request_st::byte_mask::set_raw(w, byte_mask ? 0xF : 0);
  mem_request_st::response::set_raw(w, resp);
  mem_request_st::be::set_raw(w, be);
  mem_request_st::opcode::set_raw(w, opcode);
  return mem_request_st::op_word::get_raw(w);
}

// The DMA command word written to register 64: the resource, and where the
// request and response stand in data memory and how long they are.
struct dma_cmd_st {
  std::uint8_t bytes[4];
  using word = be_bits<0, 0, 32>;
  using resource = be_word_bits<0, 23, 9>;
  using resp_units = be_word_bits<0, 18, 5>;
  using resp_cell = be_word_bits<0, 12, 6>;
  using req_words = be_word_bits<0, 7, 5>;
  using req_cell = be_word_bits<0, 0, 6>;
};
static_assert(sizeof(dma_cmd_st) == 4);
inline constexpr std::uint32_t DMA_RESP_UNIT_BYTES = 8;
inline constexpr std::uint32_t DMA_REQ_WORD_BYTES = 4;
inline constexpr std::uint32_t DMA_CELL_BYTES = 16;

// A request template of the request tables: bit 4 is the table, bits 3..0 the entry.
constexpr std::uint32_t rtt_index(std::uint32_t table, std::uint32_t entry) { return (table << 4) | entry; }

// Long TLU command: translate a virtual table-memory address.
inline constexpr std::uint32_t TLU_CMD_TMU_LPA = 0x00000A00;
// Long TLU commands that forward one memory operation (word 2, as word 0 of a
// physical request) to a virtual address (word 1); the 3- and 4-form carry
// an operand in word 3.
inline constexpr std::uint32_t TLU_CMD_ERC2 = 0x00000C00;
inline constexpr std::uint32_t TLU_CMD_ERC3 = 0x00000D00;
inline constexpr std::uint32_t TLU_CMD_ERC4 = 0x00000E00;
