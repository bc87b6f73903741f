// The walk of an IPv6 packet's extension headers. It runs once per packet
// and leaves what it found for hash, ACL and flow export alike: the headers
// met in ipv6_eh_flags, the L4 protocol, fragment field, first L4 word and
// TCP flags in ip_l4_info, the L4 header's place in l4_hdr_ptr, and the mark
// ipv6_ext_hdr_parsed in common_flags.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "ipv6.h"

inline constexpr std::uint32_t IPV6_EXT_HDR_OK = 0;
inline constexpr std::uint32_t IPV6_EXT_HDR_BAD_CHAIN = 4;

// TCP, UDP or SCTP straight behind the base header ends at once; any other
// chain goes on to ipv6_ext_hdr_parse_slow. IPV6_EXT_HDR_BAD_CHAIN when the
// headers do not fit in the packet or the chain breaks a rule.
std::uint32_t ipv6_ext_hdr_parse_ing(env_t env, ipv6_hdr_st* ip);
std::uint32_t ipv6_ext_hdr_parse_slow(env_t env, ipv6_hdr_st* ip);
