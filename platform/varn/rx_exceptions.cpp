#include "rx_exceptions.h"

#include <cstring>

#include "dplane/infra/drop.h"
#include "dplane/infra/drop_paths.h"
#include "dplane/infra/env_init.h"
#include "dplane/infra/lookup.h"
#include "global_counters.h"
#include "ingress_vectors.h"
#include "npu/zephra/pkt_rx.h"
#include "platform/shared/handlers.h"
#include "platform/varn/entry_points.h"

namespace {

using cf = common_flags_st;

constexpr std::uint32_t ETH_HDR_LEN = 14;
constexpr std::uint32_t ETHERTYPE_OFFSET = 12;
constexpr std::uint16_t ETHERTYPE_IPV4 = 0x0800;
constexpr std::uint32_t VQ_TAG_LEN = 4;
constexpr std::uint32_t MAC_ADDRS_LEN = 12;
constexpr std::uint32_t IPV4_DST_OFFSET = 16;
constexpr std::uint32_t IPV6_DST_OFFSET = 24;

// Destination MAC classes 1 and 3 are addressed to this router.
bool dest_mac_matches(env_t env) {
  const std::uint32_t type = pkt_rx_get_dest_mac_type(env);
  return type == 1 || type == 3;
}

std::uint8_t* l3_header(env_t env) { return *ps_get_pkt_start(env) + pkt_get_rx_l3_offset(env); }

void set_mac_mismatch_drop(env_t env) { cf::mac_mismatch_drop::set(*ps_put_mod_common_flags(env), 1); }

}  // namespace

boolean_t handle_protdecode_tcam_miss(env_t env) {
  if (pkt_rx_l2_uidb_present(env)) {
    drop_packet(env, DROP_UNKNOWN_VECTOR);
  } else {
    l2_ctrl_ing(env);
  }
  return TRUE;
}

boolean_t handle_non_wire_vector(env_t env) {
  const std::uint32_t vector = pkt_rx_rt_thread(env);
  if (vector == VECTOR_INJECT) {
    if (!pkt_is_rx_inject_port(env)) {
      drop_packet(env, DROP_BAD_INJECT);
    } else if (pkt_get_rx_l3_type(env) == bufhdr_l3_type_other_e) {
      plat_process_inject(env, FALSE);
    } else {
      std::uint8_t* frame = *ps_get_pkt_start(env);
      be_u16 ethertype;
      std::memcpy(ethertype.b, frame + ETHERTYPE_OFFSET, sizeof(ethertype.b));
      if (ethertype.get() != ETHERTYPE_IPV4) {
        drop_packet(env, DROP_BAD_INJECT);
      } else {
        process_inject_ipv4(env, frame + ETH_HDR_LEN);
      }
    }
  } else if (vector == VECTOR_TIMESTAMP_FOLLOWUP) {
    punt_ptp_followup(env, *ps_get_pkt_mem_start(env), *ps_get_pkt_start(env));
  } else {
    drop_packet(env, DROP_UNKNOWN_VECTOR);
  }
  return TRUE;
}

boolean_t handle_sat_port(env_t env) {
  const std::uint32_t vector = pkt_rx_rt_thread(env);
  if (vector > ING_MAX_WIRE_VECTOR) return FALSE;
  lookup_request_ID_PORT_CONFIG_ING__SAT(env, pkt_get_rx_physical_port(env));
  if (!ingress_port_fields_part1_st::sat_port_unicast_state::get(*lookup_result_ID_PORT_CONFIG_ING__SAT(env))) {
    drop_packet(env, DROP_SAT_PORT_NOT_UNICAST);
    return TRUE;
  }
  plat_remove_vq_tag(env);
  return FALSE;
}

