#include "tlu.h"

#include <bit>
#include <cstring>

#include "arch_tie.h"
#include "dma_common.h"
#include "dplane/infra/ps.h"

namespace {

constexpr std::uint32_t ONE_WORD = 4;
constexpr std::uint32_t TWO_WORDS = 8;
constexpr std::uint32_t MOD_REQUEST_BYTES = 16;
constexpr std::uint32_t RETURN_RESULT_BYTES = sizeof(tlu_long_div_rmr_response_);

// The command word of a read of `bytes` (4, 8, 16, 32): the resource with
// allocation, moved to the one without as the policy says.
std::uint32_t read_cmd(env_t env, std::uint32_t bytes, std::uint32_t req_loc, std::uint32_t resp_loc,
                       tlu_cache_policy_e policy) {
  const std::uint32_t resource = RES_TLU_READ_4B + static_cast<std::uint32_t>(std::countr_zero(bytes)) - 2;
  const std::uint32_t cmd = dma_build_cmd(resource, req_loc, ONE_WORD, resp_loc, bytes);
  switch (policy) {
    case TLU_CACHE_NEVER:
      return cmd + TLU_POLICY_NO_ALLOCATE;
    case TLU_CACHE_ALWAYS:
      return cmd;
    case TLU_CACHE_PERIODIC:
      return cmd + *ps_get_tlu_alloc_policy_for_read(env);
  }
  return cmd;
}

void read(env_t env, std::uint32_t word, std::uint32_t bytes, std::uint32_t req_loc, std::uint32_t resp_loc,
          tlu_cache_policy_e policy) {
  dma_cell_words(env, req_loc)[0] = word;
  dma_initiate(env, read_cmd(env, bytes, req_loc, resp_loc, policy));
}

// Reads into `out` through the first bytes of data memory, which it puts back;
// bytes of the saved area that the result covers keep the result.
void read_no_dmem(env_t env, std::uint32_t mem_addr, std::uint32_t bytes, void* out, tlu_cache_policy_e policy) {
  std::uint8_t* dmem = env_get_dmem_start(env);
  std::uint8_t saved[32];
  std::memcpy(saved, dmem, bytes);
  read(env, mem_addr, bytes, 0, 0, policy);
  std::memmove(out, dmem, bytes);
  auto* dst = static_cast<std::uint8_t*>(out);
  for (std::uint32_t i = 0; i < bytes; ++i) {
    if (dmem + i < dst || dmem + i >= dst + bytes) dmem[i] = saved[i];
  }
}

bool mod_allocates(env_t env, tlu_cache_policy_e policy) {
  switch (policy) {
    case TLU_CACHE_NEVER:
      return false;
    case TLU_CACHE_ALWAYS:
      return true;
    case TLU_CACHE_PERIODIC:
      return *ps_get_tlu_alloc_policy_for_read(env) == 0;
  }
  return false;
}

void erc_request(env_t env, std::uint32_t req_adrs, std::uint32_t cmd, std::uint32_t erc_cmd_word,
                 std::uint32_t erc_adrs) {
  be_u32* w = dma_cell_words(env, req_adrs);
  w[0] = cmd;
  w[1] = erc_adrs;
  w[2] = erc_cmd_word;
}

std::uint32_t resp_word(env_t env, std::uint32_t loc, std::uint32_t i) { return dma_cell_words(env, loc)[i].get(); }

}  // namespace

