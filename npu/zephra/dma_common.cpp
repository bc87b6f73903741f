// DMA command building and the memory operations of the program.
#include "dma_common.h"

#include <cstring>

#include "arch_tie.h"
#include "dplane/infra/ps.h"
#include "tlu.h"

std::uint32_t dma_build_cmd(std::uint32_t resource_id, std::uint32_t req_loc, std::uint32_t req_size,
                            std::uint32_t resp_loc, std::uint32_t resp_size) {
  dma_cmd_st c{};
  dma_cmd_st::resource::set(c, resource_id);
  dma_cmd_st::resp_units::set(c, (resp_size + DMA_RESP_UNIT_BYTES - 1) / DMA_RESP_UNIT_BYTES);
  dma_cmd_st::resp_cell::set(c, resp_loc / DMA_CELL_BYTES);
  dma_cmd_st::req_words::set(c, (req_size + DMA_REQ_WORD_BYTES - 1) / DMA_REQ_WORD_BYTES);
  dma_cmd_st::req_cell::set(c, req_loc / DMA_CELL_BYTES);
  return dma_cmd_st::word::get(c);
}

void mk_dma_reg(std::uint32_t instruct, std::uint32_t resp_size, std::uint32_t resp_loc, std::uint32_t req_size,
                std::uint32_t req_loc, std::uint32_t* reg1) {
  *reg1 = dma_build_cmd(instruct, req_loc, req_size, resp_loc, resp_size);
}

void dma_initiate(env_t, std::uint32_t dma_reg_cmd) { WDC(dma_reg_cmd, COP_DMA_COMMAND); }

void dma_initiate_kernelmode(env_t, std::uint32_t dma_reg_cmd) { WDC(dma_reg_cmd, COP_DMA_COMMAND); }

void dma_flush_initiate_and_wait(env_t env, std::uint32_t dma_reg_cmd) {
  gpmwbi();
  WDC(dma_reg_cmd, COP_DMA_COMMAND);
  dma_packet_send_wait(env);
}

// The global configuration is refreshed at each packet boundary; the router
// identifier only travels with a change of the configuration word.
void dma_packet_send_wait(env_t env) {
  const std::uint32_t cfg = RDC(COP_GLOBAL_CONFIG);
  if (cfg != *ps_get_global_uidb_reg(env)) {
    *ps_put_mod_global_uidb_reg(env) = cfg;
    *ps_put_mod_global_uidb_reg_router_id(env) = RDC(COP_ROUTER_ID);
  }
}

std::uint32_t dma_lb_resource_id_selection(std::uint32_t resource_id_0, std::uint32_t resource_id_1) {
  return (RDC(COP_THREAD_IDENTITY) & 1) ? resource_id_1 : resource_id_0;
}

std::uint32_t dma_lb_1_bit() { return (RDC(COP_THREAD_IDENTITY) >> 25) & 1; }

void plu_get_m40_adrs(env_t env, std::uint32_t vaddr, std::uint32_t* m40ah, std::uint32_t* m40al) {
  const std::uint64_t base = (vaddr & (1u << 24)) ? 0x4028C00000ull : 0x4008C00000ull;
  const std::uint64_t addr = base + (std::uint64_t{(vaddr >> 11) & 0x1FFF} << 16) + (std::uint64_t{vaddr & 0x3} << 14) +
                             (std::uint64_t{(vaddr >> 2) & 0x1FF} << 5);
  std::uint32_t lo = static_cast<std::uint32_t>(addr);
  if (*ps_get_global_uidb_reg(env) & (1u << 3)) lo += 0x40000000;
  *m40al = lo;
  *m40ah = 0x40;
}

std::uint8_t* npu_reference_dmem(env_t, std::uint8_t* local_ptr, const std::uint8_t* dmem_ptr, std::uint32_t size) {
  for (std::uint32_t i = 0; i < size; ++i) local_ptr[i] = dmem_ptr[i];
  return local_ptr;
}

