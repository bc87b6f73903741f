// Bits of a packet's 32-bit flow hash for each user: ECMP levels, link
// bundles, fabric spreading, service functions and the SRv6 flow label.
// Each user takes its own bits, so that choices at different levels do not
// follow one another.
#pragma once

#include <cstdint>

inline std::uint16_t hash_get_lag_bits(std::uint32_t hash) {
  return static_cast<std::uint16_t>((hash & 0xFF) | (((hash >> 24) & 0xF) << 8));
}
inline std::uint8_t hash_get_fab_rbh_bits(std::uint32_t hash) { return static_cast<std::uint8_t>(hash & 0xFF); }
inline std::uint8_t hash_get_fab_rack_cluster_bits(std::uint32_t hash) {
  return static_cast<std::uint8_t>((hash >> 22) & 0xFF);
}
inline std::uint8_t hash_get_base_nrldi_bits(std::uint32_t hash) {
  return static_cast<std::uint8_t>((hash >> 8) & 0xFF);
}
inline std::uint8_t hash_get_sr_te_nrldi_bits(std::uint32_t hash) { return static_cast<std::uint8_t>(hash >> 24); }
inline std::uint8_t hash_get_1st_rldi_bits(std::uint32_t hash) {
  return static_cast<std::uint8_t>((hash >> 13) & 0xFF);
}
inline std::uint8_t hash_get_2nd_rldi_bits(std::uint32_t hash) {
  return static_cast<std::uint8_t>((hash >> 16) & 0xFF);
}
inline std::uint8_t hash_get_nsh_sf_bits(std::uint32_t hash) { return static_cast<std::uint8_t>((hash >> 4) & 0xFF); }
inline std::uint32_t hash_get_srv6_flow_label_bits(std::uint32_t hash) { return (hash >> 6) & 0xFFFFF; }
