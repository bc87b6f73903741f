// The Ethernet header: destination and source MAC, then the type, or up to
// four VLAN tags ahead of it.
#pragma once

#include <cstdint>

#include "be_types.h"

inline constexpr std::uint32_t ETHER_ADDR_BYTES = 6;

struct ether_hdr {
  std::uint8_t dst_mac[ETHER_ADDR_BYTES];
  std::uint8_t src_mac[ETHER_ADDR_BYTES];
  be_u16 ether_type;
};
static_assert(sizeof(ether_hdr) == 14);

// A VLAN tag: its protocol identifier and its control word.
struct vlan_tag_st {
  be_u16 tpid;
  be_u16 tci;
};

inline constexpr std::uint32_t ETHER_HDR_BYTES = 14;
inline constexpr std::uint32_t VLAN_TAG_BYTES = 4;
inline constexpr std::uint32_t ETHER_MAX_TAGS = 4;

inline constexpr std::uint16_t ETHERTYPE_IPV4 = 0x0800;
inline constexpr std::uint16_t ETHERTYPE_IPV6 = 0x86DD;
inline constexpr std::uint16_t ETHERTYPE_MPLS = 0x8847;
inline constexpr std::uint16_t ETHERTYPE_VLAN = 0x8100;
inline constexpr std::uint16_t ETHERTYPE_QINQ = 0x88A8;
inline constexpr std::uint16_t ETHERTYPE_VLAN_9100 = 0x9100;
inline constexpr std::uint16_t ETHERTYPE_VLAN_9200 = 0x9200;

inline bool ether_type_is_tag(std::uint16_t type) {
  return type == ETHERTYPE_VLAN || type == ETHERTYPE_QINQ || type == ETHERTYPE_VLAN_9100 || type == ETHERTYPE_VLAN_9200;
}