namespace {

// Builds word 0 and word 1 of a physical request and sends it.
void mem_request(env_t env, std::uint32_t opcode, bool byte_mask, std::uint32_t paddr_hi, std::uint32_t paddr_lo,
                 std::uint32_t req_loc, std::uint32_t req_size, std::uint32_t resp_loc, std::uint32_t resp_size) {
  auto& req = *reinterpret_cast<mem_request_st*>(dma_cell_words(env, req_loc));
  mem_request_st::op_word::set(req, mem_req_word0(paddr_hi, opcode, byte_mask, resp_size != 0));
  mem_request_st::address_low::set(req, paddr_lo);
  dma_initiate(env, dma_build_cmd(RES_MEMORY, req_loc, req_size, resp_loc, resp_size));
}

void mem_write(env_t env, std::uint32_t opcode, std::uint32_t paddr_hi, std::uint32_t paddr_lo,
               const std::uint8_t* data, std::uint32_t size, std::uint32_t req_loc, std::uint32_t resp_loc,
               std::uint32_t resp_size) {
  std::memcpy(reinterpret_cast<std::uint8_t*>(dma_cell_words(env, req_loc) + 2), data, size);
  mem_request(env, opcode, size < 32, paddr_hi, paddr_lo, req_loc, 8 + size, resp_loc, resp_size);
}

std::uint32_t write_resp_size(std::uint32_t size) { return size < 8 ? 8 : size; }

// A write through a virtual address. With invalidate_tlu the write always asks
// for a response, so that it has landed before the invalidate goes out.
void virtual_write(env_t env, std::uint32_t opcode, std::uint32_t vaddr, std::uint32_t tlu_resource_id,
                   const std::uint8_t* data, std::uint32_t size, std::uint32_t req_loc, std::uint32_t resp_loc,
                   dma_write_opts_st opts) {
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  dma_tmu_lpa(env, vaddr, tlu_resource_id, req_loc, &hi, &lo);
  const bool want_resp = opts.resp || opts.invalidate_tlu;
  mem_write(env, opcode, hi, lo, data, size, req_loc, opts.resp ? resp_loc : req_loc,
            want_resp ? write_resp_size(size) : 0);
  if (opts.invalidate_tlu) {
    tlu_invalidate(env, static_cast<std::uint8_t>(hi), lo, opts.invalidate_wait, req_loc, req_loc);
  }
}

void virtual_read(env_t env, std::uint32_t opcode, std::uint32_t vaddr, std::uint32_t tlu_resource_id,
                  std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t size) {
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  dma_tmu_lpa(env, vaddr, tlu_resource_id, req_loc, &hi, &lo);
  mem_request(env, opcode, false, hi, lo, req_loc, 8, resp_loc, write_resp_size(size));
}

}  // namespace

void dma_tmu_lpa(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t req_loc,
                 std::uint32_t* m40ah, std::uint32_t* m40al) {
  tmu_lpa(env, vaddr, tlu_resource_id, req_loc, req_loc);
  *m40ah = tmu_lpa_get_hi(env, req_loc);
  *m40al = tmu_lpa_get_lo(env, req_loc);
}

void dma_read_4B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc, std::uint32_t resp_loc) {
  mem_request(env, MEM_OP_READ_4B, false, hi, lo, req_loc, 8, resp_loc, 8);
}
void dma_read_8B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc, std::uint32_t resp_loc) {
  mem_request(env, MEM_OP_READ_8B, false, hi, lo, req_loc, 8, resp_loc, 8);
}
void dma_read_16B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc, std::uint32_t resp_loc) {
  mem_request(env, MEM_OP_READ_16B, false, hi, lo, req_loc, 8, resp_loc, 16);
}
void dma_read_32B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc, std::uint32_t resp_loc) {
  mem_request(env, MEM_OP_READ_32B, false, hi, lo, req_loc, 8, resp_loc, 32);
}

