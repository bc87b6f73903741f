#include "plu.h"

#include <cstring>

#include "arch_tie.h"
#include "dma_common.h"
#include "dplane/infra/env.h"

namespace {

constexpr std::uint32_t IPV6_ADDR_BYTES = 16;

// The key record at a request cell, cleared.
template <class Key>
Key& key_at(env_t env, std::uint32_t loc) {
  auto* k = reinterpret_cast<Key*>(env_get_dmem_start(env) + loc);
  std::memset(k->bytes, 0, sizeof k->bytes);
  return *k;
}

template <class Key>
void search(env_t env, std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc) {
  plu_initiate_dma(env, plu_req_loc, sizeof(Key), plu_resp_loc, PLU_SEARCH_RESP_BYTES);
}

void build_mac_search(env_t env, plu_key_code_e code, std::uint32_t bd_id, const std::uint8_t* mac,
                      std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc) {
  plu_build_mac_addr(env, plu_req_loc, code, bd_id, mac);
  search<plu_mac_key_st>(env, plu_req_loc, plu_resp_loc);
}

}  // namespace

void plu_initiate_dma(env_t env, std::uint32_t plu_req_loc, std::uint32_t plu_req_size, std::uint32_t plu_resp_loc,
                      std::uint32_t plu_resp_size) {
  dma_initiate(env, dma_build_cmd(RES_PLU, plu_req_loc, plu_req_size, plu_resp_loc, plu_resp_size));
}

void plu_build_ipv4_unicast_addr(env_t env, std::uint32_t plu_req_loc, std::uint16_t vrf, std::uint32_t ipv4_addr) {
  auto& k = key_at<plu_ipv4_unicast_key_st>(env, plu_req_loc);
  plu_ipv4_unicast_key_st::code::set(k, PLU_IPV4_UNICAST);
  plu_ipv4_unicast_key_st::vrf::set(k, vrf);
  plu_ipv4_unicast_key_st::addr::set(k, ipv4_addr);
}

void plu_ipv4_global_unicast_addr(env_t env, std::uint32_t ipv4_addr, std::uint32_t plu_req_loc,
                                  std::uint32_t plu_resp_loc) {
  plu_ipv4_vpn_unicast_addr(env, ipv4_addr, 0, plu_req_loc, plu_resp_loc);
}

void plu_ipv4_vpn_unicast_addr(env_t env, std::uint32_t ipv4_addr, std::uint16_t vrf, std::uint32_t plu_req_loc,
                               std::uint32_t plu_resp_loc) {
  plu_build_ipv4_unicast_addr(env, plu_req_loc, vrf, ipv4_addr);
  search<plu_ipv4_unicast_key_st>(env, plu_req_loc, plu_resp_loc);
}

void plu_build_ipv6_unicast_addr(env_t env, std::uint32_t plu_req_loc, std::uint16_t vrf,
                                 const std::uint8_t* ipv6_addr) {
  auto& k = key_at<plu_ipv6_unicast_key_st>(env, plu_req_loc);
  plu_ipv6_unicast_key_st::code::set(k, PLU_IPV6_UNICAST);
  plu_ipv6_unicast_key_st::vrf::set(k, vrf);
  std::memcpy(plu_ipv6_unicast_key_st::addr::data(k), ipv6_addr, IPV6_ADDR_BYTES);
}

void plu_ipv6_global_unicast_addr(env_t env, const std::uint8_t* ipv6_addr, std::uint32_t plu_req_loc,
                                  std::uint32_t plu_resp_loc) {
  plu_ipv6_vpn_unicast_addr(env, ipv6_addr, 0, plu_req_loc, plu_resp_loc);
}

void plu_ipv6_vpn_unicast_addr(env_t env, const std::uint8_t* ipv6_addr, std::uint16_t vrf, std::uint32_t plu_req_loc,
                               std::uint32_t plu_resp_loc) {
  plu_build_ipv6_unicast_addr(env, plu_req_loc, vrf, ipv6_addr);
  search<plu_ipv6_unicast_key_st>(env, plu_req_loc, plu_resp_loc);
}

