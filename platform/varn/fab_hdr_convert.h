// Conversions between the compressed fabric header of host-bound and
// host-sourced packets and the dc3 form. The dc3 form is 8 bytes longer and
// grows towards lower addresses, so that the rest of the packet stays put.
#pragma once

#include <cstdint>

#include "fwc_types.h"

// The compressed header at `location` becomes a dc3 header 8 bytes ahead of
// it; packet_length counts the packet with the compressed header. Returns 8.
std::uint32_t plat_fab_convert_compressed_location_to_dc3(env_t env, std::uint8_t* location,
                                                          std::uint32_t packet_length);
// The same at pkt_start: the head moves 8 bytes back and the packet grows by 8.
void plat_fab_convert_compressed_to_dc3(env_t env);
// The reverse at pkt_start: the head moves 8 bytes on and the packet shrinks by 8.
void plat_fab_convert_dc3_to_compressed(env_t env);
// Converts, then puts the Ethernet encapsulation towards a front-end FPGA
// between the 32-byte dc3 header and the rest. Returns 24.
std::uint32_t plat_fab_convert_compressed_location_to_dc3_fpga(env_t env, std::uint8_t* location,
                                                               std::uint32_t packet_length, std::uint32_t dmac_lsb,
                                                               std::uint32_t npu_id, std::uint32_t vlan_id);
// Destination 01:56:47:50:00:<dmac_lsb>, source 00:4E:65:7A:00:<npu_id>,
// type 0x8100, the VLAN in the low 12 bits of the tag.
void plat_build_punt_inject_fpga_encap(void* encap, std::uint32_t dmac_lsb, std::uint32_t npu_id,
                                       std::uint32_t vlan_id);
