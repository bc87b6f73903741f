#include "fab_hdr_write.h"

#include <cstring>

#include "dplane/infra/ps.h"
#include "fab_hdr_access.h"

namespace {

using cf = common_flags_st;
using dc3 = dc3_nph_st;
using ip_uni = varn_dc3_nph_ip_uni_st;
using mpls_uni = varn_dc3_nph_mpls_uni_st;

// The fixed fields as prep writes them: bytes 0..7 and 20..23.
constexpr std::uint8_t FIXED_BYTES_0_7[] = {0xC0, 0x00, 0x40, 0x00, 0x02, 0x00, 0x00, 0x00};
constexpr std::uint8_t FIXED_BYTES_20_23[] = {0x00, 0x00, 0x10, 0x00};
constexpr std::size_t FIXED_WORD_20 = 20;
constexpr std::size_t FLAGS_BYTE = 15;
constexpr std::uint32_t VQI_MASK = 0x7FF;
constexpr std::uint32_t FGID_LOW_MASK = 0xFFF;
constexpr std::uint32_t MGID_LOW_MASK = 0x7FFF;
constexpr std::uint32_t NHINDEX_HASH_SHIFT = 22;
constexpr std::uint32_t IPV4_VERSION = 4;
constexpr std::size_t MPLS_LABEL_BYTES = 4;

std::uint8_t* bytes_of(void* fab) { return static_cast<std::uint8_t*>(fab); }

std::uint32_t bit(std::uint32_t v, unsigned n) { return (v >> n) & 1; }

void update_qos_info(void* fab, std::uint32_t (*change)(std::uint32_t, std::uint32_t), std::uint32_t value) {
  dc3& hdr = fab_as<dc3>(fab);
  dc3::qos_info::set(hdr, change(dc3::qos_info::get(hdr), value));
}

// The chain members and bundle member of a unicast header start empty.
template <class Hdr>
void clear_members(Hdr& hdr) {
  Hdr::lagm::lag_id::set(hdr, 0);
  Hdr::lagm::spare::set(hdr, 0);
  Hdr::nrldim::member_id::set(hdr, 0);
  Hdr::nrldim::reserved::set(hdr, 0);
  Hdr::rldim::member_id::set(hdr, 0);
  Hdr::rldim::reserved::set(hdr, 0);
}

void write_ip_uni_part_1(env_t env, void* fab, std::uint32_t type, std::uint32_t table_id,
                         std::uint32_t uidb_ifhandle) {
  plat_fab_hdr_write_nph_common(env, fab, type, NPH_LENGTH_32);
  ip_uni& hdr = fab_as<ip_uni>(fab);
  ip_uni::vrf::set(hdr, table_id);
  ip_uni::input_if_handle::set(hdr, uidb_ifhandle);
  clear_members(hdr);
}

}  // namespace

void plat_fab_hdr_prep_to_write(env_t env, void* fab) {
  std::uint8_t* b = bytes_of(fab);
  std::memcpy(b, FIXED_BYTES_0_7, sizeof FIXED_BYTES_0_7);
  std::memcpy(b + FIXED_WORD_20, FIXED_BYTES_20_23, sizeof FIXED_BYTES_20_23);
  b[FLAGS_BYTE] = 0;
  dc3& hdr = fab_as<dc3>(fab);
  dc3::dc3_rbh::set(hdr, 0);
  b[DC3_NPH_COMMON_OFFSET] = 0;
  dc3::ptrace::set(hdr, cf::pkt_trace_on::get(*ps_get_common_flags(env)));
}

void plat_fab_hdr_prep_fh(env_t env, void* fab) { plat_fab_hdr_prep_to_write(env, fab); }

void plat_fab_hdr_write_nph_common(env_t env, void* fab, std::uint32_t nph_type, std::uint32_t nph_length) {
  std::uint8_t* b = bytes_of(fab);
  b[DC3_NPH_COMMON_OFFSET] = 0;
  b[DC3_NPH_COMMON_OFFSET + 1] = 0;
  dc3& hdr = fab_as<dc3>(fab);
  dc3::ptrace::set(hdr, cf::pkt_trace_on::get(*ps_get_common_flags(env)));
  dc3::nph_type::set(hdr, nph_type);
  dc3::critical_inject::set(hdr, inject_flags_st::critical_inject::get(*ps_get_inject_flags(env)));
  dc3::nph_length::set(hdr, nph_length);
}

