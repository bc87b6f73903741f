// Routes and multicast entries of the PLU: VRFs, prefixes with their leaves
// (added, replaced, deleted), and exact (S, G) entries. Every call checks
// its input first and leaves the tables as they were when it fails. The keys
// are the control side's own; they become the PLU's keys inside.
#pragma once

#include <array>
#include <cstdint>

#include "ctrl/error.h"
#include "model/npu.h"

namespace ctrl {

using ip_address = std::array<std::uint8_t, 16>;  // IPv4 in the first four bytes

struct vrf_id {
  std::uint32_t value = 0;  // 0 is the global table, always there
};

enum class route_family { ipv4, ipv6, ipv6_link_local };

// A route. table is the VRF, or the interface handle of a link-local
// route. Address bits past the length are not part of the prefix.
struct route_prefix {
  route_family family = route_family::ipv4;
  std::uint32_t table = 0;
  ip_address addr{};
  std::uint8_t length = 0;
};

// The route's next hop as the leaf data holds it (leaf_data_0 to
// leaf_data_6): the PLU appends the prefix length and the result type.
inline constexpr std::size_t ROUTE_LEAF_BYTES = 26;
using route_leaf = std::array<std::uint8_t, ROUTE_LEAF_BYTES>;

route_prefix ipv4_prefix(vrf_id vrf, std::uint32_t addr, std::uint8_t length);
route_prefix ipv6_prefix(vrf_id vrf, const ip_address& addr, std::uint8_t length);
route_prefix ipv6_link_local_prefix(std::uint32_t if_handle, const ip_address& addr, std::uint8_t length);

// An (S, G) entry: in a VRF (table is the VRF), or in a bridge domain of
// 24 bits (table is the bridge domain).
enum class group_family { ipv4_vrf, ipv6_vrf, ipv4_bridge, ipv6_bridge };
struct group_key {
  group_family family = group_family::ipv4_vrf;
  std::uint32_t table = 0;
  ip_address src{};
  ip_address grp{};
};
// The leaf's last two bits are the PLU's: it answers result_type there.
inline constexpr std::size_t GROUP_LEAF_BYTES = 32;
using group_leaf = std::array<std::uint8_t, GROUP_LEAF_BYTES>;

class plu_routes {
 public:
  explicit plu_routes(model::npu& n) : n_(n) {}

  error add_vrf(vrf_id vrf);
  error add_prefix(const route_prefix& prefix, const route_leaf& leaf);
  error replace_prefix(const route_prefix& prefix, const route_leaf& leaf);
  error delete_prefix(const route_prefix& prefix);

  error add_group(const group_key& key, const group_leaf& leaf);
  error replace_group(const group_key& key, const group_leaf& leaf);
  error delete_group(const group_key& key);

 private:
  model::npu& n_;
};

}  // namespace ctrl
