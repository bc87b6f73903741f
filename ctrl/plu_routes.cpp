#include "plu_routes.h"

namespace ctrl {

namespace {

constexpr std::uint32_t MAX_VRF = 0xFFFF;
constexpr std::uint32_t MAX_BD_ID = 0xFFFFFF;
constexpr std::uint8_t IPV4_MAX_LENGTH = 32;
constexpr std::uint8_t IPV6_MAX_LENGTH = 128;

error of(model::plu_engine::change c) {
  switch (c) {
    case model::plu_engine::change::done: return error::none;
    case model::plu_engine::change::exists: return error::exists;
    case model::plu_engine::change::missing: return error::not_found;
    case model::plu_engine::change::no_vrf: return error::unknown_vrf;
  }
  return error::none;
}

error check(const route_prefix& p) {
  switch (p.code) {
    case PLU_IPV4_UNICAST:
      if (p.table > MAX_VRF) return error::unknown_vrf;
      return p.length > IPV4_MAX_LENGTH ? error::bad_prefix_length : error::none;
    case PLU_IPV6_UNICAST:
      if (p.table > MAX_VRF) return error::unknown_vrf;
      [[fallthrough]];
    case PLU_IPV6_LL_UNICAST: return p.length > IPV6_MAX_LENGTH ? error::bad_prefix_length : error::none;
    default: return error::unknown_key_code;
  }
}

error check(const group_key& k) {
  switch (k.code) {
    case PLU_IPV4_SG_VRF:
    case PLU_IPV6_SG_VRF: return k.table > MAX_VRF ? error::unknown_vrf : error::none;
    case PLU_L2M4_SG:
    case PLU_L2M6_SG: return k.table > MAX_BD_ID ? error::out_of_range : error::none;
    default: return error::unknown_key_code;
  }
}

}  // namespace

route_prefix ipv4_prefix(std::uint32_t vrf, std::uint32_t addr, std::uint8_t length) {
  route_prefix p{PLU_IPV4_UNICAST, vrf, {}, length};
  for (int i = 0; i < 4; ++i) p.addr[i] = static_cast<std::uint8_t>(addr >> (24 - 8 * i));
  return p;
}

route_prefix ipv6_prefix(std::uint32_t vrf, const model::ip_bytes& addr, std::uint8_t length) {
  return {PLU_IPV6_UNICAST, vrf, addr, length};
}

route_prefix ipv6_link_local_prefix(std::uint32_t ifh, const model::ip_bytes& addr, std::uint8_t length) {
  return {PLU_IPV6_LL_UNICAST, ifh, addr, length};
}

error add_vrf(model::npu& n, std::uint32_t vrf) {
  if (vrf > MAX_VRF) return error::out_of_range;
  return n.plu().add_vrf(static_cast<std::uint16_t>(vrf)) ? error::none : error::exists;
}

error add_prefix(model::npu& n, const route_prefix& prefix, const route_leaf& leaf) {
  if (const error e = check(prefix); e != error::none) return e;
  return of(n.plu().add_route(prefix, leaf));
}

error replace_prefix(model::npu& n, const route_prefix& prefix, const route_leaf& leaf) {
  if (const error e = check(prefix); e != error::none) return e;
  return of(n.plu().replace_route(prefix, leaf));
}

error delete_prefix(model::npu& n, const route_prefix& prefix) {
  if (const error e = check(prefix); e != error::none) return e;
  return of(n.plu().delete_route(prefix));
}

error add_group(model::npu& n, const group_key& key, const group_leaf& leaf) {
  if (const error e = check(key); e != error::none) return e;
  return of(n.plu().add_group(key, leaf));
}

error replace_group(model::npu& n, const group_key& key, const group_leaf& leaf) {
  if (const error e = check(key); e != error::none) return e;
  return of(n.plu().replace_group(key, leaf));
}

error delete_group(model::npu& n, const group_key& key) {
  if (const error e = check(key); e != error::none) return e;
  return of(n.plu().delete_group(key));
}

}  // namespace ctrl
