// The parser's decode of the L3 header: the decode bits of the IPv4, IPv6
// and MPLS views of the receive header, and whether the header passes every
// check that the fast path takes for granted.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "dist_hdr.h"

namespace model {

using mac_address = std::array<std::uint8_t, 6>;

struct l3_verdict {
  bool sane = false;        // every check of the protocol passed
  bool multicast = false;   // addressed to a group
  mac_address group_mac{};  // the MAC of that group, for a multicast packet
};

// The decode bits stand in bytes 10 and 11 of the baf part: in the word of
// bytes 8 to 11, which be_word_mask takes.
inline constexpr std::size_t DECODE_WORD = 8;
inline bool decode_bits_all_set(const baf_hdr_ing_st& baf, std::uint32_t mask) {
  return (be_detail::load_be<4>(baf.bytes + DECODE_WORD) & mask) == mask;
}

// Each decodes the header at the start of `l3` (the frame from the L3
// offset on) into the decode bits of `baf`.
l3_verdict decode_ipv4(std::span<const std::uint8_t> l3, baf_hdr_ing_st& baf);
l3_verdict decode_ipv6(std::span<const std::uint8_t> l3, baf_hdr_ing_st& baf);
l3_verdict decode_mpls(std::span<const std::uint8_t> l3, bool multicast_type, baf_hdr_ing_st& baf);

}  // namespace model
