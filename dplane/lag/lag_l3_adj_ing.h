// The bundle step at the end of the L3 ingress chain, from the receive
// adjacency in its result slot (RX_ADJ_ING__COMM) whose output is a bundle.
// The usual hash is the bundle bits of the packet's raw hash; an adjacency
// can pin the hash itself, or (MGSCP) spread by one address of the packet.
#pragma once

#include <cstdint>

#include "fwc_types.h"

// Thread bits of ing_fwd_thread_bits that the bundle step reads.
inline constexpr std::uint32_t LAG_THREAD_IPV4 = 0x0001;             // the payload is IPv4, else IPv6
inline constexpr std::uint32_t LAG_THREAD_MGSCP_ADDR_HASH = 0x0008;  // MGSCP may hash by one address

// rhb_hash_select of an MGSCP adjacency.
inline constexpr std::uint32_t LAG_RHB_DST_ADDR = 1;
inline constexpr std::uint32_t LAG_RHB_SRC_ADDR = 2;

// rx_lag_adj of the adjacency; and rx_lag_adj with no other mark but the
// two of the hash (mgscp_en, rx_lag_hash_en).
boolean_t lag_l3_adj_ing_enabled(env_t env);
boolean_t lag_only_l3_adj_ing_enabled(env_t env);

// l3_hdr: the packet's IPv4 or IPv6 header, by LAG_THREAD_IPV4; fab: its L3
// unicast fabric header. Results as lag_l3_ing.
func_rc_e lag_process_l3_adj_ing(env_t env, const std::uint8_t* l3_hdr, void* fab, std::uint32_t raw_hash);
// With check, an adjacency with a hash mark of its own takes the slow form;
// without, the raw hash serves.
func_rc_e lag_process_l3_adj_ing_common(env_t env, const std::uint8_t* l3_hdr, void* fab, std::uint32_t raw_hash,
                                        std::uint32_t lag_id, boolean_t check);
func_rc_e lag_process_l3_adj_ing_slow(env_t env, const std::uint8_t* l3_hdr, void* fab, std::uint32_t raw_hash,
                                      std::uint32_t lag_id);
