#include "lag_egr.h"

#include "dplane/infra/hash_bits.h"
#include "dplane/infra/lookup.h"
#include "dplane/infra/ps.h"
#include "dplane/lag/lag_hash.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/inject_hdr_access.h"

namespace {

using info = lag_tbl_info_fields_st;
using member = lag_mem_info_fields_st;
using egr_rec = uidb_l3_egr_fields_st;
using cf = common_flags_st;

const egr_rec& egress_record(env_t env) { return *lookup_result_ID_UIDB_L3_EGR__COMM(env); }

const member& member_by_number(env_t env, const info& bundle, std::uint32_t number) {
  lookup_request_ID_LAG_EGR_NO_MOD(env, info::global_mem_base_ptr::get(bundle) + number);
  lookup_wait_ID_LAG_EGR_NO_MOD(env);
  return *lookup_result_ID_LAG_EGR_NO_MOD(env);
}

const member& member_by_hash(env_t env, const info& bundle, std::uint32_t lag_hash) {
  lookup_request_ID_LAG_EGR(env, info::global_mem_base_ptr::get(bundle), lag_selection_hash(bundle, lag_hash),
                            info::num_members_global::get(bundle));
  lookup_wait_ID_LAG_EGR(env);
  return *lookup_result_ID_LAG_EGR(env);
}

bool has(std::uint32_t bits, std::uint32_t wanted) { return (bits & wanted) == wanted; }

// Whether the member comes from a fresh hash rather than from a member number.
bool hash_form(env_t env, std::uint32_t thread_bits) {
  if (has(thread_bits, LAG_EGR_ALWAYS_HASH | LAG_EGR_HASH)) return true;
  if (common_flags2_st::gre_over_mpls::get(*ps_get_common_flags2(env))) return true;
  if (!has(thread_bits, LAG_EGR_HASH)) return false;
  using use_lag_sel = multipass_param_t::u::gre_encap::egr::flags::use_lag_sel;
  const bool member_kept =
      egr_rec::bundle_lb_hash_en::get(egress_record(env)) || use_lag_sel::get(*ps_get_multipass_param(env));
  return !(has(thread_bits, LAG_EGR_HASH_OPTIONAL) && member_kept);
}

struct lag_choice {
  std::uint32_t lag_sel;
  boolean_t use_hash;
};

lag_choice member_form(env_t env, std::uint32_t thread_bits) {
  const common_flags_st& flags = *ps_get_common_flags(env);
  lag_choice c{plat_get_l3_uni_lag_egr(plat_fab_hdr_of(env)), FALSE};
  if (!has(thread_bits, LAG_EGR_HEADER_MEMBER_ONLY)) {
    if (has(thread_bits, LAG_EGR_RAW_HASH_INJECTED) && cf::use_ps_raw_hash::get(flags)) {
      c.use_hash = inject_flags_st::injected_pkt::get(*ps_get_inject_flags(env));
    } else if (has(thread_bits, LAG_EGR_INJECT_MEMBER)) {
      c.lag_sel = plat_get_inject_hdr_lag_id(env);
    }
  }
  if (cf::ing_te_nh_bkup_egr_sr_te_thread::get(flags)) c.lag_sel = lagm_st::lag_id::get(*ps_get_lagm(env));
  return c;
}

boolean_t egress_bundle(env_t env) { return egr_rec::bundle_int::get(egress_record(env)); }

}  // namespace

lag_egr_result_e base_egr_lag_process(env_t env, std::uint32_t lag_id, std::uint32_t lag_sel, boolean_t use_hash,
                                      std::uint32_t* drop_np_counter) {
  lookup_request_ID_LAG_INFO_EGR(env, lag_id);
  lookup_wait_ID_LAG_INFO_EGR(env);
  const info& bundle = *lookup_result_ID_LAG_INFO_EGR(env);
  if (!info::valid::get(bundle)) {
    *drop_np_counter = DROP_LAG_EGR_INVALID;
    return LAG_EGR_NO_MEMBER;
  }
  const member& m = use_hash ? member_by_hash(env, bundle, lag_sel) : member_by_number(env, bundle, lag_sel);
  if (member::bf::np_local::get(m)) {
    *ps_put_mod_egr_port_id(env) = member::np_port_id::get(m);
    return LAG_EGR_PORT_SET;
  }
  *drop_np_counter = member::bf::valid::get(m) ? DROP_LAG_MEMBER_NOT_LOCAL : DROP_LAG_EGR_INVALID;
  return LAG_EGR_NO_MEMBER;
}

lag_egr_result_e l3_egr_lag_process(env_t env, std::uint32_t thread_bits, std::uint32_t* drop_np_counter) {
  const lag_choice c = hash_form(env, thread_bits) ? lag_choice{hash_get_lag_bits(*ps_get_l3_raw_hash(env)), TRUE}
                                                   : member_form(env, thread_bits);
  const std::uint32_t lag_id = egr_rec::out_if::lag_id::get(egress_record(env));
  return base_egr_lag_process(env, lag_id, c.lag_sel, c.use_hash, drop_np_counter);
}

boolean_t ipv4_egr_lag_enabled(env_t env) { return egress_bundle(env); }
boolean_t ipv6_egr_lag_enabled(env_t env) { return egress_bundle(env); }
boolean_t mpls_egr_lag_enabled(env_t env) { return egress_bundle(env); }