void plat_fab_hdr_write_ipv4_uni_part_1(env_t env, void* fab, std::uint32_t table_id, std::uint32_t uidb_ifhandle) {
  write_ip_uni_part_1(env, fab, NPH_TYPE_IPV4_UNI, table_id, uidb_ifhandle);
}

void plat_fab_hdr_write_ipv6_uni_part_1(env_t env, void* fab, std::uint32_t table_id, std::uint32_t uidb_ifhandle) {
  write_ip_uni_part_1(env, fab, NPH_TYPE_IPV6_UNI, table_id, uidb_ifhandle);
}

void plat_fab_hdr_write_mpls_uni_part_1(env_t env, void* fab, std::uint32_t uidb_ifhandle) {
  plat_fab_hdr_prep_to_write(env, fab);
  plat_fab_hdr_write_mpls_uni_part_1_no_prep(env, fab, uidb_ifhandle);
}

void plat_fab_hdr_write_mpls_uni_part_1_no_prep(env_t env, void* fab, std::uint32_t uidb_ifhandle) {
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_MPLS_UNI, NPH_LENGTH_32);
  mpls_uni& hdr = fab_as<mpls_uni>(fab);
  mpls_uni::pad_zero::set(hdr, 0);
  mpls_uni::input_if_handle::set(hdr, uidb_ifhandle);
  clear_members(hdr);
}

void plat_fab_hdr_write_loopback(env_t env, void* fab, std::uint32_t input_ifh, std::uint32_t parent_ifh,
                                 std::uint32_t pkt_len) {
  using lpbk = varn_dc3_nph_lpbk_uni_st;
  plat_fab_hdr_prep_to_write(env, fab);
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_LOOPBACK, NPH_LENGTH_32);
  lpbk& hdr = fab_as<lpbk>(fab);
  lpbk::pkt_len::set(hdr, pkt_len);
  lpbk::unused::set(hdr, 0);
  lpbk::input_if_handle::set(hdr, input_ifh);
  lpbk::parent_if_handle::set(hdr, parent_ifh);
  lpbk::value_28::set(hdr, 0);
  lpbk::value_30::set(hdr, 0);
}

void plat_fab_hdr_write_qos_info(env_t env, void* fab) {
  const internal_qos_info_st& qos = *ps_get_internal_qos_info(env);
  dc3& hdr = fab_as<dc3>(fab);
  dc3::qos_info::set(hdr, internal_qos_info_st::info16::get(qos));
  dc3::dc3_cos::set(hdr, internal_qos_info_st::fab_cos::get(qos));
}

void plat_fab_hdr_init_internal_qos_egr(env_t env, const void* fab) {
  const dc3& hdr = fab_as<dc3>(fab);
  internal_qos_info_st& qos = *ps_put_def_internal_qos_info(env);
  qos = internal_qos_info_st{};
  internal_qos_info_st::fab_cos::set(qos, dc3::dc3_cos::get(hdr));
  internal_qos_info_st::info16::set(qos, dc3::qos_info::get(hdr));
}

void plat_fab_hdr_write_qos_cos(void* fab, std::uint32_t cos) { update_qos_info(fab, qos_info_un::qos_cos::set, cos); }
void plat_fab_hdr_write_qos_group(void* fab, std::uint32_t group) {
  update_qos_info(fab, qos_info_un::qos_group::set, group);
}
void plat_fab_hdr_write_qos_discard_class(void* fab, std::uint32_t discard_class) {
  update_qos_info(fab, qos_info_un::discard_class::set, discard_class);
}

void plat_fab_hdr_write_ipv4_uni_rldi(void* fab, std::uint32_t member) { plat_set_fab_hdr_ipv4_uni_rldim(fab, member); }
void plat_fab_hdr_write_ipv6_uni_rldi(void* fab, std::uint32_t member) { plat_set_fab_hdr_ipv6_uni_rldim(fab, member); }
void plat_fab_hdr_write_mpls_uni_rldi(void* fab, std::uint32_t member) { plat_set_fab_hdr_mpls_rldim(fab, member); }
void plat_fab_hdr_write_ipv4_uni_nrldi(void* fab, std::uint32_t member) {
  plat_set_fab_hdr_ipv4_uni_nrldim(fab, member);
}
void plat_fab_hdr_write_ipv6_uni_nrldi(void* fab, std::uint32_t member) {
  plat_set_fab_hdr_ipv6_uni_nrldim(fab, member);
}
void plat_fab_hdr_write_mpls_uni_nrldi(void* fab, std::uint32_t member) { plat_set_fab_hdr_mpls_nrldim(fab, member); }
void plat_fab_hdr_write_ipv4_uni_lag(void* fab, std::uint32_t lag_id) { plat_set_fab_hdr_ipv4_uni_lag_id(fab, lag_id); }
void plat_fab_hdr_write_ipv6_uni_lag(void* fab, std::uint32_t lag_id) { plat_set_fab_hdr_ipv6_uni_lag_id(fab, lag_id); }
void plat_fab_hdr_write_mpls_uni_lag(void* fab, std::uint32_t lag_id) { plat_set_fab_hdr_mpls_lag_id(fab, lag_id); }
void plat_fab_hdr_write_l2_uni_lag(void* fab, std::uint32_t lag_id) { plat_set_fab_hdr_l2_uni_lag_id(fab, lag_id); }
void plat_fab_hdr_write_l3_uni_lag(void* fab, std::uint32_t lag_id) {
  l3_uni_common_fields::lagm::lag_id::set_raw(static_cast<std::uint8_t*>(fab), lag_id);
}

