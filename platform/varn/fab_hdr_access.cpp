#include "fab_hdr_access.h"

#include <cstring>

#include "dplane/infra/drop.h"
#include "global_counters.h"

namespace {

using l2_uni = varn_dc3_nph_l2_uni_st;
using l2_uni_plus = varn_dc3_nph_l2_uni_plus_st;
using ip_uni_ext = varn_dc3_nph_ip_uni_ext_st;

constexpr std::uint32_t BD_ID_LOW_BITS = 15;
constexpr std::uint32_t BD_ID_LOW_MASK = (1u << BD_ID_LOW_BITS) - 1;
constexpr std::uint32_t ETHERTYPE_IPV4 = 0x0800;
constexpr std::uint32_t ETHERTYPE_IPV6 = 0x86DD;

std::uint32_t vpath_ethertype(const void* fab) {
  const auto* p = static_cast<const std::uint8_t*>(fab) + PWHE_VPATH_ETHERTYPE_OFFSET;
  return (std::uint32_t{p[0]} << 8) | p[1];
}

}  // namespace

std::uint32_t plat_get_fab_hdr_l2_uni_bd_id(const void* fab) {
  if (plat_fab_get_nph_type(fab) == NPH_TYPE_L2_UNI_PLUS) return l2_uni_plus::bd_id::get(fab_as<l2_uni_plus>(fab));
  const l2_uni& hdr = fab_as<l2_uni>(fab);
  return (l2_uni::bd_id_14_0::get(hdr) & BD_ID_LOW_MASK) | (l2_uni::dc3_mgid_15::get(hdr) << BD_ID_LOW_BITS);
}

void plat_set_fab_hdr_l2_uni_bd_id(void* fab, std::uint32_t bd_id) {
  if (plat_fab_get_nph_type(fab) == NPH_TYPE_L2_UNI_PLUS)
    return l2_uni_plus::bd_id::set(fab_as<l2_uni_plus>(fab), bd_id);
  l2_uni& hdr = fab_as<l2_uni>(fab);
  l2_uni::bd_id_14_0::set(hdr, bd_id & BD_ID_LOW_MASK);
  l2_uni::dc3_mgid_15::set(hdr, bd_id >> BD_ID_LOW_BITS);
}

void plat_set_fab_hdr_ipv6_abf_uni_next_hop(void* fab, const std::uint8_t* addr) {
  using hdr = varn_dc3_nph_ipv6_abf_uni_st;
  std::memcpy(hdr::ipv6_nh_addr::data(fab_as<hdr>(fab)), addr, hdr::ipv6_nh_addr::size);
}

// A virtual path header: subtype 0 with SDN_proc, resp_new_flow_inj and
// reinject_or_output all set; an Ethernet header follows.
boolean_t plat_is_fab_hdr_pwhe_vpath_uni(const void* fab) {
  using flags = ip_uni_ext::pwhe_vpath_st::flags;
  const ip_uni_ext& hdr = fab_as<ip_uni_ext>(fab);
  return ip_uni_ext::nph_subtype::get(hdr) == L3_UNI_EXT_PWHE_VPATH && flags::SDN_proc::get(hdr) &&
         flags::resp_new_flow_inj::get(hdr) && flags::reinject_or_output::get(hdr);
}

boolean_t plat_is_fab_hdr_pwhe_ipv4_vpath(const void* fab) {
  return plat_is_fab_hdr_pwhe_vpath_uni(fab) && vpath_ethertype(fab) == ETHERTYPE_IPV4;
}

boolean_t plat_is_fab_hdr_pwhe_ipv6_vpath(const void* fab) {
  return plat_is_fab_hdr_pwhe_vpath_uni(fab) && vpath_ethertype(fab) == ETHERTYPE_IPV6;
}

std::uint32_t plat_get_fab_hdr_mpls_nhindex_label_word(const void* fab) {
  using hdr = varn_dc3_nph_mpls_nhindex_st;
  return (hdr::out_label_msb::get(fab_as<hdr>(fab)) << 8) | hdr::out_label_lsb::get(fab_as<hdr>(fab));
}

boolean_t plat_get_fab_hdr_ip_uni_gre_multikey(env_t env, const void* fab, std::uint32_t* key) {
  switch (plat_fab_get_nph_length(fab)) {
    case NPH_LENGTH_44:
      *key = varn_ip_uni_gre_ext_nph_dc3_hdr::gre_key_uni_ext2::ext_gre_key::get(
          fab_as<varn_ip_uni_gre_ext_nph_dc3_hdr>(fab));
      return TRUE;
    case NPH_LENGTH_40:
      *key = plat_get_fab_hdr_ip_uni_ext_gre_key(fab);
      return TRUE;
    default:
      break;
  }
  drop_packet(env, DROP_BAD_GRE_MULTIKEY_LEN);
  return FALSE;
}
