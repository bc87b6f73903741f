// Fabric transmit: the fabric header's length and checksum, the gather
// request that names the packet's pieces, and the send to the FLB.
//
// The gather request (flb_defs.h) stands at flb_gather_req_loc.
//
// A frame under 64 bytes is brought to 64: the first form adds a pad piece
// read from pkt_start, the v2 and v3 forms clear words behind the payload.
#pragma once

#include <cstdint>

#include "flb_defs.h"
#include "fwc_types.h"

inline constexpr std::uint32_t FLB_GATHER_REQ_LOC = 0x250;
inline constexpr std::uint32_t FLB_GATHER_RESP_LOC = 0x000;
inline constexpr std::uint32_t FAB_MIN_FRAME_LEN = 64;
// dc3_plen counts the frame without the first 28 bytes of the header.
inline constexpr std::uint32_t FAB_PLEN_EXCLUDED = 28;
inline constexpr std::uint32_t GATHER_CMD_CLEAR_ON_KEEP = 0x40000;
inline constexpr std::uint32_t GATHER_KEEP_RESP_LOC = 0x2D0;
inline constexpr std::uint32_t FLB_SEND_CMD = 0x16400300;
inline constexpr std::uint32_t SL_FEATURE_ID_FABRIC = 1;

void plat_final_fab_prep(env_t env, std::uint8_t* encap, std::uint32_t total_frame_len);
void plat_final_fab_prep2(env_t env);
void npu_xmit_pkt_fab_prep(env_t env, std::uint8_t* encap_addr, std::uint32_t encap_len, std::uint8_t* payload_addr,
                           std::uint32_t payload_len, std::uint32_t gather_req_loc, boolean_t mcast);
// With a second encapsulation piece between the first and the payload.
void npu_xmit_pkt_fab_prep_v2(env_t env, std::uint8_t* encap_addr1, std::uint32_t encap_len1, std::uint8_t* encap_addr2,
                              std::uint32_t encap_len2, std::uint8_t* payload_addr, std::uint32_t payload_len,
                              std::uint32_t gather_req_loc, boolean_t mcast);
// The request has no word 1, so it cannot become a keep send.
void npu_xmit_pkt_fab_prep_v3(env_t env, std::uint8_t* encap_addr, std::uint32_t encap_len, std::uint8_t* payload_addr,
                              std::uint32_t payload_len, std::uint32_t gather_req_loc, boolean_t mcast);
void npu_xmit_pkt_fab(env_t env, std::uint32_t flb_gather_req_loc, std::uint32_t gather_resp_loc);
void npu_xmit_pkt_v2_fab(env_t env, std::uint32_t flb_gather_req_loc, std::uint32_t gather_resp_loc);
void npu_pkt_tx_request_ing(env_t env);
void npu_xmit_pkt_keep(env_t env, boolean_t qsm_header_present, std::uint32_t flb_gather_req_loc,
                       std::uint32_t flb_gather_req_size, std::uint32_t res_loc);
// One piece word: the count goes in the first piece only.
std::uint32_t npu_gather_piece(env_t env, std::uint32_t count, std::uint32_t len, const std::uint8_t* addr);
