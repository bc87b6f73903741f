#include "xmit_fab.h"

#include <array>
#include <initializer_list>

#include "arch_tie.h"
#include "dma_common.h"
#include "dplane/infra/lookup.h"
#include "dplane/infra/ps.h"
#include "dplane/infra/util.h"
#include "fab_hdr.h"
#include "global_counters.h"
#include "pkt_buf.h"
#include "pkt_rx.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/fab_hdr_write.h"

namespace {

using cf = common_flags_st;
constexpr std::uint32_t HANDLE_SHIFT = 16;
constexpr std::uint32_t HANDLE_MASK = 0x1FFF;
// Traced packets that the ingress side sends to the fabric.

// Words 0 to 2, or without word 1 in the v3 form; returns the first piece word.
be_u32* write_gather_head(env_t env, be_u32* req, boolean_t mcast, bool lock_word) {
  req[0] = pkt_rx_is_ingress(env) ? GATHER_CMD_INGRESS : GATHER_CMD_LOOPBACK;
  if (lock_word) req[1] = 0;
  be_u32* handle_word = req + (lock_word ? 2 : 1);
  const std::uint32_t handle = (pkt_rx_gpm_pkt_handle(env) & HANDLE_MASK) << HANDLE_SHIFT;
  *handle_word = handle | GATHER_HANDLE_VALID | (mcast ? GATHER_MCAST : 0);
  return handle_word + 1;
}

// The fabric takes no frame under 64 bytes: bytes from pkt_start pad it.
void npu_xmit_pkt_fab_prep_small_pkt(env_t env, be_u32* pad_piece, std::uint32_t frame_len) {
  if (std::uint8_t* fab = *ps_get_xmit_fab_encap_start(env)) {
    dc3_nph_st::dc3_plen::set(fab_as<dc3_nph_st>(fab), FAB_MIN_FRAME_LEN - FAB_PLEN_EXCLUDED);
  }
  *pad_piece = npu_gather_piece(env, 0, FAB_MIN_FRAME_LEN - frame_len, *ps_get_pkt_start(env));
}

// A packet on the egress side goes back to the fabric behind a 7-byte shim.
void npu_xmit_pkt_prep_service_loopback(env_t env, std::uint8_t* shim, std::uint32_t total_len,
                                        std::uint32_t payload_len, std::uint32_t sl_feature_id) {
  const common_flags_st& flags = *ps_get_common_flags(env);
  shim[0] = 0x00;
  shim[1] = cf::critical_priority::get(flags) ? 0x29 : 0x28;
  const std::uint32_t len_word = ((shim[2] << 8) & 0xC000) | ((total_len + NPU_SPAN_EGR_FAB_SHIM_SIZE) & 0x3FFF);
  shim[2] = static_cast<std::uint8_t>(len_word >> 8);
  shim[3] = static_cast<std::uint8_t>(len_word);
  const std::uint32_t payload_word = ((shim[4] << 8) & 0xC000) | (payload_len & 0x3FFF);
  shim[4] = static_cast<std::uint8_t>(payload_word >> 8);
  shim[5] = static_cast<std::uint8_t>(payload_word);
  shim[6] = static_cast<std::uint8_t>((sl_feature_id & 0x7F) | (cf::pkt_trace_on::get(flags) << 7));
}

// Zero words behind the payload bring a small frame to 64 bytes; returns the
// payload length that reaches the 64-byte mark.
std::uint32_t npu_xmit_pkt_fab_pad_in_place(std::uint8_t* payload_addr, std::uint32_t encap_len,
                                            std::uint32_t payload_len) {
  const std::uint32_t padded_len = FAB_MIN_FRAME_LEN - encap_len;
  memzero_words(payload_addr + payload_len, static_cast<std::int32_t>(padded_len - payload_len));
  return padded_len;
}

// How a request is laid out, and how it brings a frame under 64 bytes to 64.
struct fab_request_form {
  bool lock_word;      // word 1 stands in the request
  bool pads_in_place;  // zero words behind the payload instead of a pad piece
};
constexpr fab_request_form FORM_PAD_PIECE{true, false};
constexpr fab_request_form FORM_V2{true, true};
constexpr fab_request_form FORM_V3{false, true};

struct fab_encap {
  std::uint8_t* addr;
  std::uint32_t len;
};

// The pieces leave in order: first header, second header, payload, pad.
void fab_prep(env_t env, fab_request_form form, fab_encap encap1, fab_encap encap2, std::uint8_t* payload_addr,
              std::uint32_t payload_len, std::uint32_t gather_req_loc, boolean_t mcast) {
  const std::uint32_t encap_len = encap1.len + encap2.len;
  if (form.pads_in_place && encap_len + payload_len < FAB_MIN_FRAME_LEN) {
    payload_len = npu_xmit_pkt_fab_pad_in_place(payload_addr, encap_len, payload_len);
  }
  const std::uint32_t frame_len = encap_len + payload_len;
  plat_final_fab_prep(env, encap1.addr, frame_len);
  be_u32* piece = write_gather_head(env, dma_cell_words(env, gather_req_loc), mcast, form.lock_word);
  std::array<std::uint8_t*, GATHER_MAX_PIECES> addr{};
  std::array<std::uint32_t, GATHER_MAX_PIECES> len{};
  std::uint32_t count = 0;
  for (const fab_encap& e : {encap1, encap2}) {
    if (e.addr == nullptr) continue;
    addr[count] = e.addr;
    len[count++] = e.len;
  }
  addr[count] = payload_addr;
  len[count++] = payload_len;
  if (!pkt_rx_is_ingress(env)) {
    addr[0] -= NPU_SPAN_EGR_FAB_SHIM_SIZE;
    len[0] += NPU_SPAN_EGR_FAB_SHIM_SIZE;
    npu_xmit_pkt_prep_service_loopback(env, addr[0], frame_len, payload_len, SL_FEATURE_ID_FABRIC);
  }
  const bool pad_piece = frame_len < FAB_MIN_FRAME_LEN;
  for (std::uint32_t i = 0; i < count; ++i) {
    piece[i] = npu_gather_piece(env, i == 0 ? count + (pad_piece ? 1 : 0) : 0, len[i], addr[i]);
  }
  if (pad_piece) npu_xmit_pkt_fab_prep_small_pkt(env, &piece[count], frame_len);
}

}  // namespace

