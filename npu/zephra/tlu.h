// Requests to the tree lookup unit (TLU): reads of table memory by address
// or by page and record, with the cache policy choosing the resource; the
// modulus command that picks a group member by remainder and reads it in the
// same request; address translation; the long commands that forward one
// memory operation; the cache invalidate. Locations are data memory offsets
// of 16-byte cells.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "tlu_defs.h"

// Reads of 4, 8, 16 and 32 bytes by address. The resource follows from the
// size and the cache policy alone; tlu_resource_id is the caller's and not
// part of the request.
void tlu_read_4B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, std::uint32_t tlu_req_loc,
                 std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable);
void tlu_read_8B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, std::uint32_t tlu_req_loc,
                 std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable);
void tlu_read_16B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, std::uint32_t tlu_req_loc,
                  std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable);
void tlu_read_32B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_req_loc, std::uint32_t tlu_resp_loc,
                  tlu_cache_policy_e tlu_cache_enable);
// Reads of record record_idx of the table behind page descriptor tpd_idx.
void tlu_read_16B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, std::uint32_t tlu_req_loc,
                         std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable);
void tlu_read_32B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, std::uint32_t tlu_req_loc,
                         std::uint32_t tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable);
// Reads into any memory: the first 16 or 32 bytes of data memory serve as
// cell and are put back afterwards. The destination may overlap them.
void tlu_read_16B_no_dmem(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, void* tlu_resp_loc,
                          tlu_cache_policy_e tlu_cache_enable);
void tlu_read_32B_no_dmem(env_t env, std::uint32_t mem_addr, void* tlu_resp_loc, tlu_cache_policy_e tlu_cache_enable);

// Translation of a virtual address (2 words, 1 cell), and of a paged record
// on resource 120. The getters read the answers at tlu_resp_loc.
void tmu_lpa(env_t env, std::uint32_t vaddr, std::uint32_t tlu_resource_id, std::uint32_t tlu_req_loc,
             std::uint32_t tlu_resp_loc);
void tmu_lpa_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, std::uint32_t tlu_req_loc,
                    std::uint32_t tlu_resp_loc);
std::uint32_t tmu_lpa_get_hi(env_t env, std::uint32_t tlu_resp_loc);
std::uint32_t tmu_lpa_get_lo(env_t env, std::uint32_t tlu_resp_loc);
std::uint32_t tmu_lpa_paging_get_hi(env_t env, std::uint32_t tlu_resp_loc);
std::uint32_t tmu_lpa_paging_get_lo(env_t env, std::uint32_t tlu_resp_loc);
// Whether a paged translation failed (descriptor, page table parity or
// entry not valid): its address is then not usable.
boolean_t tmu_lpa_paging_failed(env_t env, std::uint32_t tlu_resp_loc);

// Modulus. The member read is mem_addr plus the remainder times the read
// size, or record_idx plus the remainder in the paged forms. The denominator
// is a member count, never 0.
struct tlu_mod_operands_st {
  std::uint32_t denominator;
  std::uint32_t numerator;
};
struct tlu_mod_loc_st {
  std::uint32_t tlu_req_loc;
  std::uint32_t tlu_resp_loc;
  tlu_cache_policy_e tlu_cache_enable;
};

// Remainder and quotient alone (tlu_long_div_rmr_response_).
void tlu_mod(env_t env, std::uint32_t tlu_resource_id, tlu_mod_operands_st ops, std::uint32_t tlu_req_loc,
             std::uint32_t tlu_resp_loc);
void tlu_mod_read_4B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, tlu_mod_operands_st ops,
                     const tlu_mod_loc_st& loc);
void tlu_mod_read_16B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id, tlu_mod_operands_st ops,
                      const tlu_mod_loc_st& loc);
void tlu_mod_read_16B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx, tlu_mod_operands_st ops,
                             const tlu_mod_loc_st& loc);
// The "return result" forms answer remainder and quotient (8 bytes), then the record.
void tlu_mod_return_result_read_16B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id,
                                    tlu_mod_operands_st ops, const tlu_mod_loc_st& loc);
void tlu_mod_return_result_read_16B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx,
                                           tlu_mod_operands_st ops, const tlu_mod_loc_st& loc);
void tlu_mod_return_result_read_32B_of_32B(env_t env, std::uint32_t mem_addr, std::uint32_t tlu_resource_id,
                                           tlu_mod_operands_st ops, const tlu_mod_loc_st& loc);
void tlu_mod_return_result_read_32B_of_32B_paging(env_t env, std::uint32_t record_idx, std::uint32_t tpd_idx,
                                                  tlu_mod_operands_st ops, const tlu_mod_loc_st& loc);
// The common tails: cmd_word is the command byte with allocation; the
// no-allocation bit is added unless the cache policy allocates.
void tlu_mod_internal(env_t env, std::uint32_t cmd_word, std::uint32_t tlu_resp_bytes, std::uint32_t tlu_resource_id,
                      std::uint32_t mem_addr, tlu_mod_operands_st ops, const tlu_mod_loc_st& loc);
void tlu_mod_internal_paging(env_t env, std::uint32_t cmd_word, std::uint32_t tlu_resp_bytes, std::uint32_t record_idx,
                             std::uint32_t tpd_idx, tlu_mod_operands_st ops, const tlu_mod_loc_st& loc);

// Long commands that forward one memory operation (erc_cmd_word, word 0 of
// a physical request) to the virtual address erc_adrs: written at the cell
// req_adrs, sent by the caller.
void tlu_write_erc2_request(env_t env, std::uint32_t req_adrs, std::uint32_t erc_cmd_word, std::uint32_t erc_adrs);
void tlu_write_erc3_request(env_t env, std::uint32_t req_adrs, std::uint32_t erc_cmd_word, std::uint32_t erc_adrs,
                            std::uint32_t erc_operand);
void tlu_write_erc4_request(env_t env, std::uint32_t req_adrs, std::uint32_t erc_cmd_word, std::uint32_t erc_adrs,
                            std::uint32_t erc_operand);

// Drops the TLU's cached copy of a physical address; with resp, an 8-byte
// answer tells that it is done.
void tlu_invalidate(env_t env, std::uint8_t m40ah, std::uint32_t m40al, boolean_t resp, std::uint32_t req_loc,
                    std::uint32_t resp_loc);