void dma_write_4B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t data, std::uint32_t req_loc,
                    std::uint32_t resp_loc, boolean_t resp) {
  be_u32 word;
  word = data;
  mem_write(env, MEM_OP_WRITE_4B, hi, lo, word.b, 4, req_loc, resp_loc, resp ? 8 : 0);
}
void dma_write_8B_p(env_t env, std::uint32_t hi, std::uint32_t lo, const std::uint8_t* data, std::uint32_t req_loc,
                    std::uint32_t resp_loc, boolean_t resp) {
  mem_write(env, MEM_OP_WRITE_8B, hi, lo, data, 8, req_loc, resp_loc, resp ? 8 : 0);
}
void dma_write_16B_p(env_t env, std::uint32_t hi, std::uint32_t lo, const std::uint8_t* data, std::uint32_t req_loc,
                     std::uint32_t resp_loc, boolean_t resp) {
  mem_write(env, MEM_OP_WRITE_16B, hi, lo, data, 16, req_loc, resp_loc, resp ? 16 : 0);
}
void dma_write_32B_p(env_t env, std::uint32_t hi, std::uint32_t lo, const std::uint8_t* data, std::uint32_t req_loc,
                     std::uint32_t resp_loc, boolean_t resp) {
  mem_write(env, MEM_OP_WRITE_32B, hi, lo, data, 32, req_loc, resp_loc, resp ? 32 : 0);
}

std::uint32_t dma_get_alu_cmd_word(dma_alu_op_e op) {
  static constexpr std::uint32_t opcodes[] = {MEM_OP_SADD, MEM_OP_CONDSUB_4B, MEM_OP_NOR,    MEM_OP_NOT,
                                              MEM_OP_XOR,  MEM_OP_NAND,       MEM_OP_AND,    MEM_OP_OR,
                                              MEM_OP_XNOR, MEM_OP_WRITE_4B,   MEM_OP_SEQNI32};
  return opcodes[op];
}

void dma_alu_4B_p(env_t env, dma_alu_op_e op, std::uint32_t hi, std::uint32_t lo, std::uint32_t operand,
                  std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp) {
  dma_cell_words(env, req_loc)[2] = operand;
  mem_request(env, dma_get_alu_cmd_word(op), true, hi, lo, req_loc, 12, resp_loc, resp ? 8 : 0);
}

void dma_incr_4B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc, std::uint32_t resp_loc,
                   boolean_t resp) {
  mem_request(env, MEM_OP_INCR_4B, true, hi, lo, req_loc, 8, resp_loc, resp ? 8 : 0);
}

void dma_condsub_4B_p(env_t env, std::uint32_t count, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc,
                      std::uint32_t resp_loc) {
  dma_cell_words(env, req_loc)[2] = count;
  mem_request(env, MEM_OP_CONDSUB_4B, true, hi, lo, req_loc, 12, resp_loc, 8);
}

// Increment with wrap is two memory commands in one request: the increment,
// then the wrap check that restarts the word at `wrap`.
void dma_incr_wrap_4B_part1_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc, boolean_t resp) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = mem_req_word0(hi, MEM_OP_INCR_4B, false, resp, false);
  w[1] = lo;
}
void dma_incr_wrap_4B_part2_p(env_t env, std::uint32_t wrap, std::uint32_t swap, std::uint32_t hi, std::uint32_t lo,
                              std::uint32_t req_loc) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[2] = mem_req_word0(hi, MEM_OP_INCR_WRAP_PART2, false, false);
  w[3] = lo;
  w[4] = wrap;
  w[5] = swap;
}
void dma_incr_wrap_4B_p(env_t env, std::uint32_t wrap, std::uint32_t swap, std::uint32_t hi, std::uint32_t lo,
                        std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp) {
  dma_incr_wrap_4B_part1_p(env, hi, lo, req_loc, resp);
  dma_incr_wrap_4B_part2_p(env, wrap, swap, hi, lo, req_loc);
  dma_initiate(env, dma_build_cmd(RES_MEMORY, req_loc, 24, resp_loc, resp ? 16 : 0));
}

