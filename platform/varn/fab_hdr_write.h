// Writing the fabric header: the fixed fields, the NPH common bytes, the
// unicast headers of the L3 paths, QoS, the members picked at ingress, the
// destination, the next-hop index forms and the extensions. `fab` is the
// start of the header.
#pragma once

#include <cstdint>

#include "fwc_types.h"

// The fixed fields: dc3 version 4, header class 1, class of service 2, a
// unicast destination; type 0 with the trace bit. prep_fh is the same, as a
// separate entry point.
void plat_fab_hdr_prep_to_write(env_t env, void* fab);
void plat_fab_hdr_prep_fh(env_t env, void* fab);
// Byte 8: the trace bit and the type. Byte 9: the length code, with the
// packet's critical_inject in its top bit.
void plat_fab_hdr_write_nph_common(env_t env, void* fab, std::uint32_t nph_type, std::uint32_t nph_length);

// Unicast headers of the L3 ingress paths: type, length 12, VRF or zero,
// no bundle member, the input interface, no chain members.
void plat_fab_hdr_write_ipv4_uni_part_1(env_t env, void* fab, std::uint32_t table_id, std::uint32_t uidb_ifhandle);
void plat_fab_hdr_write_ipv6_uni_part_1(env_t env, void* fab, std::uint32_t table_id, std::uint32_t uidb_ifhandle);
void plat_fab_hdr_write_mpls_uni_part_1(env_t env, void* fab, std::uint32_t uidb_ifhandle);
void plat_fab_hdr_write_mpls_uni_part_1_no_prep(env_t env, void* fab, std::uint32_t uidb_ifhandle);
void plat_fab_hdr_write_loopback(env_t env, void* fab, std::uint32_t input_ifh, std::uint32_t parent_ifh,
                                 std::uint32_t pkt_len);

// QoS: info16 of internal_qos_info into qos_info and fab_cos into dc3_cos,
// and back on egress.
void plat_fab_hdr_write_qos_info(env_t env, void* fab);
void plat_fab_hdr_init_internal_qos_egr(env_t env, const void* fab);
void plat_fab_hdr_write_qos_cos(void* fab, std::uint32_t cos);
void plat_fab_hdr_write_qos_group(void* fab, std::uint32_t group);
void plat_fab_hdr_write_qos_discard_class(void* fab, std::uint32_t discard_class);

// Members picked at ingress.
void plat_fab_hdr_write_ipv4_uni_rldi(void* fab, std::uint32_t member);
void plat_fab_hdr_write_ipv6_uni_rldi(void* fab, std::uint32_t member);
void plat_fab_hdr_write_mpls_uni_rldi(void* fab, std::uint32_t member);
void plat_fab_hdr_write_ipv4_uni_nrldi(void* fab, std::uint32_t member);
void plat_fab_hdr_write_ipv6_uni_nrldi(void* fab, std::uint32_t member);
void plat_fab_hdr_write_mpls_uni_nrldi(void* fab, std::uint32_t member);
void plat_fab_hdr_write_ipv4_uni_lag(void* fab, std::uint32_t lag_id);
void plat_fab_hdr_write_ipv6_uni_lag(void* fab, std::uint32_t lag_id);
void plat_fab_hdr_write_mpls_uni_lag(void* fab, std::uint32_t lag_id);
void plat_fab_hdr_write_l2_uni_lag(void* fab, std::uint32_t lag_id);
// Any L3 unicast form: all hold the member in one byte (plat_get_l3_uni_lag_egr).
void plat_fab_hdr_write_l3_uni_lag(void* fab, std::uint32_t lag_id);

// Destination: a fabric port (VQI, 11 bits), or a multicast group (19-bit
// MGID) and fabric group (24-bit FGID).
void plat_fab_hdr_write_vqi_voq(void* fab, std::uint32_t vqi);
void plat_fab_hdr_write_mgid_common(void* fab, std::uint32_t mgid);
void plat_fab_hdr_clear_mgid_common(void* fab);
void plat_fab_hdr_write_fgid_common(void* fab, std::uint32_t fgid);
// An MPLS header towards a pseudowire: the destination, and the hash in
// dc3_rbh and in raw_hash, or its bits 29..22 in the next-hop-index form.
void plat_fab_hdr_adjust_pw_imposition(void* fab, std::uint32_t vqi, std::uint32_t hash, boolean_t is_nh_index);

// Next-hop index forms: the next hop itself, no lookup at egress.
void plat_fab_hdr_write_ip_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex, boolean_t is_v6);
void plat_fab_hdr_write_ipv4_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex);
void plat_fab_hdr_write_ipv6_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex);
// label_word: the 24-bit label word, the label in its top 20 bits and a
// valid flag in its lowest.
void plat_fab_hdr_write_mpls_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex, std::uint32_t label_word);

// A unicast header changing protocol in place.
void plat_fab_hdr_update_ip2mpls_uni(env_t env, void* fab);
void plat_fab_hdr_update_mpls2ipv4(env_t env, void* fab, std::uint32_t vrf);
void plat_fab_hdr_update_mpls2ipv6(env_t env, void* fab, std::uint32_t vrf);

// Extensions.
void plat_fab_hdr_write_ipv4_abf(env_t env, void* fab, std::uint32_t nh_addr, std::uint32_t abf_vrf);
void plat_fab_hdr_write_ipv6_abf(env_t env, void* fab, const std::uint8_t* nh_addr, std::uint32_t abf_vrf);
// Type 32 with a GRE multikey.
void plat_fab_hdr_write_ipv4_uni_ext(env_t env, void* fab, std::uint32_t gre_key);
// Type 33: subtype 0 when the payload behind the top label is IPv4, else 1.
void plat_fab_hdr_write_mpls_uni_ext_pwhe(env_t env, void* fab, const std::uint8_t* top_label);
void plat_fab_hdr_write_ts(void* fab, std::uint32_t ts_off);
void plat_fab_hdr_write_mpls_uni_md(void* fab, boolean_t md);
void plat_fab_hdr_write_mpls_uni_q_pri(void* fab, boolean_t q_pri);
void plat_fab_hdr_write_ipv4_uni_vrf(void* fab, std::uint32_t vrf);

// The 8-bit one's-complement checksum of bytes 0..30, into byte 31.
void dc3_set_checksum(void* fab);
