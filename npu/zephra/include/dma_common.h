// DMA command helpers and the memory operations built on them. Locations are
// data memory offsets of 16-byte cells; requests are built big-endian in the
// cell at req_loc and responses land at resp_loc.
#pragma once

#include <cstdint>

#include "be_types.h"
#include "dma_defs.h"
#include "flb_defs.h"
#include "fwc_types.h"

std::uint32_t dma_build_cmd(std::uint32_t resource_id, std::uint32_t req_loc, std::uint32_t req_size,
                            std::uint32_t resp_loc, std::uint32_t resp_size);
void dma_initiate(env_t env, std::uint32_t dma_reg_cmd);
void dma_initiate_kernelmode(env_t env, std::uint32_t dma_reg_cmd);
// Hands the packet (or its free request) over and blocks until the next packet.
void dma_flush_initiate_and_wait(env_t env, std::uint32_t dma_reg_cmd);
void dma_packet_send_wait(env_t env);
std::uint32_t dma_lb_resource_id_selection(std::uint32_t resource_id_0, std::uint32_t resource_id_1);
std::uint32_t dma_lb_1_bit();
void plu_get_m40_adrs(env_t env, std::uint32_t vaddr, std::uint32_t* m40ah, std::uint32_t* m40al);
std::uint8_t* npu_reference_dmem(env_t env, std::uint8_t* local_ptr, const std::uint8_t* dmem_ptr, std::uint32_t size);

// The big-endian words of the cell at data memory offset loc.
inline be_u32* dma_cell_words(env_t env, std::uint32_t loc) {
  return reinterpret_cast<be_u32*>(reinterpret_cast<std::uint8_t*>(env) + loc);
}

// Address translation of a virtual table-memory address (TMU_LPA), in the cell
// at req_loc, on tlu_resource_id.
void dma_tmu_lpa(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t req_loc,
                 std::uint32_t* m40ah, std::uint32_t* m40al);

// Physical forms.
void dma_read_4B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                   std::uint32_t resp_loc);
void dma_read_8B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                   std::uint32_t resp_loc);
void dma_read_16B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                    std::uint32_t resp_loc);
void dma_read_32B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                    std::uint32_t resp_loc);
void dma_write_4B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t data,
                    std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);
void dma_write_8B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, const std::uint8_t* data,
                    std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);
void dma_write_16B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, const std::uint8_t* data,
                     std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);
void dma_write_32B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, const std::uint8_t* data,
                     std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);
std::uint32_t dma_get_alu_cmd_word(dma_alu_op_e op);
void dma_alu_4B_p(env_t env, dma_alu_op_e op, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t operand,
                  std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);
void dma_incr_4B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                   std::uint32_t resp_loc, boolean_t resp);
void dma_condsub_4B_p(env_t env, std::uint32_t count, std::uint32_t paddr_hi, std::uint32_t paddr_lo,
                      std::uint32_t req_loc, std::uint32_t resp_loc);
void dma_incr_wrap_4B_part1_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                              boolean_t resp);
void dma_incr_wrap_4B_part2_p(env_t env, std::uint32_t wrap, std::uint32_t swap, std::uint32_t paddr_hi,
                              std::uint32_t paddr_lo, std::uint32_t req_loc);
void dma_incr_wrap_4B_p(env_t env, std::uint32_t wrap, std::uint32_t swap, std::uint32_t paddr_hi,
                        std::uint32_t paddr_lo, std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);
void dma_epe_read_clr_16B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                            std::uint32_t resp_loc);
void dma_dpe_read_32B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, std::uint32_t req_loc,
                        std::uint32_t resp_loc);
void dma_dpe_write_32B_p(env_t env, std::uint32_t paddr_hi, std::uint32_t paddr_lo, const std::uint8_t* data,
                         std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);

// Virtual forms: translation first, then as the physical form. Writes with
// invalidate_tlu also drop the TLU's cached copy of the address.
void dma_read_4B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t req_loc,
                 std::uint32_t resp_loc);
void dma_read_8B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t req_loc,
                 std::uint32_t resp_loc);
void dma_read_16B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t req_loc,
                  std::uint32_t resp_loc);
void dma_read_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t req_loc,
                  std::uint32_t resp_loc);
void dma_dpe_read_ext_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc);

struct dma_write_opts_st {
  boolean_t resp;
  boolean_t invalidate_tlu;
  boolean_t invalidate_wait;
};
void dma_write_4B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t data,
                  std::uint32_t req_loc, std::uint32_t resp_loc, dma_write_opts_st opts);
void dma_write_8B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, const std::uint8_t* data,
                  std::uint32_t req_loc, std::uint32_t resp_loc, dma_write_opts_st opts);
void dma_write_16B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, const std::uint8_t* data,
                   std::uint32_t req_loc, std::uint32_t resp_loc, dma_write_opts_st opts);
void dma_write_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, const std::uint8_t* data,
                   std::uint32_t req_loc, std::uint32_t resp_loc, dma_write_opts_st opts);
void dma_write_48B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, const std::uint8_t* data,
                   std::uint32_t req_loc, std::uint32_t resp_loc, dma_write_opts_st opts);
void dma_alu_4B(env_t env, dma_alu_op_e op, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t operand,
                std::uint32_t req_loc, std::uint32_t resp_loc, dma_write_opts_st opts);
void dma_plu_read_32B(env_t env, std::uint32_t vaddr, std::uint32_t req_loc, std::uint32_t resp_loc);
void dma_plu_write_32B(env_t env, std::uint32_t vaddr, const std::uint8_t* data, std::uint32_t req_loc,
                       std::uint32_t resp_loc, boolean_t resp);
void dma_dram_write_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, const std::uint8_t* data,
                        std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp);

// Counter operations of the TLU (resource 248) on a virtual address: the
// translation and the atomic operation in one request. Word 0 is the memory
// operation as in a physical request, word 1 the virtual address, word 2 the
// operand. The conditional subtract answers with the word's old value, which
// is 0 when nothing was subtracted.
void dma_tlu_incr_4B(env_t env, std::uint32_t vaddr, std::uint32_t req_loc);
void dma_tlu_condsub_4B(env_t env, std::uint32_t vaddr, std::uint32_t count, std::uint32_t req_loc,
                        std::uint32_t resp_loc);

// Flow-lock conversion, alone or with a 16-byte read behind it.
void dma_flowlock_convert(env_t env, std::uint32_t flowlock_id, std::uint32_t flb_req_loc, std::uint32_t flb_resp_loc);
void dma_flowlock_convert_and_read16(env_t env, std::uint32_t flowlock_id, std::uint32_t vaddr,
                                     std::uint32_t tlu_resource_id, std::uint32_t req_loc, std::uint32_t resp_loc);
