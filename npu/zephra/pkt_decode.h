// Decoding a frame again in software, as the parser decodes a frame from a
// line port: for a packet whose outer headers a tunnel or a second pass took
// off, so that the protocol handlers run as if it had come from a port.
#pragma once

#include <cstdint>

#include "dist_hdr.h"
#include "fwc_types.h"
#include "mpls.h"

// The class of a destination MAC whose station is this router's, or any
// group address: 1 unicast, 2 well-known control group, 3 other group.
std::uint32_t pkt_decode_da_bits(const std::uint8_t* dst_mac);

// Step 1 takes l3_offset, the port bits and curr_pkt_len from l2_hdr_len and
// l2_frame_len; with vlan_parse_only that is all. Otherwise the destination
// class and the L3 type with its decode bits, from the frame at pkt_start.
void npu_ing_pkt_decode(env_t env, const std::uint8_t* pkt_start, boolean_t vlan_parse_only);
// The same for IPv4 inside VXLAN, without a look at the ethertype; da_bits
// and rt_result_valid stay as they were.
void npu_ing_vxlan_pkt_decode(env_t env, const std::uint8_t* pkt_start);

// The MPLS decode bits of the stack at `label`: into the thread's header, or
// into the baf part that the caller gives.
void npu_ing_mpls_populate(env_t env, const mpls_hdr_st* label);
void npu_ing_mpls_populate_baf(env_t env, const mpls_hdr_st* label, baf_hdr_ing_st* baf_hdr);