void plat_fab_hdr_write_vqi_voq(void* fab, std::uint32_t vqi) {
  dc3& hdr = fab_as<dc3>(fab);
  dc3::dc3_fgid_or_sfp::set(hdr, vqi & VQI_MASK);
  dc3::dc3_sfp_valid::set(hdr, 1);
}

// Bit 18 of the group stands twice: in the fixed part and in the NPH flags.
void plat_fab_hdr_write_mgid_common(void* fab, std::uint32_t mgid) {
  dc3& hdr = fab_as<dc3>(fab);
  dc3::dc3_mgid_14_0::set(hdr, mgid & MGID_LOW_MASK);
  dc3::dc3_mgid_15::set(hdr, bit(mgid, 15));
  dc3::dc3_mgid_16::set(hdr, bit(mgid, 16));
  dc3::dc3_mgid_17::set(hdr, bit(mgid, 17));
  dc3::dc3_mgid_18::set(hdr, bit(mgid, 18));
  dc3::mgid_b18::set(hdr, bit(mgid, 18));
}

void plat_fab_hdr_clear_mgid_common(void* fab) { plat_fab_hdr_write_mgid_common(fab, 0); }

void plat_fab_hdr_write_fgid_common(void* fab, std::uint32_t fgid) {
  using fgid_fields = ext_fgid_fields::ext_fgid;
  dc3& hdr = fab_as<dc3>(fab);
  dc3::dc3_fgid_or_sfp::set(hdr, fgid & FGID_LOW_MASK);
  dc3::dc3_sfp_valid::set(hdr, 0);
  fgid_fields::extended_fgid_b13_12::set(hdr, fgid >> 12);
  fgid_fields::extended_fgid_b23_14::set(hdr, fgid >> 14);
}

void plat_fab_hdr_adjust_pw_imposition(void* fab, std::uint32_t vqi, std::uint32_t hash, boolean_t is_nh_index) {
  plat_fab_hdr_write_vqi_voq(fab, vqi);
  dc3::dc3_rbh::set(fab_as<dc3>(fab), hash);
  if (is_nh_index) {
    using nhindex = varn_dc3_nph_mpls_nhindex_st;
    nhindex::raw_hash::set(fab_as<nhindex>(fab), hash >> NHINDEX_HASH_SHIFT);
  } else {
    mpls_uni::raw_hash::set(fab_as<mpls_uni>(fab), hash);
  }
}

void plat_fab_hdr_write_ip_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex, boolean_t is_v6) {
  using hdr = varn_dc3_nph_ip_nhindex_st;
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_IP_NHINDEX, NPH_LENGTH_32);
  hdr::nhid_hash::fields::nhindex::set(fab_as<hdr>(fab), nhindex);
  hdr::flags::v6::set(fab_as<hdr>(fab), is_v6);
}

void plat_fab_hdr_write_ipv4_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex) {
  plat_fab_hdr_write_ip_uni_nhindex(env, fab, nhindex, FALSE);
}

void plat_fab_hdr_write_ipv6_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex) {
  plat_fab_hdr_write_ip_uni_nhindex(env, fab, nhindex, TRUE);
}

void plat_fab_hdr_write_mpls_uni_nhindex(env_t env, void* fab, std::uint32_t nhindex, std::uint32_t label_word) {
  using hdr = varn_dc3_nph_mpls_nhindex_st;
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_MPLS_NHINDEX, NPH_LENGTH_32);
  hdr::nhindex::set(fab_as<hdr>(fab), nhindex);
  hdr::out_label_msb::set(fab_as<hdr>(fab), label_word >> 8);
  hdr::out_label_lsb::set(fab_as<hdr>(fab), label_word);
}

