// Requests to the prefix lookup unit (PLU). Each search builds its key in
// the request cell (code, key space, addresses as they stand in the packet)
// and sends it to resource 200 with a 32-byte answer: plu_result_st for
// routes, plu_resp_mc_leaf_found_response_ for (S, G) entries. The bucket
// commands of the MAC table answer one cell. Locations are data memory
// offsets of 16-byte cells; addresses are in host order (IPv4) or as 16
// bytes in network order (IPv6).
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "plu_defs.h"

// Sends the key prepared at plu_req_loc; sizes in bytes.
void plu_initiate_dma(env_t env, std::uint32_t plu_req_loc, std::uint32_t plu_req_size, std::uint32_t plu_resp_loc,
                      std::uint32_t plu_resp_size);

// Unicast routes: longest prefix within the VRF (0: the global table).
void plu_build_ipv4_unicast_addr(env_t env, std::uint32_t plu_req_loc, std::uint16_t vrf, std::uint32_t ipv4_addr);
void plu_ipv4_global_unicast_addr(env_t env, std::uint32_t ipv4_addr, std::uint32_t plu_req_loc,
                                  std::uint32_t plu_resp_loc);
void plu_ipv4_vpn_unicast_addr(env_t env, std::uint32_t ipv4_addr, std::uint16_t vrf, std::uint32_t plu_req_loc,
                               std::uint32_t plu_resp_loc);
void plu_build_ipv6_unicast_addr(env_t env, std::uint32_t plu_req_loc, std::uint16_t vrf,
                                 const std::uint8_t* ipv6_addr);
void plu_ipv6_global_unicast_addr(env_t env, const std::uint8_t* ipv6_addr, std::uint32_t plu_req_loc,
                                  std::uint32_t plu_resp_loc);
void plu_ipv6_vpn_unicast_addr(env_t env, const std::uint8_t* ipv6_addr, std::uint16_t vrf, std::uint32_t plu_req_loc,
                               std::uint32_t plu_resp_loc);
// Link-local routes of an interface: the key leaves out the address's first byte.
void plu_ipv6_ll_unicast_addr(env_t env, std::uint32_t ifh, const std::uint8_t* ipv6_addr, std::uint32_t plu_req_loc,
                              std::uint32_t plu_resp_loc);

// Exact (S, G) entries of a VRF or a bridge domain.
void plu_ipv4_sg_vrf_multicast(env_t env, std::uint16_t vrf, std::uint32_t src, std::uint32_t grp,
                               std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc);
void plu_ipv6_sg_vrf_multicast(env_t env, std::uint16_t vrf, const std::uint8_t* src, const std::uint8_t* grp,
                               std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc);
void plu_l2m4_sg(env_t env, std::uint32_t bd_id, std::uint32_t src, std::uint32_t grp, std::uint32_t plu_req_loc,
                 std::uint32_t plu_resp_loc);
void plu_l2m6_sg(env_t env, std::uint32_t bd_id, const std::uint8_t* src, const std::uint8_t* grp,
                 std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc);

// The MAC table: forward, update and compare searches of (bd_id, MAC), and
// the commands on its buckets.
void plu_build_mac_addr(env_t env, std::uint32_t plu_req_loc, plu_key_code_e code, std::uint32_t bd_id,
                        const std::uint8_t* mac);
void plu_mac_fwd_lookup(env_t env, std::uint32_t bd_id, const std::uint8_t* mac, std::uint32_t plu_req_loc,
                        std::uint32_t plu_resp_loc);
void plu_mac_upd_lookup(env_t env, std::uint32_t bd_id, const std::uint8_t* mac, std::uint32_t plu_req_loc,
                        std::uint32_t plu_resp_loc);
void plu_mac_comp_lookup(env_t env, std::uint32_t bd_id, const std::uint8_t* mac, std::uint32_t plu_req_loc,
                         std::uint32_t plu_resp_loc);
void plu_sram_bucket_write(env_t env, std::uint32_t cand_bkt_index, std::uint16_t bucket_data,
                           std::uint32_t plu_req_loc);
void plu_sram_bucket_read(env_t env, std::uint32_t cand_bkt_index, std::uint32_t plu_req_loc,
                          std::uint32_t plu_resp_loc);
void plu_cache_invalidate(env_t env, std::uint32_t bucket_index, std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc);

// The template forms of the generated lookups (table 1 entries 11 and 12):
// the key's first word, code, VRF and first address byte, is the command
// word; the rest of the address stands in the cell behind it.
void plu_lookup_request_ipv4(env_t env, std::uint32_t rtt, std::uint32_t loc, std::uint32_t ipv4_addr,
                             std::uint16_t vrf);
void plu_lookup_request_ipv6(env_t env, std::uint32_t rtt, std::uint32_t loc, const std::uint8_t* ipv6_addr,
                             std::uint16_t vrf);
