#include "plu_routes.h"

namespace ctrl {

namespace {

static_assert(ROUTE_LEAF_BYTES == PLU_LEAF_DATA_BYTES);
static_assert(GROUP_LEAF_BYTES == sizeof(model::plu_group_leaf));

constexpr std::uint32_t MAX_VRF = 0xFFFF;
constexpr std::uint32_t MAX_BD_ID = 0xFFFFFF;
constexpr std::uint8_t IPV4_MAX_LENGTH = 32;
constexpr std::uint8_t IPV6_MAX_LENGTH = 128;

error of(model::plu_engine::change c) {
  switch (c) {
    case model::plu_engine::change::done:
      return error::none;
    case model::plu_engine::change::exists:
      return error::exists;
    case model::plu_engine::change::missing:
      return error::not_found;
    case model::plu_engine::change::no_vrf:
      return error::unknown_vrf;
  }
  return error::none;
}

error check(const route_prefix& p) {
  switch (p.family) {
    case route_family::ipv4:
      if (p.table > MAX_VRF) return error::unknown_vrf;
      return p.length > IPV4_MAX_LENGTH ? error::bad_prefix_length : error::none;
    case route_family::ipv6:
      if (p.table > MAX_VRF) return error::unknown_vrf;
      [[fallthrough]];
    case route_family::ipv6_link_local:
      return p.length > IPV6_MAX_LENGTH ? error::bad_prefix_length : error::none;
  }
  return error::out_of_range;  // a family value that names none
}

error check(const group_key& k) {
  switch (k.family) {
    case group_family::ipv4_vrf:
    case group_family::ipv6_vrf:
      return k.table > MAX_VRF ? error::unknown_vrf : error::none;
    case group_family::ipv4_bridge:
    case group_family::ipv6_bridge:
      return k.table > MAX_BD_ID ? error::out_of_range : error::none;
  }
  return error::out_of_range;  // a family value that names none
}

std::uint8_t key_code(route_family f) {
  switch (f) {
    case route_family::ipv4:
      return PLU_IPV4_UNICAST;
    case route_family::ipv6:
      return PLU_IPV6_UNICAST;
    case route_family::ipv6_link_local:
      return PLU_IPV6_LL_UNICAST;
  }
  return 0;
}

std::uint8_t key_code(group_family f) {
  switch (f) {
    case group_family::ipv4_vrf:
      return PLU_IPV4_SG_VRF;
    case group_family::ipv6_vrf:
      return PLU_IPV6_SG_VRF;
    case group_family::ipv4_bridge:
      return PLU_L2M4_SG;
    case group_family::ipv6_bridge:
      return PLU_L2M6_SG;
  }
  return 0;
}

model::plu_route_key plu_key(const route_prefix& p) { return {key_code(p.family), p.table, p.addr, p.length}; }
model::plu_group_key plu_key(const group_key& k) { return {key_code(k.family), k.table, k.src, k.grp}; }

}  // namespace

route_prefix ipv4_prefix(vrf_id vrf, std::uint32_t addr, std::uint8_t length) {
  route_prefix p{route_family::ipv4, vrf.value, {}, length};
  for (int i = 0; i < 4; ++i) p.addr[i] = static_cast<std::uint8_t>(addr >> (24 - 8 * i));
  return p;
}

route_prefix ipv6_prefix(vrf_id vrf, const ip_address& addr, std::uint8_t length) {
  return {route_family::ipv6, vrf.value, addr, length};
}

route_prefix ipv6_link_local_prefix(std::uint32_t if_handle, const ip_address& addr, std::uint8_t length) {
  return {route_family::ipv6_link_local, if_handle, addr, length};
}

error plu_routes::add_vrf(vrf_id vrf) {
  if (vrf.value > MAX_VRF) return error::out_of_range;
  return n_.plu().add_vrf(static_cast<std::uint16_t>(vrf.value)) ? error::none : error::exists;
}

error plu_routes::add_prefix(const route_prefix& prefix, const route_leaf& leaf) {
  if (const error e = check(prefix); e != error::none) return e;
  return of(n_.plu().add_route(plu_key(prefix), leaf));
}

error plu_routes::replace_prefix(const route_prefix& prefix, const route_leaf& leaf) {
  if (const error e = check(prefix); e != error::none) return e;
  return of(n_.plu().replace_route(plu_key(prefix), leaf));
}

error plu_routes::delete_prefix(const route_prefix& prefix) {
  if (const error e = check(prefix); e != error::none) return e;
  return of(n_.plu().delete_route(plu_key(prefix)));
}

error plu_routes::add_group(const group_key& key, const group_leaf& leaf) {
  if (const error e = check(key); e != error::none) return e;
  return of(n_.plu().add_group(plu_key(key), leaf));
}

error plu_routes::replace_group(const group_key& key, const group_leaf& leaf) {
  if (const error e = check(key); e != error::none) return e;
  return of(n_.plu().replace_group(plu_key(key), leaf));
}

error plu_routes::delete_group(const group_key& key) {
  if (const error e = check(key); e != error::none) return e;
  return of(n_.plu().delete_group(plu_key(key)));
}

}  // namespace ctrl
