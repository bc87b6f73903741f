#include "pkt_mem_alloc.h"

#include "dma_common.h"
#include "dplane/infra/drop.h"
#include "dplane/infra/ps.h"
#include "global_counters.h"
#include "pkt_rx.h"
#include "platform/shared/handlers.h"

namespace {

using cf = common_flags_st;

constexpr std::uint32_t GPB_HANDLE_ENGINE_MASK = 0x3;

// Where each feature's area starts below pkt_mem_start, and its largest request.
struct feature_area {
  std::uint32_t depth;
  std::uint32_t limit;
};
constexpr feature_area feature_areas[] = {
    {0, 0},     // PACKET_MEM_INVALID
    {96, 96},   // PACKET_MEM_PUNT
    {192, 80},  // PACKET_MEM_LI
    {112, 0},   // PACKET_MEM_RECYCLE: every request is refused
    {112, 16},  // PACKET_MEM_TBPG
};
constexpr std::uint32_t FEATURE_COUNT = sizeof feature_areas / sizeof feature_areas[0];

std::uint32_t gpm_allocated(env_t env) { return cf::gpm_allocated::get(*ps_get_common_flags(env)); }

// Asks for the next block; false if the buffer engine refuses it.
bool alloc_next_block(env_t env) {
  const std::uint32_t held = gpm_allocated(env);
  gpb_alloc_head(env, pkt_rx_gpm_pkt_handle(env), GPB_FIRST_HEAD_SEGMENT - held, GPB_ALLOC_CELL, GPB_ALLOC_CELL);
  const auto& resp = *reinterpret_cast<const gpb_alloc_response_*>(env_get_dmem_start(env) + GPB_ALLOC_CELL);
  if (gpb_alloc_response_::ack::get(resp) != GPB_ACK_GRANTED) return false;
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  cf::gpm_allocated::set(flags, held + 1);
  // A replication loop restores the flags of each copy: it must keep the block.
  if (cf::inline_rep_in_progress::get(flags)) do_modify_inline_state(env, REP_STATE_GPM_ALLOCATED);
  return true;
}

// Holds at least `need` blocks afterwards, unless the buffer engine refuses.
bool alloc_blocks(env_t env, std::uint32_t need) {
  while (gpm_allocated(env) < need) {
    if (!alloc_next_block(env)) return false;
  }
  return true;
}

std::uint32_t blocks_for(std::uint32_t bytes) { return (bytes + GPM_BLOCK_BYTES - 1) / GPM_BLOCK_BYTES; }

}  // namespace

unsigned char* npu_alloc_packet_mem_start(env_t env) {
  return *ps_get_pkt_mem_start(env) - GPM_BLOCK_BYTES * gpm_allocated(env);
}

unsigned char* npu_alloc_packet_mem_end(env_t env) { return *ps_get_pkt_mem_start(env); }

unsigned char* npu_alloc_packet_mem(env_t env, std::uint32_t size) {
  if (size == 0 || size > GPM_MAX_HEAD_BYTES) return nullptr;
  if (!alloc_blocks(env, blocks_for(size))) return nullptr;
  return npu_alloc_packet_mem_start(env);
}

unsigned char* packet_mem_alloc(env_t env, packet_mem_feature feature, std::uint32_t size) {
  if (size == 0 || feature == PACKET_MEM_INVALID || feature >= FEATURE_COUNT) {
    drop_packet(env, DROP_PACKET_MEM_BAD_REQUEST);
    return nullptr;
  }
  const feature_area& area = feature_areas[feature];
  if (size > area.limit) {
    drop_packet(env, DROP_PACKET_MEM_TOO_LARGE);
    return nullptr;
  }
  if (!alloc_blocks(env, blocks_for(area.depth))) {
    drop_packet_return_to_main(env, DROP_PACKET_MEM_BAD_REQUEST);
    return nullptr;
  }
  return *ps_get_pkt_mem_start(env) - area.depth;
}

void gpb_alloc_head(env_t env, std::uint32_t packet_handle, std::uint32_t virtual_segment, std::uint32_t req_loc,
                    std::uint32_t resp_loc) {
  const bool ingress = pkt_rx_is_ingress(env) != 0;
  auto& req = *reinterpret_cast<gpb_alloc_request_st*>(env_get_dmem_start(env) + req_loc);
  req = gpb_alloc_request_st{};
  gpb_alloc_request_st::cmd::set(req, ingress ? GPB_CMD_ALLOC_INGRESS : GPB_CMD_ALLOC_EGRESS);
  gpb_alloc_request_st::packet_handle::set(req, packet_handle);
  gpb_alloc_request_st::virtual_segment::set(req, virtual_segment);
  const std::uint32_t resource = (ingress ? GPB_RESOURCE_INGRESS : GPB_RESOURCE_EGRESS) +
                                 GPB_RESOURCE_STRIDE * (packet_handle & GPB_HANDLE_ENGINE_MASK);
  dma_initiate(env, dma_build_cmd(resource, req_loc, sizeof req, resp_loc, sizeof(gpb_alloc_response_)));
}
