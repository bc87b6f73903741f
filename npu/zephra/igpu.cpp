#include "igpu.h"

#include "dma_common.h"
#include "tcam_defs.h"

void igpu_launch_vlan_classification_lookup(env_t env, const std::uint32_t req_loc, const std::uint32_t resp_loc) {
  dma_initiate(env, dma_build_cmd(RES_IGPU, req_loc, sizeof(igpu_resp_match_request_), resp_loc,
                                  sizeof(igpu_resp_match_response_)));
}
