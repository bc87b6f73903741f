// Reading the fabric header: the fields by name, the kind tests, the header
// lengths and the common bytes. Code outside the header formats uses these,
// never the bytes. `fab` is the start of the header; the env forms take it
// from pkt_start.
#pragma once

#include <cstdint>

#include "dplane/infra/ps.h"
#include "fab_hdr.h"

template <class R>
const R& fab_as(const void* fab) {
  return *static_cast<const R*>(fab);
}
template <class R>
R& fab_as(void* fab) {
  return *static_cast<R*>(fab);
}
inline const void* plat_fab_hdr_of(env_t env) { return *ps_get_pkt_start(env); }

#define FAB_FIELD(kind, name, record, field)                                     \
  inline std::uint32_t plat_get_fab_hdr_##kind##_##name(const void* fab) {       \
    return record::field::get(fab_as<record>(fab));                              \
  }                                                                              \
  inline void plat_set_fab_hdr_##kind##_##name(void* fab, std::uint32_t value) { \
    record::field::set(fab_as<record>(fab), value);                              \
  }
#include "fab_hdr_fields.def"
#undef FAB_FIELD

// The fields that read otherwise than they stand.
// An odd MPLS input interface handle reads as 0.
inline std::uint32_t plat_get_fab_hdr_mpls_input_if_handle(const void* fab) {
  const std::uint32_t handle = varn_dc3_nph_mpls_uni_st::input_if_handle::get(fab_as<varn_dc3_nph_mpls_uni_st>(fab));
  return (handle & 1) ? 0 : handle;
}
inline void plat_set_fab_hdr_mpls_input_if_handle(void* fab, std::uint32_t value) {
  varn_dc3_nph_mpls_uni_st::input_if_handle::set(fab_as<varn_dc3_nph_mpls_uni_st>(fab), value);
}
// The bridge domain of an L2 unicast header: in the fixed part for type 7,
// behind the 32 bytes for type 37.
std::uint32_t plat_get_fab_hdr_l2_uni_bd_id(const void* fab);
void plat_set_fab_hdr_l2_uni_bd_id(void* fab, std::uint32_t bd_id);
inline const std::uint8_t* plat_get_fab_hdr_ipv6_abf_uni_next_hop(const void* fab) {
  return varn_dc3_nph_ipv6_abf_uni_st::ipv6_nh_addr::data(fab_as<varn_dc3_nph_ipv6_abf_uni_st>(fab));
}
void plat_set_fab_hdr_ipv6_abf_uni_next_hop(void* fab, const std::uint8_t* addr);

// The common bytes.
inline std::uint32_t plat_fab_get_nph_type(const void* fab) {
  return dc3_nph_st::nph_type::get(fab_as<dc3_nph_st>(fab));
}
inline std::uint32_t plat_fab_get_nph_length(const void* fab) {
  return dc3_nph_st::nph_length::get(fab_as<dc3_nph_st>(fab));
}
inline boolean_t plat_get_common_ptrace_fromfab(const void* fab) {
  return dc3_nph_st::ptrace::get(fab_as<dc3_nph_st>(fab));
}
inline boolean_t plat_get_common_critical_inject_fromfab(const void* fab) {
  return dc3_nph_st::critical_inject::get(fab_as<dc3_nph_st>(fab));
}
inline boolean_t plat_get_common_critical_inject(env_t env) {
  return plat_get_common_critical_inject_fromfab(plat_fab_hdr_of(env));
}
// A timing timestamp travels with a unicast packet: flags.ts.
inline boolean_t plat_get_common_timestamp_fromfab(const void* fab) {
  return varn_dc3_nph_ip_uni_st::flags::ts::get(fab_as<varn_dc3_nph_ip_uni_st>(fab));
}
inline boolean_t plat_get_common_timestamp(env_t env) {
  return plat_get_common_timestamp_fromfab(plat_fab_hdr_of(env));
}

