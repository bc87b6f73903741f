#include "l2_ether.h"

#include "dplane/infra/lookup.h"
#include "dplane/infra/ps.h"
#include "global_counters.h"

namespace {

const be_u16& type_after_tags(const ether_hdr* eth, std::uint32_t tags) {
  return *reinterpret_cast<const be_u16*>(reinterpret_cast<const std::uint8_t*>(eth) + ETHER_HDR_BYTES - 2 +
                                          tags * VLAN_TAG_BYTES);
}
}  // namespace

std::uint8_t parse_ether_type(const ether_hdr* eth, std::uint16_t* type) {
  std::uint8_t tags = 0;
  while (tags < ETHER_MAX_TAGS && ether_type_is_tag(type_after_tags(eth, tags).get())) ++tags;
  *type = type_after_tags(eth, tags).get();
  return tags;
}

std::uint8_t parse_ether_type_fast(env_t env, const ether_hdr* eth, std::uint16_t* type) {
  const std::uint32_t l2_hdr_len = *ps_get_l2_hdr_len(env);
  if (l2_hdr_len == 0) return parse_ether_type(eth, type);
  if (l2_hdr_len < ETHER_HDR_BYTES) {
    lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, CNT_SHORT_L2_HDR);
    return 0;
  }
  const auto tags = static_cast<std::uint8_t>((l2_hdr_len - ETHER_HDR_BYTES) / VLAN_TAG_BYTES);
  *type = type_after_tags(eth, tags).get();
  return tags;
}