void tlu_read_4B(env_t env, std::uint32_t mem_addr, std::uint32_t, std::uint32_t tlu_req_loc,
                 std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable) {
  read(env, mem_addr, 4, tlu_req_loc, tlu_resp_loc, tlu_cache_enable);
}
void tlu_read_8B(env_t env, std::uint32_t mem_addr, std::uint32_t, std::uint32_t tlu_req_loc,
                 std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable) {
  read(env, mem_addr, 8, tlu_req_loc, tlu_resp_loc, tlu_cache_enable);
}
void tlu_read_16B(env_t env, std::uint32_t mem_addr, std::uint32_t, std::uint32_t tlu_req_loc,
                  std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable) {
  read(env, mem_addr, 16, tlu_req_loc, tlu_resp_loc, tlu_cache_enable);
}
void tlu_read_32B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_req_loc, std::uint32_t tlu_resp_loc,
                  tlu_cache_policy_e tlu_cache_enable) {
  read(env, mem_addr, 32, tlu_req_loc, tlu_resp_loc, tlu_cache_enable);
}
void tlu_read_16B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, std::uint32_t tlu_req_loc,
                         std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable) {
  read(env, tlu_paged_word(tpd_idx, record_idx), 16, tlu_req_loc, tlu_resp_loc, tlu_cache_enable);
}
void tlu_read_32B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, std::uint32_t tlu_req_loc,
                         std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable) {
  read(env, tlu_paged_word(tpd_idx, record_idx), 32, tlu_req_loc, tlu_resp_loc, tlu_cache_enable);
}
void tlu_read_16B_no_dmem(env_t env, std::uint32_t mem_addr, std::uint32_t, void* tlu_resp_loc,
                          tlu_cache_policy_e tlu_cache_enable) {
  read_no_dmem(env, mem_addr, 16, tlu_resp_loc, tlu_cache_enable);
}
void tlu_read_32B_no_dmem(env_t env, std::uint32_t mem_addr, void* tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable) {
  read_no_dmem(env, mem_addr, 32, tlu_resp_loc, tlu_cache_enable);
}

void tmu_lpa(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t tlu_req_loc,
             std::uint32_t tlu_resp_loc) {
  be_u32* w = dma_cell_words(env, tlu_req_loc);
  w[0] = TLU_CMD_TMU_LPA;
  w[1] = vaddr;
  dma_initiate(env, dma_build_cmd(tlu_resource_id, tlu_req_loc, TWO_WORDS, tlu_resp_loc, TWO_WORDS));
}
void tmu_lpa_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, std::uint32_t tlu_req_loc,
                    std::uint32_t tlu_resp_loc) {
  be_u32* w = dma_cell_words(env, tlu_req_loc);
  w[0] = TLU_CMD_TMU_LPA_PAGED;
  w[1] = tlu_paged_record(tpd_idx, record_idx);
  dma_initiate(env, dma_build_cmd(TLU_PAGED_RESOURCE, tlu_req_loc, TWO_WORDS, tlu_resp_loc, TWO_WORDS));
}
std::uint32_t tmu_lpa_get_hi(env_t env, std::uint32_t tlu_resp_loc) { return resp_word(env, tlu_resp_loc, 0) & 0xFF; }
std::uint32_t tmu_lpa_get_lo(env_t env, std::uint32_t tlu_resp_loc) { return resp_word(env, tlu_resp_loc, 1); }
std::uint32_t tmu_lpa_paging_get_hi(env_t env, std::uint32_t tlu_resp_loc) {
  return resp_word(env, tlu_resp_loc, 0) & 0xFF;
}
std::uint32_t tmu_lpa_paging_get_lo(env_t env, std::uint32_t tlu_resp_loc) {
  return resp_word(env, tlu_resp_loc, 1) & ~7u;
}
boolean_t tmu_lpa_paging_failed(env_t env, std::uint32_t tlu_resp_loc) {
  return (resp_word(env, tlu_resp_loc, 1) & 7u) != 0;
}

