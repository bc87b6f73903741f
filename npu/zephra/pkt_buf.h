// The packet as the thread sees it: the window of packet memory with the
// packet's head, its length, the save area of the received header, and the
// marks of the interface in the distribution header.
//
// Packet memory, from pkt_mem_start (packet buffer + 4096):
//   -384..-1   head space: 128-byte blocks from the buffer engine (pkt_mem_alloc.h)
//    48..111   ingress save area
//   112..159   egress second-encapsulation area
//   160        first byte of the packet at arrival
#pragma once

#include <cstdint>

#include "arch_tie.h"
#include "dplane/infra/env_init.h"
#include "dplane/infra/ps.h"
#include "fwc_uidb.h"
#include "pkt_rx.h"

inline constexpr std::uint32_t L2_HDR_LEN_UNTAGGED = 14;
inline constexpr std::uint32_t L2_HDR_LEN_QINQ = 22;
// The shim ahead of the fabric header of a packet that is not in ingress.
inline constexpr std::uint32_t NPU_SPAN_EGR_FAB_SHIM_SIZE = 7;

inline std::uint8_t* pkt_get_rx_pkt_start(env_t env) { return *ps_get_pkt_start(env); }
inline std::uint8_t* pkt_get_rx_pkt_mem_start(env_t env) { return *ps_get_pkt_mem_start(env); }
inline std::uint32_t pkt_get_rx_packet_length(env_t env) { return *ps_get_curr_pkt_len(env); }
inline void pkt_set_rx_packet_length(env_t env, std::uint32_t len) {
  *ps_put_mod_curr_pkt_len(env) = static_cast<std::uint16_t>(len);
}
inline boolean_t pkt_l3_ing_is_tagged(env_t env) { return *ps_get_l2_hdr_len(env) != L2_HDR_LEN_UNTAGGED; }
inline boolean_t pkt_l3_ing_is_qinq(env_t env) { return *ps_get_l2_hdr_len(env) == L2_HDR_LEN_QINQ; }
inline std::uint32_t npu_punt_extra_internal_hdr_len(env_t env) {
  return pkt_rx_is_ingress(env) ? 0 : NPU_SPAN_EGR_FAB_SHIM_SIZE;
}
inline std::uint8_t* npu_get_fab_hdr_start(env_t env) {
  return pkt_get_rx_pkt_mem_start(env) + npu_punt_extra_internal_hdr_len(env);
}
inline std::int32_t pkt_get_cur_offset(env_t env, const std::uint8_t* cur_ptr) {
  return static_cast<std::int32_t>(cur_ptr - pkt_get_rx_pkt_mem_start(env));
}
// Bytes of the packet from pkt_ptr on; bytes ahead of the arrival start
// count as part of the packet.
std::uint32_t pkt_get_bytes_remaining(env_t env, const std::uint8_t* pkt_ptr);
// The first byte behind the packet as it stands now.
inline const std::uint8_t* pkt_get_rx_packet_end(env_t env) {
  return pkt_get_rx_pkt_start(env) + pkt_get_rx_packet_length(env);
}

// TRUE after dropping a fabric packet that the hardware marked bad.
boolean_t npu_verify_dst_error(env_t env, std::uint32_t dst_format);
// A packet in the ingress buffer whose input queue is filling.
inline boolean_t pkt_ing_qfill_drop_check(env_t env) {
  return pkt_rx_is_ingress(env) && baf_hdr_ing_st::qfill_zone::get(pkt_rx_baf(env)) != 0;
}
// This line card has no subscriber intake in hardware.
inline boolean_t npu_pkt_rx_subscriber_enabled(env_t) { return FALSE; }

// Moves the head by size bytes (a negative size grows the packet at the
// front) and returns the new pkt_start.
void* npu_pkt_adjust_head(env_t env, std::int32_t size);

// Saving the received header, for paths that restore or inspect it after
// rewriting in place. mpls, if given, is the place of the first label.
void pkt_ing_save_hdr(env_t env, std::uint32_t len, void* mpls);
inline void pkt_ing_save_hdr_inline(env_t env, std::uint32_t len, void* mpls) { pkt_ing_save_hdr(env, len, mpls); }
void pkt_ing_save_additional_hdr(env_t env, unsigned char* modify_depth);

// The interface's marks into the baf part, from the interface record of
// uidb_index; the mark word stays where pkt_rx_uidb_mark_bits finds it.
void pkt_update_ing_mark_bits(env_t env, std::uint32_t uidb_index);
void pkt_update_ing_mark_bits_base(env_t env);
// The slot of ID_UIDB_MARK_BITS_ING: the first result slot of thread-local memory.
inline constexpr std::uint32_t TLM_SLOT_UIDB_MARK_BITS_ING = TLM_FIELDS_SIZE;
inline mark_bits_st* pkt_rx_uidb_mark_bits(env_t env) {
  return reinterpret_cast<mark_bits_st*>(*ps_get_thread_local_mem(env) + TLM_SLOT_UIDB_MARK_BITS_ING);
}

// The next packet comes with the packet-ending request, and frames need no
// padding on this line card.
inline void pkt_get_next_pkt(env_t) {}
inline void npu_pkt_pad_frame(env_t) {}
inline void dcache_flush_pkt() { gpmwbi(); }
inline void npu_dcache_prealloc(const void*) {}
inline std::uint32_t get_random(env_t) { return RDC(COP_RANDOM); }
