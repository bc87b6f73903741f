#include "fab_hdr_backup.h"

#include <cstring>

#include "dist_hdr.h"
#include "dplane/infra/ps.h"
#include "fab_hdr_access.h"
#include "fab_hdr_write.h"

namespace {

using ip_uni = varn_dc3_nph_ip_uni_st;
using mpls_uni = varn_dc3_nph_mpls_uni_st;

constexpr std::size_t MEMBER_NRLDIM = 28;
constexpr std::size_t MEMBER_RLDIM = 30;
constexpr std::size_t MPLS_FLAGS_BYTE = 15;

std::uint32_t l3_type_of(std::uint32_t nph_type) {
  switch (nph_type) {
    case NPH_TYPE_IPV4_UNI:
      return bufhdr_l3_type_ipv4_e;
    case NPH_TYPE_IPV6_UNI:
      return bufhdr_l3_type_ipv6_e;
    case NPH_TYPE_MPLS_UNI:
      return bufhdr_l3_type_mpls_e;
    default:
      return bufhdr_l3_type_other_e;
  }
}

}  // namespace

void plat_store_l3_ucast_nph(const void* fab, l3_ucst_nph_bkup_st* bkup) {
  const auto* b = static_cast<const std::uint8_t*>(fab);
  const std::uint32_t type = plat_fab_get_nph_type(fab);
  bkup->pkt_type = static_cast<std::uint8_t>(type);
  bkup->input_ifhandle = ip_uni::input_if_handle::get(fab_as<ip_uni>(fab));
  bkup->nrldim = b[MEMBER_NRLDIM];
  bkup->rldim = b[MEMBER_RLDIM];
  bkup->misc = type == NPH_TYPE_MPLS_UNI ? b[MPLS_FLAGS_BYTE] : ip_uni::vrf::get(fab_as<ip_uni>(fab));
}

std::uint32_t plat_restore_l3_ucast_nph(env_t env, const l3_ucst_nph_bkup_st* bkup, std::uint8_t* l3_hdr) {
  std::uint8_t* fab = l3_hdr - DC3_NPH_BYTES;
  std::memset(fab, 0, DC3_NPH_BYTES);
  plat_fab_hdr_prep_to_write(env, fab);
  plat_fab_hdr_write_nph_common(env, fab, bkup->pkt_type, NPH_LENGTH_32);
  ip_uni& hdr = fab_as<ip_uni>(fab);
  ip_uni::input_if_handle::set(hdr, bkup->input_ifhandle);
  fab[MEMBER_NRLDIM] = bkup->nrldim;
  fab[MEMBER_RLDIM] = bkup->rldim;
  if (bkup->pkt_type == NPH_TYPE_MPLS_UNI) {
    fab[MPLS_FLAGS_BYTE] = static_cast<std::uint8_t>(bkup->misc.get());
  } else {
    ip_uni::vrf::set(hdr, bkup->misc);
  }
  dc3_nph_st::dc3_cos::set(fab_as<dc3_nph_st>(fab), internal_qos_info_st::fab_cos::get(*ps_get_internal_qos_info(env)));
  *ps_put_mod_pkt_start(env) = fab;
  return l3_type_of(bkup->pkt_type);
}