void plat_fab_hdr_update_ip2mpls_uni(env_t, void* fab) {
  dc3::nph_type::set(fab_as<dc3>(fab), NPH_TYPE_MPLS_UNI);
  mpls_uni::pad_zero::set(fab_as<mpls_uni>(fab), 0);
}

void plat_fab_hdr_update_mpls2ipv4(env_t, void* fab, std::uint32_t vrf) {
  dc3::nph_type::set(fab_as<dc3>(fab), NPH_TYPE_IPV4_UNI);
  ip_uni::vrf::set(fab_as<ip_uni>(fab), vrf);
}

void plat_fab_hdr_update_mpls2ipv6(env_t, void* fab, std::uint32_t vrf) {
  dc3::nph_type::set(fab_as<dc3>(fab), NPH_TYPE_IPV6_UNI);
  ip_uni::vrf::set(fab_as<ip_uni>(fab), vrf);
}

void plat_fab_hdr_write_ipv4_abf(env_t env, void* fab, std::uint32_t nh_addr, std::uint32_t abf_vrf) {
  using hdr = varn_dc3_nph_ipv4_abf_uni_st;
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_IPV4_ABF_UNI, NPH_LENGTH_40);
  hdr& h = fab_as<hdr>(fab);
  hdr::ipv4_nh_addr::set(h, nh_addr);
  hdr::abf_vrf::set(h, abf_vrf);
  hdr::svi_uidb_index::set(h, 0);
  bytes_of(fab)[hdr::service_flags::cgn_bits::cgn_service::first_byte] = 0;
}

void plat_fab_hdr_write_ipv6_abf(env_t env, void* fab, const std::uint8_t* nh_addr, std::uint32_t abf_vrf) {
  using hdr = varn_dc3_nph_ipv6_abf_uni_st;
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_IPV6_ABF_UNI, NPH_LENGTH_52);
  hdr& h = fab_as<hdr>(fab);
  plat_set_fab_hdr_ipv6_abf_uni_next_hop(fab, nh_addr);
  hdr::abf_vrf::set(h, abf_vrf);
  hdr::svi_uidb_index::set(h, 0);
  bytes_of(fab)[hdr::service_flags::cgn_bits::cgn_service::first_byte] = 0;
}

void plat_fab_hdr_write_ipv4_uni_ext(env_t env, void* fab, std::uint32_t gre_key) {
  using hdr = varn_dc3_nph_ip_uni_ext_st;
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_IPV4_UNI_EXT, NPH_LENGTH_40);
  hdr& h = fab_as<hdr>(fab);
  hdr::nph_subtype::set(h, L3_UNI_EXT_MULTIKEY);
  hdr::gre_multikey_st::pad::set(h, 0);
  hdr::gre_multikey_st::key::set(h, gre_key);
}

void plat_fab_hdr_write_mpls_uni_ext_pwhe(env_t env, void* fab, const std::uint8_t* top_label) {
  using hdr = varn_dc3_nph_mpls_uni_ext_st;
  plat_fab_hdr_write_nph_common(env, fab, NPH_TYPE_MPLS_UNI_EXT, NPH_LENGTH_40);
  const bool ipv4_behind = (top_label[MPLS_LABEL_BYTES] >> 4) == IPV4_VERSION;
  std::memset(bytes_of(fab) + hdr::nph_subtype::first_byte, 0, L3_UNI_EXT_BYTES);
  hdr::nph_subtype::set(fab_as<hdr>(fab), ipv4_behind ? L3_UNI_EXT_PWHE_VPATH : L3_UNI_EXT_MULTIKEY);
}

void plat_fab_hdr_write_ts(void* fab, std::uint32_t ts_off) {
  ip_uni::flags::ts::set(fab_as<ip_uni>(fab), 1);
  ip_uni::ts_off::set(fab_as<ip_uni>(fab), ts_off);
}

void plat_fab_hdr_write_mpls_uni_md(void* fab, boolean_t md) { mpls_uni::flags::md::set(fab_as<mpls_uni>(fab), md); }
void plat_fab_hdr_write_mpls_uni_q_pri(void* fab, boolean_t q_pri) {
  mpls_uni::flags::q_pri::set(fab_as<mpls_uni>(fab), q_pri);
}
void plat_fab_hdr_write_ipv4_uni_vrf(void* fab, std::uint32_t vrf) { ip_uni::vrf::set(fab_as<ip_uni>(fab), vrf); }
