#include "plu_engine.h"

#include <algorithm>
#include <cstring>

namespace model {

namespace {

constexpr std::uint32_t VRF_COUNT = 1u << 16;

std::uint32_t ipv4_of(const ip_bytes& a) {
  return (std::uint32_t{a[0]} << 24) | (std::uint32_t{a[1]} << 16) | (std::uint32_t{a[2]} << 8) | a[3];
}

// A link-local key leaves out the address's first byte.
ipv6_key ipv6_of(const plu_route_key& key) {
  ip_bytes a = key.addr;
  if (key.code == PLU_IPV6_LL_UNICAST) a[0] = 0;
  return ipv6_key::from_bytes(a.data());
}

bool is_ipv4_group(std::uint8_t code) { return code == PLU_IPV4_SG_VRF || code == PLU_L2M4_SG; }

}  // namespace

plu_engine::plu_engine() : vrfs_(VRF_COUNT) { vrfs_[0] = std::make_unique<vrf_tables>(); }

plu_engine::route_table plu_engine::find_table(std::uint8_t code, std::uint32_t table) const {
  switch (code) {
    case PLU_IPV4_UNICAST:
      if (table < VRF_COUNT && vrfs_[table]) return {&vrfs_[table]->v4, nullptr};
      break;
    case PLU_IPV6_UNICAST:
      if (table < VRF_COUNT && vrfs_[table]) return {nullptr, &vrfs_[table]->v6};
      break;
    case PLU_IPV6_LL_UNICAST:
      if (auto it = link_local_.find(table); it != link_local_.end()) return {nullptr, it->second.get()};
      break;
    default:
      break;
  }
  return {};
}

std::optional<plu_leaf_id> plu_engine::find_route(const route_table& t, const plu_route_key& key) const {
  if (t.v4) return t.v4->find(ipv4_of(key.addr), key.length);
  if (t.v6) return t.v6->find(ipv6_of(key), key.length);
  return std::nullopt;
}

std::optional<prefix_match> plu_engine::longest_match(const route_table& t, const plu_route_key& key) const {
  if (t.v4) return t.v4->search(ipv4_of(key.addr));
  if (t.v6) return t.v6->search(ipv6_of(key));
  return std::nullopt;
}

void plu_engine::search_route(std::uint32_t reader, const plu_route_key& key, plu_result_st& out) const {
  std::memset(out.bytes, 0, sizeof out.bytes);
  read_mostly_lock::reader guard(lock_, reader);
  const auto m = longest_match(find_table(key.code, key.table), key);
  if (!m) return plu_result_st::result_type::set(out, PLU_RESULT_NO_MATCH);
  std::copy(leaves_[m->leaf].begin(), leaves_[m->leaf].end(), plu_result_st::leaf_data::data(out));
  plu_result_st::prefix_len::set(out, m->length);
  plu_result_st::result_type::set(out, PLU_RESULT_MATCH);
}

plu_engine::group_bytes plu_engine::group_of(const plu_group_key& key) {
  const std::size_t width = is_ipv4_group(key.code) ? 4 : 16;
  group_bytes b{};
  b[0] = key.code;
  for (int i = 0; i < 4; ++i) b[1 + i] = static_cast<std::uint8_t>(key.table >> (24 - 8 * i));
  std::copy_n(key.src.begin(), width, b.begin() + 5);
  std::copy_n(key.grp.begin(), width, b.begin() + 21);
  return b;
}

void plu_engine::search_group(std::uint32_t reader, const plu_group_key& key,
                              plu_resp_mc_leaf_found_response_& out) const {
  std::memset(out.bytes, 0, sizeof out.bytes);
  read_mostly_lock::reader guard(lock_, reader);
  const auto it = groups_.find(group_of(key));
  if (it == groups_.end()) return plu_resp_mc_leaf_found_response_::result_type::set(out, PLU_RESULT_NO_MATCH);
  std::copy(it->second.begin(), it->second.end(), out.bytes);
  plu_resp_mc_leaf_found_response_::result_type::set(out, PLU_RESULT_MATCH);
}

bool plu_engine::add_vrf(std::uint16_t vrf) {
  read_mostly_lock::writer guard(lock_);
  if (vrfs_[vrf]) return false;
  vrfs_[vrf] = std::make_unique<vrf_tables>();
  return true;
}

bool plu_engine::has_vrf(std::uint16_t vrf) const {
  read_mostly_lock::writer guard(lock_);
  return vrfs_[vrf] != nullptr;
}

plu_leaf_id plu_engine::new_leaf(const plu_route_leaf& leaf) {
  if (free_leaves_.empty()) {
    leaves_.push_back(leaf);
    return static_cast<plu_leaf_id>(leaves_.size() - 1);
  }
  const plu_leaf_id id = free_leaves_.back();
  free_leaves_.pop_back();
  leaves_[id] = leaf;
  return id;
}

plu_engine::change plu_engine::add_route(const plu_route_key& key, const plu_route_leaf& leaf) {
  read_mostly_lock::writer guard(lock_);
  if (key.code == PLU_IPV6_LL_UNICAST && !link_local_.count(key.table)) {
    link_local_.emplace(key.table, std::make_unique<ipv6_prefix_table>());
  }
  const route_table t = find_table(key.code, key.table);
  if (!t.v4 && !t.v6) return change::no_vrf;
  if (find_route(t, key)) return change::exists;
  const plu_leaf_id id = new_leaf(leaf);
  if (t.v4) t.v4->set(ipv4_of(key.addr), key.length, id);
  if (t.v6) t.v6->set(ipv6_of(key), key.length, id);
  ++routes_;
  return change::done;
}

plu_engine::change plu_engine::replace_route(const plu_route_key& key, const plu_route_leaf& leaf) {
  read_mostly_lock::writer guard(lock_);
  const route_table t = find_table(key.code, key.table);
  if (!t.v4 && !t.v6) return key.code == PLU_IPV6_LL_UNICAST ? change::missing : change::no_vrf;
  const auto id = find_route(t, key);
  if (!id) return change::missing;
  leaves_[*id] = leaf;
  return change::done;
}

plu_engine::change plu_engine::delete_route(const plu_route_key& key) {
  read_mostly_lock::writer guard(lock_);
  const route_table t = find_table(key.code, key.table);
  if (!t.v4 && !t.v6) return key.code == PLU_IPV6_LL_UNICAST ? change::missing : change::no_vrf;
  const auto id = find_route(t, key);
  if (!id) return change::missing;
  if (t.v4) t.v4->erase(ipv4_of(key.addr), key.length);
  if (t.v6) t.v6->erase(ipv6_of(key), key.length);
  free_leaves_.push_back(*id);
  --routes_;
  return change::done;
}

// Groups of a VRF need the VRF; groups of a bridge domain need nothing.
plu_engine::change plu_engine::add_group(const plu_group_key& key, const plu_group_leaf& leaf) {
  read_mostly_lock::writer guard(lock_);
  const bool by_vrf = key.code == PLU_IPV4_SG_VRF || key.code == PLU_IPV6_SG_VRF;
  if (by_vrf && (key.table >= VRF_COUNT || !vrfs_[key.table])) return change::no_vrf;
  return groups_.emplace(group_of(key), leaf).second ? change::done : change::exists;
}

plu_engine::change plu_engine::replace_group(const plu_group_key& key, const plu_group_leaf& leaf) {
  read_mostly_lock::writer guard(lock_);
  const auto it = groups_.find(group_of(key));
  if (it == groups_.end()) return change::missing;
  it->second = leaf;
  return change::done;
}

plu_engine::change plu_engine::delete_group(const plu_group_key& key) {
  read_mostly_lock::writer guard(lock_);
  return groups_.erase(group_of(key)) ? change::done : change::missing;
}

std::size_t plu_engine::routes() const {
  read_mostly_lock::writer guard(lock_);
  return routes_;
}

}  // namespace model
