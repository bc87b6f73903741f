// Accessors of the distribution header of the current packet.
#pragma once

#include "dplane/infra/env.h"
#include "platform/varn/dist_hdr.h"

inline const dist_hdr_line_st& pkt_rx_line_hdr(env_t env) {
  return *reinterpret_cast<const dist_hdr_line_st*>(env->dist_hdr);
}
inline dist_hdr_line_st& pkt_rx_line_hdr_mod(env_t env) { return *reinterpret_cast<dist_hdr_line_st*>(env->dist_hdr); }

using dh = dist_hdr_line_st;

inline std::uint32_t pkt_rx_distr_type(env_t env) { return dh::dst_format::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_rx_rt_thread(env_t env) { return dh::rt_result::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_rt_thread_valid(env_t env) { return dh::rt_result_valid::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t get_orig_pkt_len(env_t env) { return dh::pktlen::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_get_rx_input_qid(env_t env) { return dh::igpb_queue::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_get_rx_l3_offset(env_t env) { return dh::l3_offset::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_l2_uidb_present(env_t env) { return dh::l2_uidb::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_get_rx_l3_type(env_t env) { return dh::l3_type::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_is_subscriber_enabled(env_t env) { return dh::read_bng_uidb_ext::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_mpls_enabled(env_t env) { return dh::mpls_en::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_ipv6_enabled(env_t env) { return dh::ipv6_en::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_ipv4_enabled(env_t env) { return dh::ipv4_en::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_l2_uidb_maintenance_mode(env_t env) {
  return dh::l2_uidb_maintenance_mode::get(pkt_rx_line_hdr(env));
}
inline boolean_t pkt_rx_l3_uidb_maintenance_mode(env_t env) {
  return dh::l3_uidb_maintenance_mode::get(pkt_rx_line_hdr(env));
}
inline boolean_t pkt_rx_is_virt(env_t env) { return dh::port_bits_sat::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_is_global_feature(env_t env) { return dh::port_bits_gbl_feature::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_get_rx_physical_port(env_t env) { return dh::logical_port::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_get_rx_uidb_index(env_t env) { return dh::uidb_index::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_rx_get_dest_mac_type(env_t env) { return dh::da_bits::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_is_v4_mcast(env_t env) { return dh::is_mcast::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_rx_is_v6_mcast(env_t env) { return dh::is_mcast::get(pkt_rx_line_hdr(env)); }
// Bit 7 of byte 0: the packet came in on the ingress side.
inline boolean_t pkt_rx_is_ingress(env_t env) { return dist_hdr_common_st::ingress::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_rx_gpm_pkt_handle(env_t env) { return dh::gpm_pkt_handle::get(pkt_rx_line_hdr(env)); }
