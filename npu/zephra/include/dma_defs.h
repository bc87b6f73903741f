// Numbers of the DMA interface: resources, memory opcodes, request words.
#pragma once

#include <cstdint>

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

// Word 0 of a physical memory request: m40ah in bits 31..24, the byte mask in
// 19..16, response wanted in bit 9, bit 8 always set, the opcode in 7..0.
inline constexpr std::uint32_t MEM_REQ_BYTE_MASK_ALL = 0xF0000;
inline constexpr std::uint32_t MEM_REQ_RESPONSE = 1u << 9;
inline constexpr std::uint32_t MEM_REQ_BE = 1u << 8;

constexpr std::uint32_t mem_req_word0(std::uint32_t m40ah, std::uint32_t opcode, bool byte_mask, bool resp) {
  return (m40ah << 24) | (byte_mask ? MEM_REQ_BYTE_MASK_ALL : 0u) | (resp ? MEM_REQ_RESPONSE : 0u) | MEM_REQ_BE |
         (opcode & 0xFF);
}

// DMA command word fields.
inline constexpr unsigned DMA_CMD_RESOURCE_SHIFT = 23;
inline constexpr unsigned DMA_CMD_RESP_SIZE_SHIFT = 18;
inline constexpr unsigned DMA_CMD_RESP_LOC_SHIFT = 12;
inline constexpr unsigned DMA_CMD_REQ_SIZE_SHIFT = 7;

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
