// The Ethernet type behind a frame's VLAN tags.
#pragma once

#include <cstdint>

#include "ethernet.h"
#include "fwc_types.h"

// Walks up to four tags (TPIDs 0x8100, 0x88A8, 0x9100, 0x9200); returns the
// number of tags and the type behind them.
std::uint8_t parse_ether_type(const ether_hdr* eth, std::uint16_t* type);
// The same from the known L2 header length when there is one: 0 walks the
// tags; 14 or more takes (l2_hdr_len - 14) / 4 tags without a walk; 1 to 13
// is no L2 header at all: global counter 261, no tags, `type` untouched.
std::uint8_t parse_ether_type_fast(env_t env, const ether_hdr* eth, std::uint16_t* type);
