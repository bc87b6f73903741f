#include "lag_l3_adj_ing.h"

#include "dplane/infra/hash_bits.h"
#include "dplane/infra/load_balance.h"
#include "dplane/infra/lookup.h"
#include "dplane/infra/ps.h"
#include "dplane/lag/lag_ing.h"
#include "global_counters.h"

namespace {

using adj_st = rxadj_fields_st;

const adj_st& adjacency(env_t env) { return *lookup_result_ID_RX_ADJ_ING__COMM(env); }

// The adjacency's marks: the flag bits of its first two bytes, in word 0.
using adj_word0 = be_bits<0, 0, 32>;
constexpr std::uint32_t ADJ_MARKS =
    be_word_mask<0, adj_st::remote_rack, adj_st::iptunl_adj, adj_st::pwhe, adj_st::cgn_enabled, adj_st::adj_down,
                 adj_st::mgscp_en, adj_st::rx_lag_hash_en, adj_st::rx_lag_adj, adj_st::rx_adj_null0,
                 adj_st::rp_destined, adj_st::rx_punt, adj_st::rx_drop, adj_st::gre_adj, adj_st::gre_ipv6_transport,
                 adj_st::sfi_vxlan>();
constexpr std::uint32_t ADJ_HASH_MARKS = be_word_mask<0, adj_st::mgscp_en, adj_st::rx_lag_hash_en>();
constexpr std::uint32_t ADJ_BUNDLE_MARK = be_word_mask<0, adj_st::rx_lag_adj>();

bool has_own_hash(const adj_st& adj) { return adj_st::mgscp_en::get(adj) || adj_st::rx_lag_hash_en::get(adj); }

// An MGSCP adjacency on a caller that asks for it spreads by one address.
std::uint32_t mgscp_address_hash(env_t env, const adj_st& adj, const std::uint8_t* l3_hdr, std::uint32_t raw_hash) {
  const bool ipv4 = (*ps_get_ing_fwd_thread_bits(env) & LAG_THREAD_IPV4) != 0;
  const auto* v4 = reinterpret_cast<const ipv4_hdr_st*>(l3_hdr);
  const auto* v6 = reinterpret_cast<const ipv6_hdr_st*>(l3_hdr);
  switch (adj_st::lag::rhb_hash_select::get(adj)) {
    case LAG_RHB_DST_ADDR:
      return ipv4 ? hash_lb_ipv4_dst_addr(v4) : hash_lb_ipv6_dst_addr(v6);
    case LAG_RHB_SRC_ADDR:
      return ipv4 ? hash_lb_ipv4_src_addr(v4) : hash_lb_ipv6_src_addr(v6);
    default:
      return hash_get_lag_bits(raw_hash);
  }
}

}  // namespace

boolean_t lag_l3_adj_ing_enabled(env_t env) { return adj_st::rx_lag_adj::get(adjacency(env)); }

boolean_t lag_only_l3_adj_ing_enabled(env_t env) {
  return (adj_word0::get(adjacency(env)) & ADJ_MARKS & ~ADJ_HASH_MARKS) == ADJ_BUNDLE_MARK;
}

func_rc_e lag_process_l3_adj_ing(env_t env, const std::uint8_t* l3_hdr, void* fab, std::uint32_t raw_hash) {
  return lag_process_l3_adj_ing_common(env, l3_hdr, fab, raw_hash, adj_st::rx::lag_id::get(adjacency(env)), TRUE);
}

func_rc_e lag_process_l3_adj_ing_common(env_t env, const std::uint8_t* l3_hdr, void* fab, std::uint32_t raw_hash,
                                        std::uint32_t lag_id, boolean_t check) {
  if (check && has_own_hash(adjacency(env))) return lag_process_l3_adj_ing_slow(env, l3_hdr, fab, raw_hash, lag_id);
  return lag_process_l3_ing(env, fab, lag_id, raw_hash);
}

func_rc_e lag_process_l3_adj_ing_slow(env_t env, const std::uint8_t* l3_hdr, void* fab, std::uint32_t raw_hash,
                                      std::uint32_t lag_id) {
  const adj_st& adj = adjacency(env);
  std::uint32_t lag_hash = 0;
  if (!adj_st::mgscp_en::get(adj)) {
    lag_hash = adj_st::lag::lag_hash::get(adj);  // the control plane pins the flow
  } else if (!(*ps_get_ing_fwd_thread_bits(env) & LAG_THREAD_MGSCP_ADDR_HASH)) {
    lag_hash = hash_get_lag_bits(raw_hash);
    lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, CNT_LAG_MGSCP_RAW_HASH);
  } else {
    lag_hash = mgscp_address_hash(env, adj, l3_hdr, raw_hash);
  }
  return lag_l3_ing(env, fab, lag_id, lag_hash);
}
