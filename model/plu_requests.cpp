#include "plu_requests.h"

#include <algorithm>
#include <cstring>

#include "plu_engine.h"

namespace model {

namespace {

template <class Key>
std::optional<Key> key_as(std::span<const std::uint8_t> key) {
  if (key.size() < sizeof(Key)) return std::nullopt;
  Key k;
  std::memcpy(k.bytes, key.data(), sizeof k.bytes);
  return k;
}

ip_bytes ipv4_bytes(std::uint32_t a) {
  ip_bytes b{};
  reinterpret_cast<be_u32*>(b.data())->set(a);
  return b;
}

template <class Run, class Key>
ip_bytes run_bytes(const Key& k) {
  ip_bytes b{};
  std::copy_n(Run::data(k), Run::size, b.begin() + (16 - Run::size));
  return b;
}

std::string too_short(std::uint32_t code) {
  return "PLU request of key code " + std::to_string(code) + " shorter than its key";
}

template <class Answer>
void answer(const Answer& a, std::span<std::uint8_t> resp) {
  std::copy_n(a.bytes, std::min(sizeof a.bytes, resp.size()), resp.begin());
}

std::string route(npu_thread& t, std::span<const std::uint8_t> key, std::span<std::uint8_t> resp) {
  plu_route_key k{key[0], 0, {}, 0};
  if (key[0] == PLU_IPV4_UNICAST) {
    const auto v = key_as<plu_ipv4_unicast_key_st>(key);
    if (!v) return too_short(key[0]);
    k.table = plu_ipv4_unicast_key_st::vrf::get(*v);
    k.addr = ipv4_bytes(plu_ipv4_unicast_key_st::addr::get(*v));
  } else if (key[0] == PLU_IPV6_UNICAST) {
    const auto v = key_as<plu_ipv6_unicast_key_st>(key);
    if (!v) return too_short(key[0]);
    k.table = plu_ipv6_unicast_key_st::vrf::get(*v);
    k.addr = run_bytes<plu_ipv6_unicast_key_st::addr>(*v);
  } else {
    const auto v = key_as<plu_ipv6_ll_key_st>(key);
    if (!v) return too_short(key[0]);
    k.table = plu_ipv6_ll_key_st::ifh::get(*v);
    k.addr = run_bytes<plu_ipv6_ll_key_st::addr_tail>(*v);
  }
  plu_result_st out;
  t.owner->plu().search_route(t.index, k, out);
  answer(out, resp);
  return {};
}

std::optional<plu_group_key> group_key_of(std::span<const std::uint8_t> key) {
  switch (key[0]) {
    case PLU_IPV4_SG_VRF: {
      const auto v = key_as<plu_ipv4_sg_key_st>(key);
      if (!v) return std::nullopt;
      return plu_group_key{key[0], plu_ipv4_sg_key_st::vrf::get(*v), ipv4_bytes(plu_ipv4_sg_key_st::src::get(*v)),
                           ipv4_bytes(plu_ipv4_sg_key_st::grp::get(*v))};
    }
    case PLU_L2M4_SG: {
      const auto v = key_as<plu_l2m4_sg_key_st>(key);
      if (!v) return std::nullopt;
      return plu_group_key{key[0], plu_l2m4_sg_key_st::bd_id::get(*v), ipv4_bytes(plu_l2m4_sg_key_st::src::get(*v)),
                           ipv4_bytes(plu_l2m4_sg_key_st::grp::get(*v))};
    }
    case PLU_IPV6_SG_VRF: {
      const auto v = key_as<plu_ipv6_sg_key_st>(key);
      if (!v) return std::nullopt;
      return plu_group_key{key[0], plu_ipv6_sg_key_st::vrf::get(*v), run_bytes<plu_ipv6_sg_key_st::src>(*v),
                           run_bytes<plu_ipv6_sg_key_st::grp>(*v)};
    }
    default: {
      const auto v = key_as<plu_l2m6_sg_key_st>(key);
      if (!v) return std::nullopt;
      return plu_group_key{key[0], plu_l2m6_sg_key_st::bd_id::get(*v), run_bytes<plu_l2m6_sg_key_st::src>(*v),
                           run_bytes<plu_l2m6_sg_key_st::grp>(*v)};
    }
  }
}

std::string group(npu_thread& t, std::span<const std::uint8_t> key, std::span<std::uint8_t> resp) {
  const auto k = group_key_of(key);
  if (!k) return too_short(key[0]);
  plu_resp_mc_leaf_found_response_ out;
  t.owner->plu().search_group(t.index, *k, out);
  answer(out, resp);
  return {};
}

}  // namespace

std::string serve_plu_key(npu_thread& t, std::span<const std::uint8_t> key, std::span<std::uint8_t> resp) {
  if (key.empty()) return "PLU request without a key";
  if (resp.size() < PLU_SEARCH_RESP_BYTES) return "PLU search with a response smaller than 32 bytes";
  std::fill(resp.begin(), resp.end(), 0);
  switch (key[0]) {
    case PLU_IPV4_UNICAST:
    case PLU_IPV6_UNICAST:
    case PLU_IPV6_LL_UNICAST:
      return route(t, key, resp);
    case PLU_IPV4_SG_VRF:
    case PLU_IPV6_SG_VRF:
    case PLU_L2M4_SG:
    case PLU_L2M6_SG:
      return group(t, key, resp);
    default:
      break;
  }
  return "PLU key code " + std::to_string(key[0]) + ", which nothing serves";
}

void execute_plu(dma_request& r) {
  const dma_cmd& c = r.cmd();
  std::uint8_t* resp = r.response();
  const std::string broke = serve_plu_key(r.thread(), {r.bytes_from(0), c.req_bytes}, {resp, resp ? c.resp_bytes : 0});
  if (!broke.empty()) r.breach(broke);
}

}  // namespace model
