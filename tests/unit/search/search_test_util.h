// Shared helpers of the search engine tests: cells of data memory, records
// read back as bytes, and leaves that tell themselves apart.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "ctrl/plu_routes.h"
#include "ctrl/protected_records.h"
#include "dma_common.h"
#include "testkit/npu_harness.h"

namespace st {

constexpr std::uint32_t REQ = 0x100;
constexpr std::uint32_t RESP = 0x200;

inline std::uint8_t* dmem_at(env_t env, std::uint32_t loc) { return env_get_dmem_start(env) + loc; }

template <class Rec>
Rec record_at(env_t env, std::uint32_t loc) {
  Rec r;
  std::memcpy(r.bytes, dmem_at(env, loc), sizeof r.bytes);
  return r;
}

// A route or group leaf whose bytes all carry `tag`.
template <class Leaf = ctrl::route_leaf>
Leaf leaf_of(std::uint8_t tag) {
  Leaf l;
  l.fill(tag);
  return l;
}

inline model::ip_bytes ipv6(std::initializer_list<std::uint16_t> groups) {
  model::ip_bytes b{};
  std::size_t i = 0;
  for (std::uint16_t g : groups) {
    b[i++] = static_cast<std::uint8_t>(g >> 8);
    b[i++] = static_cast<std::uint8_t>(g);
  }
  return b;
}

}  // namespace st
