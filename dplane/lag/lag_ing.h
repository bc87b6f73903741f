// Choosing a bundle member at ingress: the bundle record by its ID, then the
// member by hash modulo the member count, read by the memory engine in the
// same request. The member's number travels in lagm of the fabric header, so
// that the egress NPU picks the same member; its VQI is the fabric
// destination.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "global_counters.h"

// lag_hash: the 12 bits of hash_get_lag_bits. Fills vqi and lagm and gives
// RC_SUCCESS; RC_PKT_DROP when the bundle or the chosen member is not valid,
// and the packet is dropped.
func_rc_e lag_process_common_ing(env_t env, std::uint32_t lag_id, std::uint32_t lag_hash, std::uint32_t* vqi,
                                 std::uint8_t* lagm);
// The L2 unicast paths' entry.
func_rc_e lag_process_l2_uni_ing(env_t env, std::uint32_t lag_id, std::uint32_t lag_hash, std::uint32_t* vqi,
                                 std::uint8_t* lagm);
// The L3 paths: the same, and the member and VQI written into the L3 unicast
// header at fab. lag_process_l3_ing takes the bundle bits of the raw hash.
func_rc_e lag_l3_ing(env_t env, void* fab, std::uint32_t lag_id, std::uint32_t lag_hash);
func_rc_e lag_process_l3_ing(env_t env, void* fab, std::uint32_t lag_id, std::uint32_t raw_hash);
