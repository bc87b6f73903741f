// The IGPU's VLAN classification: a 12-byte igpu_resp_match_request_ at
// req_loc, answered by igpu_resp_match_response_ in one cell at resp_loc.
#pragma once

#include <cstdint>

#include "fwc_types.h"

void igpu_launch_vlan_classification_lookup(env_t env, const std::uint32_t req_loc, const std::uint32_t resp_loc);