void plu_ipv6_ll_unicast_addr(env_t env, std::uint32_t ifh, const std::uint8_t* ipv6_addr, std::uint32_t plu_req_loc,
                              std::uint32_t plu_resp_loc) {
  auto& k = key_at<plu_ipv6_ll_key_st>(env, plu_req_loc);
  plu_ipv6_ll_key_st::code::set(k, PLU_IPV6_LL_UNICAST);
  plu_ipv6_ll_key_st::ifh::set(k, ifh);
  std::memcpy(plu_ipv6_ll_key_st::addr_tail::data(k), ipv6_addr + 1, plu_ipv6_ll_key_st::addr_tail::size);
  search<plu_ipv6_ll_key_st>(env, plu_req_loc, plu_resp_loc);
}

void plu_ipv4_sg_vrf_multicast(env_t env, std::uint16_t vrf, std::uint32_t src, std::uint32_t grp,
                               std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc) {
  auto& k = key_at<plu_ipv4_sg_key_st>(env, plu_req_loc);
  plu_ipv4_sg_key_st::code::set(k, PLU_IPV4_SG_VRF);
  plu_ipv4_sg_key_st::vrf::set(k, vrf);
  plu_ipv4_sg_key_st::src::set(k, src);
  plu_ipv4_sg_key_st::grp::set(k, grp);
  search<plu_ipv4_sg_key_st>(env, plu_req_loc, plu_resp_loc);
}

void plu_ipv6_sg_vrf_multicast(env_t env, std::uint16_t vrf, const std::uint8_t* src, const std::uint8_t* grp,
                               std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc) {
  auto& k = key_at<plu_ipv6_sg_key_st>(env, plu_req_loc);
  plu_ipv6_sg_key_st::code::set(k, PLU_IPV6_SG_VRF);
  plu_ipv6_sg_key_st::vrf::set(k, vrf);
  std::memcpy(plu_ipv6_sg_key_st::src::data(k), src, IPV6_ADDR_BYTES);
  std::memcpy(plu_ipv6_sg_key_st::grp::data(k), grp, IPV6_ADDR_BYTES);
  search<plu_ipv6_sg_key_st>(env, plu_req_loc, plu_resp_loc);
}

void plu_l2m4_sg(env_t env, std::uint32_t bd_id, std::uint32_t src, std::uint32_t grp, std::uint32_t plu_req_loc,
                 std::uint32_t plu_resp_loc) {
  auto& k = key_at<plu_l2m4_sg_key_st>(env, plu_req_loc);
  plu_l2m4_sg_key_st::code::set(k, PLU_L2M4_SG);
  plu_l2m4_sg_key_st::bd_id::set(k, bd_id);
  plu_l2m4_sg_key_st::src::set(k, src);
  plu_l2m4_sg_key_st::grp::set(k, grp);
  search<plu_l2m4_sg_key_st>(env, plu_req_loc, plu_resp_loc);
}

void plu_l2m6_sg(env_t env, std::uint32_t bd_id, const std::uint8_t* src, const std::uint8_t* grp,
                 std::uint32_t plu_req_loc, std::uint32_t plu_resp_loc) {
  auto& k = key_at<plu_l2m6_sg_key_st>(env, plu_req_loc);
  plu_l2m6_sg_key_st::code::set(k, PLU_L2M6_SG);
  plu_l2m6_sg_key_st::bd_id::set(k, bd_id);
  std::memcpy(plu_l2m6_sg_key_st::src::data(k), src, IPV6_ADDR_BYTES);
  std::memcpy(plu_l2m6_sg_key_st::grp::data(k), grp, IPV6_ADDR_BYTES);
  search<plu_l2m6_sg_key_st>(env, plu_req_loc, plu_resp_loc);
}