// Kind tests.
inline boolean_t plat_fab_nph_is_l2flood_mc(const void* fab) {
  const std::uint32_t type = plat_fab_get_nph_type(fab);
  return type == NPH_TYPE_L2_FLD || type == NPH_TYPE_L2M4;
}
inline boolean_t plat_fab_is_nph_type_ip_nhindex(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_IP_NHINDEX;
}
inline boolean_t plat_fab_is_nph_type_mpls_nhindex(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_MPLS_NHINDEX;
}
inline boolean_t plat_is_fab_hdr_ip_uni_ext(const void* fab) {
  const std::uint32_t type = plat_fab_get_nph_type(fab);
  return type == NPH_TYPE_IPV4_UNI_EXT || type == NPH_TYPE_IPV6_UNI_EXT;
}
inline boolean_t plat_is_fab_hdr_ipv4_abf_uni(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_IPV4_ABF_UNI;
}
inline boolean_t plat_is_fab_hdr_ipv6_abf_uni(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_IPV6_ABF_UNI;
}
inline boolean_t plat_is_fab_hdr_ipv4_pwhe_uni(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_IPV4_UNI_EXT &&
         plat_get_fab_hdr_ip_uni_ext_nph_subtype(fab) == L3_UNI_EXT_PWHE_VPATH;
}
inline boolean_t plat_is_fab_hdr_ipv6_pwhe_uni(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_IPV6_UNI_EXT;
}
inline boolean_t plat_is_fab_hdr_mpls_pwhe_uni(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_MPLS_UNI_EXT;
}
inline boolean_t plat_is_fab_hdr_inj_pwhe_uni(const void* fab) {
  return plat_fab_get_nph_type(fab) == NPH_TYPE_PUNT_INJECT;
}
inline boolean_t plat_is_fab_hdr_pwhe_uni(const void* fab) {
  return plat_is_fab_hdr_ipv4_pwhe_uni(fab) || plat_is_fab_hdr_mpls_pwhe_uni(fab) || plat_is_fab_hdr_ipv6_pwhe_uni(fab);
}
inline boolean_t plat_is_fab_hdr_mn(const void* fab) {
  return plat_get_fab_hdr_mn_ipc_type(fab) == MAC_NOTIFY_IPC_TYPE;
}
boolean_t plat_is_fab_hdr_pwhe_vpath_uni(const void* fab);
boolean_t plat_is_fab_hdr_pwhe_ipv4_vpath(const void* fab);
boolean_t plat_is_fab_hdr_pwhe_ipv6_vpath(const void* fab);
// A multicast header that the egress handles on its special path.
inline boolean_t plat_get_fab_hdr_special_ipmc_flag(const void* fab) {
  return plat_get_fab_hdr_ipmc_cond_decap(fab) || plat_get_fab_hdr_ipmc_encap(fab) || plat_get_fab_hdr_ipmc_p2mp(fab);
}

// Next-hop index headers.
inline std::uint32_t plat_get_fab_hdr_ipv4_nhindex(const void* fab) {
  return varn_dc3_nph_ip_nhindex_st::nhid_hash::fields::nhindex::get(fab_as<varn_dc3_nph_ip_nhindex_st>(fab));
}
inline std::uint32_t plat_get_fab_hdr_ipv6_nhindex(const void* fab) { return plat_get_fab_hdr_ipv4_nhindex(fab); }
inline boolean_t plat_is_fab_hdr_ipv6_nhindex(const void* fab) {
  return varn_dc3_nph_ip_nhindex_st::flags::v6::get(fab_as<varn_dc3_nph_ip_nhindex_st>(fab));
}
inline std::uint32_t plat_get_fab_hdr_mpls_nhindex(const void* fab) {
  return varn_dc3_nph_mpls_nhindex_st::nhindex::get(fab_as<varn_dc3_nph_mpls_nhindex_st>(fab));
}
// The 24-bit label word: the label in its top 20 bits, a valid flag in its lowest.
std::uint32_t plat_get_fab_hdr_mpls_nhindex_label_word(const void* fab);
inline std::uint32_t plat_get_fab_hdr_mpls_nhindex_label(const void* fab) {
  return plat_get_fab_hdr_mpls_nhindex_label_word(fab) >> 4;
}
inline boolean_t plat_get_fab_hdr_mpls_nhindex_label_valid(const void* fab) {
  return plat_get_fab_hdr_mpls_nhindex_label_word(fab) & 1;
}
// The GRE key of a type 32 or 34 header, by its length; FALSE after
// dropping a header of another length.
boolean_t plat_get_fab_hdr_ip_uni_gre_multikey(env_t env, const void* fab, std::uint32_t* key);

