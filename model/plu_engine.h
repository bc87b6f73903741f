// The PLU's tables, which only the PLU reads: longest-prefix match of IPv4
// (key code 1) and IPv6 (code 2) routes per VRF, of link-local IPv6 routes
// per interface handle (code 15), and exact (S, G) entries of VRFs (codes 4
// and 6) and bridge domains (codes 8 and 10). A VRF exists once the control
// side has added it; VRF 0, the global table, always does.
//
// Concurrency: NPU threads search while the control side changes the
// tables. One read_mostly_lock guards all of them: a search holds a reader
// slot (its thread's) for the whole search, a change holds the writer side,
// so a search sees every table either before or after a change, never half
// way. Searches allocate nothing; changes allocate under the writer side.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ipv4_prefix_table.h"
#include "ipv6_prefix_table.h"
#include "plu_defs.h"
#include "read_mostly_lock.h"

namespace model {

using ip_bytes = std::array<std::uint8_t, 16>;  // IPv4 in the first four

// A route: key code, table (VRF, or interface handle for link-local), prefix.
struct plu_route_key {
  std::uint8_t code;
  std::uint32_t table;
  ip_bytes addr;
  std::uint8_t length;
};
using plu_route_leaf = std::array<std::uint8_t, PLU_LEAF_DATA_BYTES>;

// An (S, G) entry: key code, table (VRF or bridge domain), source, group.
struct plu_group_key {
  std::uint8_t code;
  std::uint32_t table;
  ip_bytes src;
  ip_bytes grp;
};
// The PLU answers the whole leaf except the low two bits of its last byte,
// where it puts result_type.
using plu_group_leaf = std::array<std::uint8_t, sizeof(plu_resp_mc_leaf_found_response_)>;

class plu_engine {
 public:
  enum class change { done, exists, missing, no_vrf };

  plu_engine();

  // ---- searches, on NPU thread `reader` ----
  // The route's length is not part of a search.
  void search_route(std::uint32_t reader, const plu_route_key& key, plu_result_st& out) const;
  void search_group(std::uint32_t reader, const plu_group_key& key, plu_resp_mc_leaf_found_response_& out) const;

  // ---- the control side ----
  bool add_vrf(std::uint16_t vrf);  // false if it exists
  bool has_vrf(std::uint16_t vrf) const;
  change add_route(const plu_route_key& key, const plu_route_leaf& leaf);
  change replace_route(const plu_route_key& key, const plu_route_leaf& leaf);
  change delete_route(const plu_route_key& key);
  change add_group(const plu_group_key& key, const plu_group_leaf& leaf);
  change replace_group(const plu_group_key& key, const plu_group_leaf& leaf);
  change delete_group(const plu_group_key& key);
  std::size_t routes() const;

 private:
  struct vrf_tables {
    ipv4_prefix_table v4;
    ipv6_prefix_table v6;
  };
  // One table of routes, whichever its family.
  struct route_table {
    ipv4_prefix_table* v4 = nullptr;
    ipv6_prefix_table* v6 = nullptr;
  };
  using group_bytes = std::array<std::uint8_t, 1 + 4 + 16 + 16>;
  struct group_hash {
    std::size_t operator()(const group_bytes& b) const {
      return std::hash<std::string_view>{}({reinterpret_cast<const char*>(b.data()), b.size()});
    }
  };

  route_table find_table(std::uint8_t code, std::uint32_t table) const;
  std::optional<plu_leaf_id> find_route(const route_table& t, const plu_route_key& key) const;
  std::optional<prefix_match> longest_match(const route_table& t, const plu_route_key& key) const;
  plu_leaf_id new_leaf(const plu_route_leaf& leaf);
  static group_bytes group_of(const plu_group_key& key);

  mutable read_mostly_lock lock_;
  std::vector<std::unique_ptr<vrf_tables>> vrfs_;                                     // by VRF; null: not added
  std::unordered_map<std::uint32_t, std::unique_ptr<ipv6_prefix_table>> link_local_;  // by interface handle
  std::unordered_map<group_bytes, plu_group_leaf, group_hash> groups_;
  std::vector<plu_route_leaf> leaves_;
  std::vector<plu_leaf_id> free_leaves_;
  std::size_t routes_ = 0;
};

}  // namespace model