// Takes the satellite's VLAN tag out: the two MAC addresses move up over it.
void plat_remove_vq_tag(env_t env) {
  std::uint8_t*& pkt_start = *ps_put_mod_pkt_start(env);
  std::memmove(pkt_start + VQ_TAG_LEN, pkt_start, MAC_ADDRS_LEN);
  pkt_start += VQ_TAG_LEN;
  *ps_put_mod_curr_pkt_len(env) = static_cast<std::uint16_t>(*ps_get_curr_pkt_len(env) - VQ_TAG_LEN);
  dist_hdr_line_st& hdr = pkt_rx_line_hdr_mod(env);
  const std::uint32_t l3_offset = dist_hdr_line_st::l3_offset::get(hdr);
  if (l3_offset != 0) dist_hdr_line_st::l3_offset::set(hdr, (l3_offset - VQ_TAG_LEN) & 0x7F);
  *ps_put_mod_hw_np_port(env) = static_cast<std::uint16_t>(pkt_get_rx_input_qid(env) / 2);
  common_flags2_st::is_sat_intf::set(*ps_put_mod_common_flags2(env), 1);
}

void handle_ipv4_exception(env_t env, boolean_t global_feature_enabled) {
  if (pkt_rx_l3_uidb_maintenance_mode(env)) return drop_packet(env, DROP_MAINTENANCE_MODE);
  if (!pkt_rx_ipv4_enabled(env)) return l3_ing_drop(env, FALSE, *ps_get_curr_pkt_len(env), DROP_IPV4_DISABLED);
  if (pkt_rx_is_v4_mcast(env)) {
    // Only 224.0.0.0/24 (link-local control) stays on the unicast body.
    const std::uint8_t* dst = l3_header(env) + IPV4_DST_OFFSET;
    if (!(dst[0] == 224 && dst[1] == 0 && dst[2] == 0)) {
      return ipm4_ing_nonperf(env, global_feature_enabled, TRUE, IPM4_ING_REG);
    }
  } else if (!dest_mac_matches(env)) {
    lookup_request_ID_UIDB_L3_ING__COMM(env, pkt_get_rx_uidb_index(env));
    lookup_wait_ID_UIDB_L3_ING__COMM(env);
    if (!uidb_l3_ing_fields_st::satellite_IC::get(*lookup_result_ID_UIDB_L3_ING__COMM(env))) {
      set_mac_mismatch_drop(env);
    }
  }
  ipv4_ing_nonperf(env, global_feature_enabled, TRUE, IPV4_ING_PATH_MAIN);
}

void handle_ipv6_exception(env_t env, boolean_t global_feature_enabled) {
  if (pkt_rx_l3_uidb_maintenance_mode(env)) return drop_packet(env, DROP_MAINTENANCE_MODE);
  if (!pkt_rx_ipv6_enabled(env)) return l3_ing_drop(env, FALSE, *ps_get_curr_pkt_len(env), DROP_IPV6_DISABLED);
  if (pkt_rx_is_v6_mcast(env)) {
    const std::uint8_t* dst = l3_header(env) + IPV6_DST_OFFSET;
    const bool link_scope = dst[0] == 0xFF && (dst[1] & 0x0F) == 2;
    if (!link_scope) return ipm6_ing_nonperf(env, global_feature_enabled, TRUE, IPM6_ING_REG);
  }
  if (!dest_mac_matches(env)) set_mac_mismatch_drop(env);
  ipv6_ing_nonperf(env, global_feature_enabled, TRUE, IPV6_ING_PATH_MAIN);
}

// The global-feature argument of the MPLS body is always TRUE here.
void handle_mpls_exception(env_t env, boolean_t) {
  if (pkt_rx_l3_uidb_maintenance_mode(env)) return drop_packet(env, DROP_MAINTENANCE_MODE);
  if (!pkt_rx_mpls_enabled(env)) return l3_ing_drop(env, FALSE, *ps_get_curr_pkt_len(env), DROP_MPLS_DISABLED);
  if (!dest_mac_matches(env)) return l3_ing_drop(env, FALSE, *ps_get_curr_pkt_len(env), DROP_MPLS_MAC_MISMATCH);
  mpls_ing_nonperf(env, TRUE, TRUE, MPLS_ING_PATH_MAIN);
}

void handle_vpws_exception(env_t env, boolean_t) {
  if (pkt_rx_l2_uidb_maintenance_mode(env)) return drop_packet(env, DROP_MAINTENANCE_MODE);
  vpws_ing(env);
}

void handle_vpls_exception(env_t env, boolean_t) {
  if (pkt_rx_l2_uidb_maintenance_mode(env)) return drop_packet(env, DROP_MAINTENANCE_MODE);
  vpls_ing(env);
}