void dma_epe_read_clr_16B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc,
                            std::uint32_t resp_loc) {
  mem_request(env, MEM_OP_EPE_READ_CLR_16B, true, hi, lo, req_loc, 8, resp_loc, 16);
}

void dma_dpe_read_32B_p(env_t env, std::uint32_t hi, std::uint32_t lo, std::uint32_t req_loc, std::uint32_t resp_loc) {
  mem_request(env, MEM_OP_READ_32B, false, hi, lo, req_loc, 8, resp_loc, 32);
}

void dma_dpe_write_32B_p(env_t env, std::uint32_t hi, std::uint32_t lo, const std::uint8_t* data, std::uint32_t req_loc,
                         std::uint32_t resp_loc, boolean_t resp) {
  mem_write(env, MEM_OP_DPE_WRITE_32B, hi, lo, data, 32, req_loc, resp_loc, resp ? 8 : 0);
}

void dma_read_4B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, std::uint32_t req_loc, std::uint32_t resp_loc) {
  virtual_read(env, MEM_OP_READ_4B, vaddr, tlu, req_loc, resp_loc, 4);
}
void dma_read_8B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, std::uint32_t req_loc, std::uint32_t resp_loc) {
  virtual_read(env, MEM_OP_READ_8B, vaddr, tlu, req_loc, resp_loc, 8);
}
void dma_read_16B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, std::uint32_t req_loc, std::uint32_t resp_loc) {
  virtual_read(env, MEM_OP_READ_16B, vaddr, tlu, req_loc, resp_loc, 16);
}
void dma_read_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, std::uint32_t req_loc, std::uint32_t resp_loc) {
  virtual_read(env, MEM_OP_READ_32B, vaddr, tlu, req_loc, resp_loc, 32);
}
void dma_dpe_read_ext_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, std::uint32_t req_loc,
                          std::uint32_t resp_loc) {
  virtual_read(env, MEM_OP_READ_32B, vaddr, tlu, req_loc, resp_loc, 32);
}

void dma_write_4B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, std::uint32_t data, std::uint32_t req_loc,
                  std::uint32_t resp_loc, dma_write_opts_st opts) {
  be_u32 word;
  word = data;
  virtual_write(env, MEM_OP_WRITE_4B, vaddr, tlu, word.b, 4, req_loc, resp_loc, opts);
}
void dma_write_8B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, const std::uint8_t* data, std::uint32_t req_loc,
                  std::uint32_t resp_loc, dma_write_opts_st opts) {
  virtual_write(env, MEM_OP_WRITE_8B, vaddr, tlu, data, 8, req_loc, resp_loc, opts);
}
void dma_write_16B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, const std::uint8_t* data, std::uint32_t req_loc,
                   std::uint32_t resp_loc, dma_write_opts_st opts) {
  virtual_write(env, MEM_OP_WRITE_16B, vaddr, tlu, data, 16, req_loc, resp_loc, opts);
}
void dma_write_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, const std::uint8_t* data, std::uint32_t req_loc,
                   std::uint32_t resp_loc, dma_write_opts_st opts) {
  virtual_write(env, MEM_OP_WRITE_32B, vaddr, tlu, data, 32, req_loc, resp_loc, opts);
}
// 48 bytes go out as a 32-byte and a 16-byte write from the same cell; each
// request is taken up when it is issued.
void dma_write_48B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, const std::uint8_t* data, std::uint32_t req_loc,
                   std::uint32_t resp_loc, dma_write_opts_st opts) {
  virtual_write(env, MEM_OP_WRITE_32B, vaddr, tlu, data, 32, req_loc, resp_loc, opts);
  virtual_write(env, MEM_OP_WRITE_16B, vaddr + 32, tlu, data + 32, 16, req_loc, resp_loc, opts);
}

