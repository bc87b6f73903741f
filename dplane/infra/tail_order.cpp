// The two templates of tail processing, one for ingress paths and one for
// egress paths, and the form of each path (tail_paths.def). A step runs when
// its function is owed and the path is of a kind the step's form serves;
// the few functions with several forms have one step per form.
#include "platform/shared/tail_functions.h"
#include "ps.h"
#include "tail_proc.h"

namespace {

using cf = common_flags_st;

enum tail_kind_e : std::uint32_t {
  TAIL_KIND_IPV4 = 1u << 0,
  TAIL_KIND_IPV6 = 1u << 1,
  TAIL_KIND_MPLS = 1u << 2,
  TAIL_KIND_MVPN = 1u << 3,
  TAIL_KIND_L2 = 1u << 4,
  TAIL_KIND_INJECT = 1u << 5,
};
constexpr std::uint32_t ALL_KINDS =
    TAIL_KIND_IPV4 | TAIL_KIND_IPV6 | TAIL_KIND_MPLS | TAIL_KIND_MVPN | TAIL_KIND_L2 | TAIL_KIND_INJECT;

struct tail_step_st {
  tail_proc_func_e func;
  std::uint32_t kinds;
  void (*run)(env_t env, std::uint32_t funcs);
};

constexpr tail_step_st ING_ORDER[] = {
    {tail_proc_span, ALL_KINDS, span_process_ing},
    {tail_proc_acl_log_punt, ALL_KINDS & ~TAIL_KIND_L2, punt_process_acl_ing_L3},
    {tail_proc_netflow, ALL_KINDS, process_netflow},
    {tail_proc_li_rep__ipv4, ALL_KINDS, li_replication__ipv4},
    {tail_proc_li_rep__l3, TAIL_KIND_IPV4 | TAIL_KIND_MVPN, li_replication_ing_l3__ipv4},
    {tail_proc_li_rep__ipv6, ALL_KINDS, li_replication__ipv6},
    {tail_proc_li_rep__l3, TAIL_KIND_IPV6, li_replication_ing_l3__ipv6},
    {tail_proc_li_rep__mpls, ALL_KINDS, li_replication__mpls},
    {tail_proc_li_rep__mpls_v6, ALL_KINDS, li_replication__mpls_v6},
    {tail_proc_li_rep__l3, TAIL_KIND_MPLS, li_replication_ing_l3__mpls},
    {tail_proc_l2_learn, ALL_KINDS, process_l2_learn},
    {tail_proc_l2_punt_ms, ALL_KINDS, punt_mac_security_ing},
    {tail_proc_l2snoop_punt, ALL_KINDS, punt_l2snoop_ing_punt_and_fwd},
    {tail_proc_eoam_cfm_punt, ALL_KINDS, tail_process_punt_cfm_pkt_ing},
    {tail_proc_ipmc_do_all_fwd, ALL_KINDS, punt_process_do_all_but_fwd_ing},
    {tail_proc_mvpn_pim_all, ALL_KINDS, punt_mvpn_pim_all},
    {tail_proc_mpls_ing_p2mp, ALL_KINDS, punt_process_mpls_ing_oam},
    {tail_proc_nsh, ALL_KINDS, nsh_tail_processing},
    {tail_proc_li_rep__l2, ALL_KINDS, li_replication__l2},
    {tail_proc_acl_log_punt, TAIL_KIND_L2, punt_process_acl_ing_L2},
    {tail_proc_netflow_mapt, ALL_KINDS, process_nf_mapt_learn},
    {tail_proc_multipass, ALL_KINDS, multipass_ing_tail_proc},
};

constexpr tail_step_st EGR_ORDER[] = {
    {tail_proc_span, ALL_KINDS, span_process_egr},
    {tail_proc_acl_log_punt, ALL_KINDS, punt_process_acl_egr_L3},
    {tail_proc_netflow, ALL_KINDS, process_netflow},
    {tail_proc_l2_learn, ALL_KINDS, process_send_mac_notify_egr},
    {tail_proc_li_rep__l2, ALL_KINDS, li_replication__l2},
    {tail_proc_eoam_cfm_punt, ALL_KINDS, tail_process_punt_cfm_pkt_egr},
    {tail_proc_li_rep__ipv4, ALL_KINDS, li_replication__ipv4},
    {tail_proc_li_rep__l3, TAIL_KIND_IPV4 | TAIL_KIND_MVPN, li_replication_egr_l3__ipv4},
    {tail_proc_li_rep__l3, TAIL_KIND_INJECT, l3_inj_egr_li_process},
    {tail_proc_li_rep__ipv6, ALL_KINDS, li_replication__ipv6},
    {tail_proc_li_rep__l3, TAIL_KIND_IPV6, li_replication_egr_l3__ipv6},
    {tail_proc_ipmc_do_all_fwd, ALL_KINDS, punt_process_do_all_but_fwd_egr},
    {tail_proc_ipmc_virtual_intf, ALL_KINDS, ipm4_egr_process_virtual_intf},
    {tail_proc_multipass, ALL_KINDS & ~TAIL_KIND_INJECT, multipass_egr_tail_proc},
    {tail_proc_multipass, TAIL_KIND_INJECT, multipass_egr_tail_proc_inject},
};

template <std::size_t N>
void do_tail_processing(env_t env, const tail_step_st (&order)[N], std::uint32_t kind) {
  std::uint32_t funcs = *ps_get_tail_proc_enables(env);
  cf::in_tail_processing::set(*ps_put_mod_common_flags(env), 1);
  for (const tail_step_st& step : order) {
    if (!(funcs & step.func) || !(step.kinds & kind)) continue;
    funcs &= ~static_cast<std::uint32_t>(step.func);
    do_tail_proc_common(env, funcs);
    step.run(env, funcs);
  }
  tail_processing_epilog(env, funcs);
}

}  // namespace

#define TAIL_PATH(path, side, kind, meaning)                                                 \
  void tail_processing_##path(env_t env) {                                                   \
    if (cf::tail_processing::get(*ps_get_common_flags(env))) do_tail_processing_##path(env); \
  }                                                                                          \
  void do_tail_processing_##path(env_t env) { do_tail_processing(env, side##_ORDER, TAIL_KIND_##kind); }
#include "tail_paths.def"
#undef TAIL_PATH
