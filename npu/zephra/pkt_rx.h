// Accessors of the distribution header of the current packet. The header is
// read in place; the accessors of the baf part read bytes 16..31.
#pragma once

#include "dist_hdr.h"
#include "dplane/infra/env.h"
#include "dplane/infra/ps.h"
#include "ingress_vectors.h"

inline const dist_hdr_line_st& pkt_rx_line_hdr(env_t env) {
  return *reinterpret_cast<const dist_hdr_line_st*>(env->dist_hdr);
}
inline dist_hdr_line_st& pkt_rx_line_hdr_mod(env_t env) { return *reinterpret_cast<dist_hdr_line_st*>(env->dist_hdr); }
inline const baf_hdr_ing_st& pkt_rx_baf(env_t env) {
  return *reinterpret_cast<const baf_hdr_ing_st*>(env->dist_hdr + DIST_HDR_BAF_OFFSET);
}
inline baf_hdr_ing_st& pkt_rx_baf_mod(env_t env) {
  return *reinterpret_cast<baf_hdr_ing_st*>(env->dist_hdr + DIST_HDR_BAF_OFFSET);
}

using dh = dist_hdr_line_st;
using rx_baf = baf_hdr_ing_st;

inline constexpr std::uint32_t MPLS_LABEL_BYTES = 4;
// pkt_get_rx_frame_type gives the low two bits of frame_type.
inline constexpr std::uint32_t RX_FRAME_TYPE_MASK = 0x3;

