#include "lag_egr_drop.h"

#include "dplane/infra/drop_paths.h"

namespace {

using egress_drop = void (*)(env_t env, boolean_t uidb_completed, nfpkt_drop_reason_e drop_reason,
                             std::uint32_t drop_ctr_idx);

// A sampled packet records no reason of its own: the member choice has none
// among the flow-export reasons.
template <egress_drop Drop>
void with_flow_export(env_t env, std::uint32_t drop_counter_index) {
  Drop(env, FALSE, NF_DROP_REASON_UNKNOWN, drop_counter_index);
}

void plain_drop(env_t env, std::uint32_t drop_counter_index) { drop_packet(env, drop_counter_index); }

}  // namespace

#define LAG_EGR_DROP_KIND(kind, drop)                                             \
  func_rc_e l3_egr_lag_drop_##kind(env_t env, std::uint32_t drop_counter_index) { \
    drop(env, drop_counter_index);                                                \
    return RC_PKT_DROP;                                                           \
  }
#include "lag_egr_drop_kinds.def"
#undef LAG_EGR_DROP_KIND
