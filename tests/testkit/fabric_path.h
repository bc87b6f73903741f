// The ingress end of a unicast IPv4 packet's way across the fabric, played
// by tests until the forwarding paths exist: a unicast header ahead of the
// L3 packet of a frame from a line port, and its send. The egress end is a
// probe at the fabric dispatch (dispatch_probe.h).
#pragma once

#include <cstdint>
#include <vector>

#include "dplane/infra/env.h"
#include "fab_hdr.h"

namespace testkit {

inline constexpr std::uint32_t ETH_BYTES = 14;
inline constexpr std::uint32_t FAB_HDR_BYTES_UNI = nph_length_bytes(NPH_LENGTH_32);

// A UDP packet to the router (ROUTER_MAC) from the station beside it.
std::vector<std::uint8_t> udp_frame(std::size_t udp_payload);

// The L3 packet behind the Ethernet header of a frame from a line port.
std::uint8_t* l3_start(env_t env);
std::uint32_t l3_len(env_t env);

// The IPv4 unicast header, without destination, in the 32 bytes ahead of the
// L3 packet; returns its start.
std::uint8_t* write_ipv4_uni_header(env_t env, std::uint32_t if_handle);
// The gather request of the header at fab and len bytes of the L3 packet.
void prep_uni_send(env_t env, std::uint8_t* fab, std::uint32_t len);

}  // namespace testkit