// The line part.
inline std::uint32_t pkt_rx_distr_type(env_t env) { return dh::dst_format::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_rx_rt_thread(env_t env) { return dh::rt_result::get(pkt_rx_line_hdr(env)); }
inline void pkt_set_rx_rt_thread(env_t env, std::uint32_t result) {
  dh::rt_result::set(pkt_rx_line_hdr_mod(env), result);
}
inline boolean_t pkt_rx_rt_thread_is_l2_control(env_t env) { return pkt_rx_rt_thread(env) == VECTOR_L2_CONTROL; }
inline std::uint32_t get_orig_pkt_len(env_t env) { return dh::pktlen::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_get_rx_frame_type(env_t env) {
  return dh::frame_type::get(pkt_rx_line_hdr(env)) & RX_FRAME_TYPE_MASK;
}
// The setter writes the L3 type of the baf part, which the decode keeps in
// step with the frame type.
inline void pkt_set_rx_frame_type(env_t env, std::uint32_t type) { rx_baf::l3_type::set(pkt_rx_baf_mod(env), type); }
inline std::uint32_t pkt_get_rx_input_qid(env_t env) { return dh::igpb_queue::get(pkt_rx_line_hdr(env)); }
inline boolean_t pkt_is_rx_inject_port(env_t env) {
  const std::uint32_t queue = pkt_get_rx_input_qid(env);
  return queue >= INJECT_QUEUE_FIRST && queue <= INJECT_QUEUE_LAST;
}
// Bit 7 of byte 0: the packet came in on the ingress side.
inline boolean_t pkt_rx_is_ingress(env_t env) { return dist_hdr_common_st::zp::ingress::get(pkt_rx_line_hdr(env)); }
inline std::uint32_t pkt_rx_gpm_pkt_handle(env_t env) { return dh::gpm_pkt_handle::get(pkt_rx_line_hdr(env)); }

// The base view of the baf part.
inline boolean_t pkt_rx_rt_thread_valid(env_t env) { return rx_baf::rt_result_valid::get(pkt_rx_baf(env)); }
inline void pkt_set_rt_thread_valid(env_t env, boolean_t valid) {
  rx_baf::rt_result_valid::set(pkt_rx_baf_mod(env), valid);
}
inline std::uint32_t pkt_get_rx_physical_port(env_t env) { return rx_baf::logical_port::get(pkt_rx_baf(env)); }
inline void pkt_set_rx_physical_port(env_t env, std::uint32_t port_id) {
  rx_baf::logical_port::set(pkt_rx_baf_mod(env), port_id);
}
inline std::uint32_t pkt_get_rx_uidb_index(env_t env) { return rx_baf::uidb_index::get(pkt_rx_baf(env)); }
inline void pkt_set_rx_uidb_index(env_t env, std::uint32_t uidb_index) {
  rx_baf::uidb_index::set(pkt_rx_baf_mod(env), uidb_index);
}
inline std::uint32_t pkt_get_rx_l3_offset(env_t env) { return rx_baf::l3_offset::get(pkt_rx_baf(env)); }
inline void pkt_set_rx_l3_offset(env_t env, std::uint32_t offset) {
  rx_baf::l3_offset::set(pkt_rx_baf_mod(env), offset);
}
inline std::uint32_t pkt_get_rx_l2_offset(env_t) { return 0; }
inline std::uint32_t pkt_get_rx_l3_type(env_t env) { return rx_baf::l3_type::get(pkt_rx_baf(env)); }
inline std::uint32_t pkt_rx_vlan_pbits(env_t env) { return rx_baf::vlan_pbits::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_port_bits_ext(env_t env) { return rx_baf::port_bits_ext::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_is_virt(env_t env) { return rx_baf::port_bits_sat::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_is_global_feature(env_t env) { return rx_baf::port_bits_gbl_feature::get(pkt_rx_baf(env)); }
inline boolean_t global_config_l2_hash_l3(env_t env) { return rx_baf::port_bits_l3_lb_hash::get(pkt_rx_baf(env)); }
inline std::uint32_t pkt_rx_get_dest_mac_type(env_t env) { return rx_baf::da_bits::get(pkt_rx_baf(env)); }
inline std::uint32_t pkt_get_timestamp(env_t env) { return rx_baf::timestamp::get(pkt_rx_baf(env)); }

// The marks.
inline boolean_t pkt_rx_l2_uidb_present(env_t env) { return rx_baf::mark_common::l2_uidb::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_l2_vpls_on(env_t env) { return rx_baf::mark_l2::vpls::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_l3_uidb_ext_needed(env_t env) { return rx_baf::mark_l3::ext_req::get(pkt_rx_baf(env)); }
inline void pkt_rx_set_l3_uidb_ext_needed(env_t env, boolean_t needed) {
  rx_baf::mark_l3::ext_req::set(pkt_rx_baf_mod(env), needed);
}
inline boolean_t pkt_rx_l2_uidb_ext_req(env_t env) { return rx_baf::mark_l2::ext_req::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_l3_fast_uidb_ext_needed(env_t env) {
  return rx_baf::mark_l3::fast_ext_req::get(pkt_rx_baf(env));
}
inline void pkt_rx_set_l3_fast_uidb_ext_needed(env_t env, boolean_t needed) {
  rx_baf::mark_l3::fast_ext_req::set(pkt_rx_baf_mod(env), needed);
}
inline boolean_t pkt_rx_is_subscriber_enabled(env_t env) {
  return rx_baf::mark_l3::read_bng_uidb_ext::get(pkt_rx_baf(env));
}
inline boolean_t pkt_rx_ipv4_enabled(env_t env) { return rx_baf::mark_l3::ipv4_en::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_ipv6_enabled(env_t env) { return rx_baf::mark_l3::ipv6_en::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_mpls_enabled(env_t env) { return rx_baf::mark_l3::mpls_en::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_global_vrf(env_t env) { return rx_baf::mark_l3::global_vrf::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_l2_line_status_up(env_t env) { return rx_baf::mark_l2::line_status_up::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_l3_uidb_maintenance_mode(env_t env) {
  return rx_baf::mark_l3::uidb_maintenance_mode::get(pkt_rx_baf(env));
}
inline boolean_t pkt_rx_l2_uidb_maintenance_mode(env_t env) {
  return rx_baf::mark_l2::uidb_maintenance_mode::get(pkt_rx_baf(env));
}
inline boolean_t pkt_rx_r2_racetrack(env_t env) {
  return rx_baf::port_bits_rt_l2::get(pkt_rx_baf(env)) && rx_baf::mark_l2::rt::get(pkt_rx_baf(env));
}

// The decode bits.
inline boolean_t pkt_rx_is_v4_mcast(env_t env) { return rx_baf::v4::is_mcast::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_is_v6_mcast(env_t env) { return rx_baf::v6::dip_is_multicast::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_dip_is_link_local(env_t env) { return rx_baf::v6::dip_is_link_local::get(pkt_rx_baf(env)); }
inline boolean_t pkt_rx_ipv6_ll_dip(env_t env) { return pkt_rx_dip_is_link_local(env); }
inline void pkt_set_rx_ipv6_ll_dip(env_t env, boolean_t ll) {
  rx_baf::v6::dip_is_link_local::set(pkt_rx_baf_mod(env), ll);
}
inline boolean_t pkt_rx_ipv6_ll_sip(env_t env) { return rx_baf::v6::sip_is_link_local::get(pkt_rx_baf(env)); }
inline std::uint32_t pkt_get_rx_mpls_num_labels(env_t env) {
  return rx_baf::mpls::mpls_num_labels::get(pkt_rx_baf(env));
}
inline boolean_t pkt_rx_mpls_lt_5_labels(env_t env) { return rx_baf::mpls::mpls_lt_5_labels::get(pkt_rx_baf(env)); }
inline boolean_t pkt_get_rx_entropy_label(env_t env, std::uint32_t* label_offset) {
  *label_offset = rx_baf::mpls::entropy_label_offset::get(pkt_rx_baf(env));
  return rx_baf::mpls::found_entropy_label::get(pkt_rx_baf(env));
}
inline void pkt_set_rx_entropy_label(env_t env, std::uint32_t label_offset) {
  rx_baf::mpls::found_entropy_label::set(pkt_rx_baf_mod(env), 1);
  rx_baf::mpls::entropy_label_offset::set(pkt_rx_baf_mod(env), label_offset);
}

// The IP header of a packet whose labels the parser found ahead of it.
inline std::uint32_t pkt_get_rx_ip_offset(env_t env) {
  const std::uint32_t l3_offset = pkt_get_rx_l3_offset(env);
  if (!common_flags_st::mpls_to_ip::get(*ps_get_common_flags(env))) return l3_offset;
  return l3_offset + MPLS_LABEL_BYTES * pkt_get_rx_mpls_num_labels(env);
}
