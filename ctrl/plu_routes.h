// Routes and multicast entries of the PLU: VRFs, prefixes with their leaves
// (added, replaced, deleted), and exact (S, G) entries. Every call checks
// its input first and leaves the tables as they were when it fails.
#pragma once

#include <cstdint>

#include "ctrl/error.h"
#include "model/npu.h"

namespace ctrl {

// A route as the PLU keys it. key_code is PLU_IPV4_UNICAST,
// PLU_IPV6_UNICAST or PLU_IPV6_LL_UNICAST; table is the VRF, or the
// interface handle of a link-local route. Address bits past the length are
// not part of the prefix.
using route_prefix = model::plu_route_key;
// Leaf data of the route (leaf_data_0 to leaf_data_6): the PLU appends the
// prefix length and the result type.
using route_leaf = model::plu_route_leaf;

route_prefix ipv4_prefix(std::uint32_t vrf, std::uint32_t addr, std::uint8_t length);
route_prefix ipv6_prefix(std::uint32_t vrf, const model::ip_bytes& addr, std::uint8_t length);
route_prefix ipv6_link_local_prefix(std::uint32_t ifh, const model::ip_bytes& addr, std::uint8_t length);

// VRF 0, the global table, is always there.
error add_vrf(model::npu& n, std::uint32_t vrf);
error add_prefix(model::npu& n, const route_prefix& prefix, const route_leaf& leaf);
error replace_prefix(model::npu& n, const route_prefix& prefix, const route_leaf& leaf);
error delete_prefix(model::npu& n, const route_prefix& prefix);

// An (S, G) entry: key_code PLU_IPV4_SG_VRF or PLU_IPV6_SG_VRF with a VRF as
// table, PLU_L2M4_SG or PLU_L2M6_SG with a 24-bit bridge domain. The leaf's
// last two bits are the PLU's: it answers result_type there.
using group_key = model::plu_group_key;
using group_leaf = model::plu_group_leaf;

error add_group(model::npu& n, const group_key& key, const group_leaf& leaf);
error replace_group(model::npu& n, const group_key& key, const group_leaf& leaf);
error delete_group(model::npu& n, const group_key& key);

}  // namespace ctrl