// Members picked at ingress, as the egress chain reads them.
inline std::uint32_t plat_get_ipv4_uni_rldi_egr(const void* fab) { return plat_get_fab_hdr_ipv4_uni_rldim(fab); }
inline std::uint32_t plat_get_ipv6_uni_rldi_egr(const void* fab) { return plat_get_fab_hdr_ipv6_uni_rldim(fab); }
inline std::uint32_t plat_get_mpls_uni_rldi_egr(const void* fab) { return plat_get_fab_hdr_mpls_rldim(fab); }
inline std::uint32_t plat_get_ipv4_uni_nrldi_egr(const void* fab) { return plat_get_fab_hdr_ipv4_uni_nrldim(fab); }
inline std::uint32_t plat_get_ipv6_uni_nrldi_egr(const void* fab) { return plat_get_fab_hdr_ipv6_uni_nrldim(fab); }
inline std::uint32_t plat_get_mpls_uni_nrldi_egr(const void* fab) { return plat_get_fab_hdr_mpls_nrldim(fab); }
inline std::uint32_t plat_get_ipv4_uni_lag_egr(const void* fab) { return plat_get_fab_hdr_ipv4_uni_lag_id(fab); }
inline std::uint32_t plat_get_ipv6_uni_lag_egr(const void* fab) { return plat_get_fab_hdr_ipv6_uni_lag_id(fab); }
inline std::uint32_t plat_get_mpls_uni_lag_egr(const void* fab) { return plat_get_fab_hdr_mpls_lag_id(fab); }
inline std::uint32_t plat_get_l2_uni_lag_egr(const void* fab) { return plat_get_fab_hdr_l2_uni_lag_id(fab); }
// The bundle member of any L3 unicast form, which all hold it in one place.
inline std::uint32_t plat_get_l3_uni_lag_egr(const void* fab) {
  return l3_uni_common_fields::lagm::lag_id::get_raw(static_cast<const std::uint8_t*>(fab));
}
inline std::uint32_t plat_get_pwhe_encap_uni_lag_egr(const void* fab) {
  return plat_get_fab_hdr_ip_uni_ext_pwhe_lag_id(fab);
}
inline std::uint32_t plat_get_ipv4_uni_hash_egr(const void* fab) { return plat_get_fab_hdr_ipv4_uni_raw_hash(fab); }
inline std::uint32_t plat_get_ipv6_uni_hash_egr(const void* fab) { return plat_get_fab_hdr_ipv6_uni_raw_hash(fab); }
inline std::uint32_t plat_get_mpls_uni_hash_egr(const void* fab) { return plat_get_fab_hdr_mpls_raw_hash(fab); }
inline std::uint32_t plat_get_l2_flood_hash_egr(const void* fab) { return plat_get_fab_hdr_l2_fld_raw_hash(fab); }

// Header lengths: fixed by kind, or from nph_length.
#define FAB_LEN_FIXED(kind, bytes)                                               \
  inline constexpr std::uint32_t plat_get_fab_hdr_len_##kind() { return bytes; } \
  inline std::uint32_t plat_get_fab_rx_##kind##_len(env_t env) {                 \
    return *ps_get_curr_pkt_len(env) - plat_get_fab_hdr_len_##kind();            \
  }
#define FAB_LEN_CODED(kind)                                                               \
  inline std::uint32_t plat_get_fab_hdr_len_##kind(const void* fab) {                     \
    return nph_length_bytes(plat_fab_get_nph_length(fab));                                \
  }                                                                                       \
  inline std::uint32_t plat_get_fab_rx_##kind##_len(env_t env) {                          \
    return *ps_get_curr_pkt_len(env) - plat_get_fab_hdr_len_##kind(plat_fab_hdr_of(env)); \
  }
FAB_LEN_FIXED(ipv4_uni, 32)
FAB_LEN_FIXED(ipv6_uni, 32)
FAB_LEN_FIXED(mpls, 32)
FAB_LEN_FIXED(ip_nhindex, 32)
FAB_LEN_FIXED(mpls_nhindex, 32)
FAB_LEN_FIXED(loopback, 32)
FAB_LEN_FIXED(ipv4_abf_uni, 40)
FAB_LEN_FIXED(mpls_pwhe_uni, 40)
FAB_LEN_FIXED(ipv6_abf_uni, 52)
FAB_LEN_FIXED(ip_uni_gre_ext, 44)
FAB_LEN_FIXED(mofrr, 44)
FAB_LEN_FIXED(vpath, PWHE_VPATH_HDR_BYTES)
FAB_LEN_FIXED(l2_mcast_non_adv, 36)
FAB_LEN_FIXED(mn, 50)
FAB_LEN_CODED(l2_uni)
FAB_LEN_CODED(l2_fld)
FAB_LEN_CODED(l2_mcast)
FAB_LEN_CODED(ipv4_mc)
FAB_LEN_CODED(ipv6_mc)
FAB_LEN_CODED(ipmc)
FAB_LEN_CODED(ip_uni_ext)
#undef FAB_LEN_FIXED
#undef FAB_LEN_CODED
inline constexpr std::uint32_t plat_get_fab_hdr_len_l3_uni_ext() { return L3_UNI_EXT_BYTES; }
inline constexpr std::uint32_t plat_get_fab_hdr_len_ipv6_abf_uni_ext() { return 20; }
inline constexpr std::uint32_t plat_get_fab_hdr_mn_padding_len() { return 28; }
inline constexpr std::uint32_t plat_get_fab_hdr_xmit_len(std::uint32_t len) { return len; }