void plu_build_mac_addr(env_t env, std::uint32_t plu_req_loc, plu_key_code_e code, std::uint32_t bd_id,
                        const std::uint8_t* mac) {
  auto& k = key_at<plu_mac_key_st>(env, plu_req_loc);
  plu_mac_key_st::code::set(k, code);
  plu_mac_key_st::bd_id::set(k, bd_id);
  std::memcpy(plu_mac_key_st::mac::data(k), mac, plu_mac_key_st::mac::size);
}

void plu_mac_fwd_lookup(env_t env, std::uint32_t bd_id, const std::uint8_t* mac, std::uint32_t plu_req_loc,
                        std::uint32_t plu_resp_loc) {
  build_mac_search(env, PLU_MAC_FWD, bd_id, mac, plu_req_loc, plu_resp_loc);
}

void plu_mac_upd_lookup(env_t env, std::uint32_t bd_id, const std::uint8_t* mac, std::uint32_t plu_req_loc,
                        std::uint32_t plu_resp_loc) {
  build_mac_search(env, PLU_MAC_UPD, bd_id, mac, plu_req_loc, plu_resp_loc);
}

void plu_mac_comp_lookup(env_t env, std::uint32_t bd_id, const std::uint8_t* mac, std::uint32_t plu_req_loc,
                         std::uint32_t plu_resp_loc) {
  build_mac_search(env, PLU_MAC_COMP, bd_id, mac, plu_req_loc, plu_resp_loc);
}

void plu_sram_bucket_write(env_t env, std::uint32_t cand_bkt_index, std::uint16_t bucket_data,
                           std::uint32_t plu_req_loc) {
  auto& k = key_at<plu_sram_bucket_write_st>(env, plu_req_loc);
  plu_sram_bucket_write_st::cand_bkt_index::set(k, cand_bkt_index);
  plu_sram_bucket_write_st::code::set(k, PLU_SRAM_BUCKET_WRITE);
  plu_sram_bucket_write_st::bucket_data::set(k, bucket_data);
  plu_initiate_dma(env, plu_req_loc, sizeof(plu_sram_bucket_write_st), 0, 0);
}

void plu_sram_bucket_read(env_t env, std::uint32_t cand_bkt_index, std::uint32_t plu_req_loc,
                          std::uint32_t plu_resp_loc) {
  auto& k = key_at<plu_sram_bucket_read_st>(env, plu_req_loc);
  plu_sram_bucket_read_st::cand_bkt_index::set(k, cand_bkt_index);
  plu_sram_bucket_read_st::code::set(k, PLU_SRAM_BUCKET_READ);
  plu_initiate_dma(env, plu_req_loc, sizeof(plu_sram_bucket_read_st), plu_resp_loc, PLU_BUCKET_RESP_BYTES);
}

void plu_cache_invalidate(env_t env, std::uint32_t bucket_index, std::uint32_t plu_req_loc,
                          std::uint32_t plu_resp_loc) {
  auto& k = key_at<plu_cache_invalidate_st>(env, plu_req_loc);
  plu_cache_invalidate_st::bucket_index::set(k, bucket_index);
  plu_cache_invalidate_st::code::set(k, PLU_CACHE_INVALIDATE);
  plu_initiate_dma(env, plu_req_loc, sizeof(plu_cache_invalidate_st), plu_resp_loc, PLU_BUCKET_RESP_BYTES);
}

void plu_lookup_request_ipv4(env_t env, std::uint32_t rtt, std::uint32_t loc, std::uint32_t ipv4_addr,
                             std::uint16_t vrf) {
  plu_build_ipv4_unicast_addr(env, loc, vrf, ipv4_addr);
  qrsc(rtt, dma_cell_words(env, loc)[0], loc, loc);
}

void plu_lookup_request_ipv6(env_t env, std::uint32_t rtt, std::uint32_t loc, const std::uint8_t* ipv6_addr,
                             std::uint16_t vrf) {
  plu_build_ipv6_unicast_addr(env, loc, vrf, ipv6_addr);
  qrsc(rtt, dma_cell_words(env, loc)[0], loc, loc);
}
