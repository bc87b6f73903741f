// Reading the inject header of a packet from the host where it stands: at
// pkt_start, or 16 bytes further on when the distribution header is of the
// line form.
#pragma once

#include <cstdint>

#include "dist_hdr.h"
#include "dplane/infra/ps.h"
#include "npu/zephra/pkt_rx.h"
#include "punt_inject_hdr.h"

inline constexpr std::uint32_t INJECT_HDR_LINE_OFFSET = 16;

inline const std::uint8_t* plat_get_inject_hdr_start(env_t env) {
  const std::uint8_t* start = *ps_get_pkt_start(env);
  return pkt_rx_distr_type(env) == DST_FORMAT_LINE ? start + INJECT_HDR_LINE_OFFSET : start;
}
inline const std::uint8_t* plat_get_inject_ext_hdr_start(env_t env) {
  return plat_get_inject_hdr_start(env) + varn_fab_nph_punt_inject_st::nph_ext_offset;
}
// The bundle member that the host chose.
inline std::uint32_t plat_get_inject_hdr_lag_id(env_t env) {
  return varn_nph_punt_inject_ext_st::lagm::lag_id::get_raw(plat_get_inject_ext_hdr_start(env));
}
