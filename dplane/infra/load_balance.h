// Load-balance hashes: the 32-bit flow hash of a packet, from which paths
// take bits for ECMP, link bundles, fabric spreading and flow locks
// (hash_bits.h). Packets of one flow hash alike: addresses always, and with
// the 7-tuple setting of the global configuration also the input interface,
// the protocol and the L4 ports. A header that does not fit in the packet
// makes the hash fall back to what it has.
#pragma once

#include <cstdint>

#include "ethernet.h"
#include "fwc_types.h"
#include "ipv4.h"
#include "ipv6.h"
#include "mpls.h"

// IPv4. The racetrack forms also hash the ports of fragments.
std::uint32_t hash_lb_ipv4(env_t env, ipv4_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id);
std::uint32_t hash_lb_ipv4_racetrack(env_t env, ipv4_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id);
// The 7-tuple partial: interface handle, protocol, ports.
std::uint32_t hash_get_7tuple_param_ipv4(env_t env, ipv4_hdr_st* ip, std::uint32_t ifhandle, boolean_t racetrack);
std::uint32_t hash_lb_ipv4_final(const ipv4_hdr_st* ip, std::uint32_t partial, std::uint32_t router_id);
std::uint32_t hash_lb_ipv4_base(std::uint32_t src, std::uint32_t dst, std::uint32_t router_id);
std::uint32_t hash_lb_ipv4_7tuple_base(std::uint32_t src, std::uint32_t dst, std::uint32_t partial,
                                       std::uint32_t router_id);

// IPv6. The flow label joins the partial when the global configuration says so.
std::uint32_t hash_lb_ipv6(env_t env, ipv6_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id);
// For packets whose extension headers are walked already.
std::uint32_t hash_lb_ipv6_pp(env_t env, ipv6_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id);
// Other next headers than TCP, UDP and SCTP give the protocol alone, with no walk.
std::uint32_t hash_lb_ipv6_racetrack(env_t env, ipv6_hdr_st* ip, std::uint32_t if_handle, std::uint32_t router_id);
std::uint32_t hash_get_7tuple_param_ipv6(env_t env, ipv6_hdr_st* ip, std::uint32_t ifhandle, boolean_t racetrack);
std::uint32_t hash_get_7tuple_param_ipv6_pp(env_t env, ipv6_hdr_st* ip, std::uint32_t ifhandle);
// Protocol and ports behind the extension headers, walking them if need be;
// 0 if the chain is bad.
std::uint32_t hash_get_7tuple_param_ipv6_slow(env_t env, ipv6_hdr_st* ip);
std::uint32_t hash_lb_ipv6_final(const ipv6_hdr_st* ip, std::uint32_t partial, std::uint32_t router_id);
std::uint32_t hash_lb_ipv6_base(const be_u32* src, const be_u32* dst, std::uint32_t router_id,
                                boolean_t flow_label_hash_en, std::uint32_t flow_label);
std::uint32_t hash_lb_ipv6_7tuple_base(const be_u32* src, const be_u32* dst, std::uint32_t partial,
                                       std::uint32_t router_id);

// One address alone, 12 bits, for bundles that spread by source or by destination.
std::uint16_t hash_lb_ipv4_src_addr(const ipv4_hdr_st* ip);
std::uint16_t hash_lb_ipv4_dst_addr(const ipv4_hdr_st* ip);
std::uint16_t hash_lb_ipv6_src_addr(const ipv6_hdr_st* ip);
std::uint16_t hash_lb_ipv6_dst_addr(const ipv6_hdr_st* ip);

// The word that a UDP packet to the GTP-U port gives the partial: the TEID
// and the inner addresses, or the ports word when the tunnel header is not
// one that can be looked through.
std::uint32_t hash_decode_gtp_hdr(env_t env, std::uint8_t* l4);

// MPLS: by the entropy label when the global configuration allows it and
// the stack has one, else by the IP packet under the stack, else by labels.
std::uint32_t hash_lb_mpls_inline(env_t env, mpls_hdr_st* mpls, std::uint32_t if_handle, std::uint32_t router_id);
std::uint32_t hash_lb_mpls_racetrack(env_t env, mpls_hdr_st* mpls, std::uint32_t if_handle, std::uint32_t router_id);
// An entropy label indicator at label eli is usable: not the top label, not
// at the bottom, and the entropy label's TTL is 0.
boolean_t pkt_entropy_label_sanity_chk(env_t env, const mpls_hdr_st* mpls, std::uint32_t eli);
std::uint32_t hash_lb_mpls_base(std::uint32_t label, std::uint32_t if_handle, std::uint32_t router_id);
std::uint32_t hash_lb_mpls_multilabel_base(std::uint32_t label1, std::uint32_t label2, std::uint32_t label3,
                                           std::uint32_t ifhandle, std::uint32_t router_id);

// Ethernet: the destination and source MAC addresses.
std::uint32_t hash_lb_ether(const ether_hdr* eth);
// L2VPN: by the L3 packet inside when the port asks for it (or for IP
// interworking), else by the MAC addresses.
std::uint32_t l2vpn_calc_hash(env_t env, ether_hdr* eth, boolean_t is_pw_dispo, boolean_t is_ipiw, boolean_t is_ip);
std::uint32_t l2vpn_calc_hash_slow(env_t env, ether_hdr* eth, std::uint32_t l3_type, std::uint32_t ifhandle,
                                   std::uint32_t router_id, boolean_t is_pw_dispo, boolean_t is_ip,
                                   const std::uint8_t* pkt_end);
std::uint32_t l2vpn_calc_hash_mpls(env_t env, ether_hdr* eth, std::uint32_t ifhandle, std::uint32_t router_id,
                                   boolean_t is_pw_dispo, boolean_t is_ip, const std::uint8_t* pkt_end);
// The kind of packet under an MPLS stack by its first byte: 1 IPv4 (0x45),
// 2 IPv6, 3 anything else.
std::uint32_t check_mpls_l3_type(const std::uint8_t* below_stack);
// SPAN copies: by addresses alone, or by MAC addresses.
std::uint32_t span_calc_hash_l3(env_t env, ether_hdr* eth, std::uint32_t l2_hdr_len, void* ip);
