#include "stats.h"

#include "tlu.h"

namespace {

// Word 0 of the physical statistics operations: all bytes, big-endian.
constexpr std::uint32_t STATS_INC_32 = mem_req_word0(0, MEM_OP_INCR_4B, true, false);
constexpr std::uint32_t STATS_INC_64 = mem_req_word0(0, MEM_OP_INCR_8B, true, false);
constexpr std::uint32_t STATS_ADD_INC_64 = mem_req_word0(0, MEM_OP_ADD_INCR_8B, true, false);
constexpr std::uint32_t STATS_READ_CLEAR_64 = mem_req_word0(0, MEM_OP_READ_CLR_8B, true, true);
static_assert(STATS_INC_32 == 0x000F0107 && STATS_INC_64 == 0x000F0108);
static_assert(STATS_ADD_INC_64 == 0x000F010A && STATS_READ_CLEAR_64 == 0x000F0390);

constexpr std::uint32_t TLU_STATS_REQ_BYTES = 16;

void physical_op(env_t env, std::uint32_t word0, memaddr_t stats, std::uint32_t req_loc) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = word0;
  w[1] = stats;
  dma_initiate(env, dma_build_cmd(RES_MEMORY, req_loc, 8, 0, 0));
}

void tlu_op(env_t env, std::uint32_t word0, memaddr_t stats, std::uint32_t tlu_resource_id, std::uint32_t req_loc) {
  tlu_write_erc2_request(env, req_loc, word0, stats);
  dma_cell_words(env, req_loc)[3] = 0;
  dma_initiate(env, dma_build_cmd(tlu_resource_id, req_loc, TLU_STATS_REQ_BYTES, 0, 0));
}

}  // namespace

void stats_inc_32(env_t env, memaddr_t stats, std::uint32_t stats_req_loc) {
  physical_op(env, STATS_INC_32, stats, stats_req_loc);
}

void stats_inc_64(env_t env, memaddr_t stats, std::uint32_t stats_req_loc) {
  physical_op(env, STATS_INC_64, stats, stats_req_loc);
}

void stats_addinc_32_issue(env_t env, std::uint32_t stats_addr, unsigned char* req_base_addr,
                           std::uint32_t stats_req_loc) {
  reinterpret_cast<be_u32*>(req_base_addr)[1] = stats_addr;
  dma_initiate(env, dma_build_cmd(RES_MEMORY, stats_req_loc, 12, 0, 0));
}

void stats_inc_32_tlu(env_t env, memaddr_t stats, std::uint32_t tlu_resource_id, std::uint32_t stats_req_loc) {
  tlu_op(env, STATS_INC_32, stats, tlu_resource_id, stats_req_loc);
}

void stats_inc_64_tlu(env_t env, memaddr_t stats, std::uint32_t tlu_resource_id, std::uint32_t stats_req_loc) {
  tlu_op(env, STATS_INC_64, stats, tlu_resource_id, stats_req_loc);
}

void stats_addinc_64_format_tlu(env_t env, memaddr_t stats, std::uint32_t count, std::uint32_t stats_req_loc) {
  tlu_write_erc4_request(env, stats_req_loc, STATS_ADD_INC_64, stats, count);
}

void stats_addinc_64_issue_tlu(env_t env, std::uint32_t tlu_resource_id, std::uint32_t stats_req_loc) {
  dma_initiate(env, dma_build_cmd(tlu_resource_id, stats_req_loc, TLU_STATS_REQ_BYTES, 0, 0));
}

void stats_addinc_64_tlu(env_t env, memaddr_t stats, std::uint32_t count, std::uint32_t tlu_resource_id,
                         std::uint32_t stats_req_loc) {
  stats_addinc_64_format_tlu(env, stats, count, stats_req_loc);
  stats_addinc_64_issue_tlu(env, tlu_resource_id, stats_req_loc);
}

void stats_read_clear64(env_t env, std::uint32_t stats_index, std::uint32_t req_loc, std::uint32_t resp_loc) {
  be_u32* w = dma_cell_words(env, req_loc);
  w[0] = STATS_READ_CLEAR_64;
  w[1] = compute_stats_address(env, stats_index);
  dma_initiate(env, dma_build_cmd(RES_MEMORY, req_loc, 8, resp_loc, sizeof(stats_counter_pair_st)));
}