// Offsets count from the packet buffer's start, which the loop asked for once
// at arrival and keeps ahead of pkt_mem_start.
std::uint32_t npu_gather_piece(env_t env, std::uint32_t count, std::uint32_t len, const std::uint8_t* addr) {
  const std::uint8_t* buf_start = *ps_get_pkt_mem_start(env) - PKT_BUF_HEAD_ROOM;
  const auto offset = static_cast<std::uint32_t>(addr - buf_start);
  gather_piece_st piece{};
  gather_piece_st::count::set(piece, count);
  gather_piece_st::length::set(piece, len);
  gather_piece_st::offset::set(piece, offset);
  return gather_piece_st::word::get(piece);
}

void plat_final_fab_prep(env_t env, std::uint8_t* encap, std::uint32_t total_frame_len) {
  *ps_put_mod_xmit_fab_encap_start(env) = encap;
  if (encap == nullptr) return;
  dc3_nph_st::dc3_plen::set(fab_as<dc3_nph_st>(encap), total_frame_len - FAB_PLEN_EXCLUDED);
}

// Multicast headers (no fabric port) carry a checksum; unicast ones do not.
void plat_final_fab_prep2(env_t env) {
  std::uint8_t* fab = *ps_get_xmit_fab_encap_start(env);
  if (fab == nullptr || dc3_nph_st::dc3_sfp_valid::get(fab_as<dc3_nph_st>(fab))) return;
  dc3_set_checksum(fab);
}

void npu_xmit_pkt_fab_prep(env_t env, std::uint8_t* encap_addr, std::uint32_t encap_len, std::uint8_t* payload_addr,
                           std::uint32_t payload_len, std::uint32_t gather_req_loc, boolean_t mcast) {
  fab_prep(env, FORM_PAD_PIECE, {encap_addr, encap_len}, {nullptr, 0}, payload_addr, payload_len, gather_req_loc,
           mcast);
}

void npu_xmit_pkt_fab_prep_v2(env_t env, std::uint8_t* encap_addr1, std::uint32_t encap_len1, std::uint8_t* encap_addr2,
                              std::uint32_t encap_len2, std::uint8_t* payload_addr, std::uint32_t payload_len,
                              std::uint32_t gather_req_loc, boolean_t mcast) {
  fab_prep(env, FORM_V2, {encap_addr1, encap_len1}, {encap_addr2, encap_len2}, payload_addr, payload_len,
           gather_req_loc, mcast);
}

void npu_xmit_pkt_fab_prep_v3(env_t env, std::uint8_t* encap_addr, std::uint32_t encap_len, std::uint8_t* payload_addr,
                              std::uint32_t payload_len, std::uint32_t gather_req_loc, boolean_t mcast) {
  fab_prep(env, FORM_V3, {encap_addr, encap_len}, {nullptr, 0}, payload_addr, payload_len, gather_req_loc, mcast);
}

void npu_xmit_pkt_fab(env_t env, std::uint32_t flb_gather_req_loc, std::uint32_t gather_resp_loc) {
  plat_final_fab_prep2(env);
  const common_flags_st& flags = *ps_get_common_flags(env);
  if (cf::pkt_trace_on::get(flags) && pkt_rx_is_ingress(env)) {
    lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, CNT_TRACED_TO_FABRIC);
  }
  if (cf::keep_gpm::get(flags)) {
    npu_xmit_pkt_keep(env, FALSE, flb_gather_req_loc, GATHER_KEEP_REQ_BYTES, GATHER_KEEP_RESP_LOC);
    return;
  }
  dma_flush_initiate_and_wait(env, FLB_SEND_CMD | (flb_gather_req_loc / 16) | ((gather_resp_loc / 16) << 12));
}

// The request of the v2 form has the same words and size as the first form's.
void npu_xmit_pkt_v2_fab(env_t env, std::uint32_t flb_gather_req_loc, std::uint32_t gather_resp_loc) {
  npu_xmit_pkt_fab(env, flb_gather_req_loc, gather_resp_loc);
}

void npu_pkt_tx_request_ing(env_t env) { npu_xmit_pkt_fab(env, FLB_GATHER_REQ_LOC, FLB_GATHER_RESP_LOC); }

// A copy leaves; the buffer stays with the thread for the work that follows.
// With a QSM word the gather words start one word later.
void npu_xmit_pkt_keep(env_t env, boolean_t qsm_header_present, std::uint32_t flb_gather_req_loc,
                       std::uint32_t flb_gather_req_size, std::uint32_t res_loc) {
  be_u32* req = dma_cell_words(env, flb_gather_req_loc) + (qsm_header_present ? 1 : 0);
  req[0] = req[0].get() & ~GATHER_CMD_CLEAR_ON_KEEP;
  if (flb_gather_req_size == GATHER_KEEP_REQ_BYTES) req[1] = *ps_get_next_flowlock_id(env);
  req[2] = req[2].get() | GATHER_KEEP;
  gpmwbi();
  dma_initiate(env, dma_build_cmd(RES_FLB, flb_gather_req_loc, flb_gather_req_size, res_loc, 16));
}