void tlu_mod(env_t env, std::uint32_t tlu_resource_id, tlu_mod_operands_st ops, std::uint32_t tlu_req_loc,
             std::uint32_t tlu_resp_loc) {
  tlu_mod_internal(env, TLU_MOD_RETURN_RESULT, RETURN_RESULT_BYTES, tlu_resource_id, 0, ops,
                   {tlu_req_loc, tlu_resp_loc, TLU_CACHE_NEVER});
}
void tlu_mod_read_4B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, tlu_mod_operands_st ops,
                     const tlu_mod_loc_st& loc) {
  tlu_mod_internal(env, TLU_MOD_READ_4B, 4, tlu_resource_id, mem_addr, ops, loc);
}
void tlu_mod_read_16B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, tlu_mod_operands_st ops,
                      const tlu_mod_loc_st& loc) {
  tlu_mod_internal(env, TLU_MOD_READ_16B, 16, tlu_resource_id, mem_addr, ops, loc);
}
void tlu_mod_read_16B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, tlu_mod_operands_st ops,
                             const tlu_mod_loc_st& loc) {
  tlu_mod_internal_paging(env, TLU_MOD_READ_16B | TLU_MOD_PAGED, 16, record_idx, tpd_idx, ops, loc);
}
void tlu_mod_return_result_read_16B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id,
                                    tlu_mod_operands_st ops, const tlu_mod_loc_st& loc) {
  tlu_mod_internal(env, TLU_MOD_READ_16B | TLU_MOD_RETURN_RESULT, RETURN_RESULT_BYTES + 16, tlu_resource_id, mem_addr,
                   ops, loc);
}
void tlu_mod_return_result_read_16B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx,
                                           tlu_mod_operands_st ops, const tlu_mod_loc_st& loc) {
  tlu_mod_internal_paging(env, TLU_MOD_READ_16B | TLU_MOD_RETURN_RESULT | TLU_MOD_PAGED, RETURN_RESULT_BYTES + 16,
                          record_idx, tpd_idx, ops, loc);
}
void tlu_mod_return_result_read_32B_of_32B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id,
                                           tlu_mod_operands_st ops, const tlu_mod_loc_st& loc) {
  tlu_mod_internal(env, TLU_MOD_READ_32B | TLU_MOD_RETURN_RESULT, RETURN_RESULT_BYTES + 32, tlu_resource_id, mem_addr,
                   ops, loc);
}
void tlu_mod_return_result_read_32B_of_32B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx,
                                                  tlu_mod_operands_st ops, const tlu_mod_loc_st& loc) {
  tlu_mod_internal_paging(env, TLU_MOD_READ_32B | TLU_MOD_RETURN_RESULT | TLU_MOD_PAGED, RETURN_RESULT_BYTES + 32,
                          record_idx, tpd_idx, ops, loc);
}
void tlu_mod_internal(env_t env, std::uint32_t cmd_word, std::uint32_t tlu_resp_bytes, std::uint32_t tlu_resource_id,
                      std::uint32_t mem_addr, tlu_mod_operands_st ops, const tlu_mod_loc_st& loc) {
  be_u32* w = dma_cell_words(env, loc.tlu_req_loc);
  w[0] = mod_allocates(env, loc.tlu_cache_enable) ? cmd_word : cmd_word | TLU_MOD_NO_ALLOCATE;
  w[1] = mem_addr;
  w[2] = ops.denominator;
  w[3] = ops.numerator;
  dma_initiate(env,
               dma_build_cmd(tlu_resource_id, loc.tlu_req_loc, MOD_REQUEST_BYTES, loc.tlu_resp_loc, tlu_resp_bytes));
}
void tlu_mod_internal_paging(env_t env, std::uint32_t cmd_word, std::uint32_t tlu_resp_bytes, std::uint32_t record_idx,
                             std::uint32_t tpd_idx, tlu_mod_operands_st ops, const tlu_mod_loc_st& loc) {
  tlu_mod_internal(env, cmd_word, tlu_resp_bytes, TLU_PAGED_RESOURCE, tlu_paged_record(tpd_idx, record_idx), ops, loc);
}

void tlu_write_erc2_request(env_t env, std::uint32_t req_adrs, std::uint32_t erc_cmd_word, std::uint32_t erc_adrs) {
  erc_request(env, req_adrs, TLU_CMD_ERC2, erc_cmd_word, erc_adrs);
}
void tlu_write_erc3_request(env_t env, std::uint32_t req_adrs, std::uint32_t erc_cmd_word, std::uint32_t erc_adrs,
                            std::uint32_t erc_operand) {
  erc_request(env, req_adrs, TLU_CMD_ERC3, erc_cmd_word, erc_adrs);
  dma_cell_words(env, req_adrs)[3] = erc_operand;
}
void tlu_write_erc4_request(env_t env, std::uint32_t req_adrs, std::uint32_t erc_cmd_word, std::uint32_t erc_adrs,
                            std::uint32_t erc_operand) {
  erc_request(env, req_adrs, TLU_CMD_ERC4, erc_cmd_word, erc_adrs);
  dma_cell_words(env, req_adrs)[3] = erc_operand;
}

void tlu_invalidate(env_t env, std::uint8_t m40ah, std::uint32_t m40al, boolean_t resp, std::uint32_t req_loc,
                    std::uint32_t resp_loc) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = (std::uint32_t{m40ah} << 24) | TLU_INVALIDATE_MARK;
  w[1] = m40al;
  dma_initiate(env, dma_build_cmd(RES_TLU_INVALIDATE, req_loc, TWO_WORDS, resp_loc, resp ? TWO_WORDS : 0));
}
