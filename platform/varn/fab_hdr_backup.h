// Keeping what an L3 unicast fabric header carries across a further pass:
// the type, the input interface, the chain members, and the VRF (IPv4 and
// IPv6) or the flag byte (MPLS). The rest is rebuilt.
#pragma once

#include <cstdint>

#include "be_types.h"
#include "fwc_types.h"

struct l3_ucst_nph_bkup_st {
  std::uint8_t pkt_type;
  be_u32 input_ifhandle;
  std::uint8_t nrldim;
  std::uint8_t rldim;
  be_u16 misc;  // vrf, or the flag byte
  be_u16 l3_offset;
  be_u16 l3_size;
};
static_assert(sizeof(l3_ucst_nph_bkup_st) == 13);

void plat_store_l3_ucast_nph(const void* fab, l3_ucst_nph_bkup_st* bkup);
// Rebuilds a 32-byte header 32 bytes ahead of l3_hdr and sets pkt_start to
// it. Returns the L3 type (bufhdr_l3_type_e) of the saved type: IPv4, IPv6
// or MPLS for types 1, 3 and 5, other for anything else.
std::uint32_t plat_restore_l3_ucast_nph(env_t env, const l3_ucst_nph_bkup_st* bkup, std::uint8_t* l3_hdr);