void dma_alu_4B(env_t env, dma_alu_op_e op, std::uint32_t vaddr, std::uint32_t tlu, std::uint32_t operand,
                std::uint32_t req_loc, std::uint32_t resp_loc, dma_write_opts_st opts) {
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  dma_tmu_lpa(env, vaddr, tlu, req_loc, &hi, &lo);
  const bool want_resp = opts.resp || opts.invalidate_tlu;
  dma_alu_4B_p(env, op, hi, lo, operand, req_loc, opts.resp ? resp_loc : req_loc, want_resp);
  if (opts.invalidate_tlu) {
    tlu_invalidate(env, static_cast<std::uint8_t>(hi), lo, opts.invalidate_wait, req_loc, req_loc);
  }
}

void dma_plu_read_32B(env_t env, std::uint32_t vaddr, std::uint32_t req_loc, std::uint32_t resp_loc) {
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  plu_get_m40_adrs(env, vaddr, &hi, &lo);
  dma_read_32B_p(env, hi, lo, req_loc, resp_loc);
}

void dma_plu_write_32B(env_t env, std::uint32_t vaddr, const std::uint8_t* data, std::uint32_t req_loc,
                       std::uint32_t resp_loc, boolean_t resp) {
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  plu_get_m40_adrs(env, vaddr, &hi, &lo);
  dma_write_32B_p(env, hi, lo, data, req_loc, resp_loc, resp);
}

void dma_dram_write_32B(env_t env, std::uint32_t vaddr, std::uint32_t tlu, const std::uint8_t* data,
                        std::uint32_t req_loc, std::uint32_t resp_loc, boolean_t resp) {
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  dma_tmu_lpa(env, vaddr, tlu, req_loc, &hi, &lo);
  dma_write_32B_p(env, hi, lo, data, req_loc, resp_loc, resp);
}

void dma_tlu_incr_4B(env_t env, std::uint32_t vaddr, std::uint32_t req_loc) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = mem_req_word0(0, MEM_OP_INCR_4B, true, false);
  w[1] = vaddr;
  dma_initiate(env, dma_build_cmd(RES_TLU_COUNTERS, req_loc, 8, req_loc, 0));
}

void dma_tlu_condsub_4B(env_t env, std::uint32_t vaddr, std::uint32_t count, std::uint32_t req_loc,
                        std::uint32_t resp_loc) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = mem_req_word0(0, MEM_OP_CONDSUB_4B, true, true);
  w[1] = vaddr;
  w[2] = count;
  dma_initiate(env, dma_build_cmd(RES_TLU_COUNTERS, req_loc, 12, resp_loc, 8));
}

void dma_flowlock_convert(env_t env, std::uint32_t flowlock_id, std::uint32_t flb_req_loc, std::uint32_t flb_resp_loc) {
  be_u32* w = dma_cell_words(env, flb_req_loc);
  w[0] = FLB_CMD_FLOWLOCK_CONVERT;
  w[1] = flowlock_id;
  dma_initiate(env, dma_build_cmd(RES_FLB, flb_req_loc, 8, flb_resp_loc, 8));
}

void dma_flowlock_convert_and_read16(env_t env, std::uint32_t flowlock_id, std::uint32_t vaddr,
                                     std::uint32_t tlu_resource_id, std::uint32_t req_loc, std::uint32_t resp_loc) {
  std::uint32_t hi = 0;
  std::uint32_t lo = 0;
  dma_tmu_lpa(env, vaddr, tlu_resource_id, req_loc, &hi, &lo);
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = FLB_CMD_FLOWLOCK_CONVERT_READ16;
  w[1] = flowlock_id;
  w[2] = mem_req_word0(hi, MEM_OP_READ_16B, false, true);
  w[3] = lo;
  dma_initiate(env, dma_build_cmd(RES_FLB, req_loc, 16, resp_loc, 16));
}
