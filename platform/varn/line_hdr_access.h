// Where the line header goes, and how long the encapsulation in front of a
// frame to a port is.
#pragma once

#include <cstdint>

#include "dplane/infra/ps.h"
#include "line_hdr.h"

// The 2-byte port header of a packet in the ingress buffer stands ahead.
inline constexpr std::uint32_t LINE_PORT_HDR_BYTES = 2;

inline std::uint8_t* plat_get_line_hdr_start(env_t env) { return *ps_get_pkt_mem_start(env) + LINE_PORT_HDR_BYTES; }
inline std::uint32_t plat_get_line_tx_encap_len(std::uint32_t l2_len) { return l2_len + LINE_HDR_BYTES; }
