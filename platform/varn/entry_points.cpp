#include "entry_points.h"

#include "dplane/infra/drop.h"
#include "platform/shared/unbuilt_handlers.h"
#include "rx_exceptions.h"

ing_entry_point_t ing_ep;
nph_entry_point_t nph_ep;

namespace {
// Entry points of the L2 paths, which take no global-feature argument.
void vpws_ing_ep(env_t env, boolean_t) { vpws_ing(env); }
void vpls_ing_ep(env_t env, boolean_t) { vpls_ing(env); }
void l2_ctrl_ing_ep(env_t env, boolean_t) { l2_ctrl_ing(env); }
void handle_non_wire_vector_ep(env_t env, boolean_t) { handle_non_wire_vector(env); }
}  // namespace

const ing_handler_init_t ing_handlers[ING_HANDLER_COUNT] = {
    {13, handle_non_wire_vector_ep},
    {0, ipv4_ing_perf},
    {1, ipm4_ing_perf},
    {2, ipv6_ing_perf},
    {3, ipm6_ing_perf},
    {4, mpls_ing_perf},
    {5, vpws_ing_ep},
    {6, vpls_ing_ep},
    {12, l2_ctrl_ing_ep},
    {7, handle_ipv4_exception},
    {8, handle_ipv6_exception},
    {9, handle_mpls_exception},
    {10, handle_vpws_exception},
    {11, handle_vpls_exception},
};

const nph_handler_init_t nph_handlers[NPH_HANDLER_COUNT] = {
    {0, drop_packet_bad_nph_shim},
    {35, ip_nhindex_egr},
    {32, ipv4_egr},
    {19, ipv4_egr},
    {1, ipv4_egr},
    {34, ipv6_egr},
    {23, ipv6_egr},
    {3, ipv6_egr},
    {37, vpls_egr_uni},
    {7, vpls_egr_uni},
    {6, vpws_egr},
    {5, mpls_egr},
    {33, mpls_egr},
    {8, vpls_egr_fld},
    {36, mpls_nhindex_egr},
    {2, ipm4_egr},
    {4, ipm6_egr},
    {10, vpls_egr_mn},
    {17, handle_efm_egr},
    {9, l2m4_egr},
    {25, l2m6_egr},
    {12, vpws_egr_xc_ac_ip},
    {21, l2tpv2_disp_egr_xc_ac_vpdn},
    {15, plat_process_inject_shim},
    {16, mofrr_frr_msg_rx},
    {63, plat_process_inject_shim},
};

namespace {
template <class F, std::size_t N>
void store_entries(F (&table)[N], const F (&entries)[N]) {
  for (std::size_t i = 0; i < N; ++i) std::atomic_ref(table[i]).store(entries[i], std::memory_order_relaxed);
}
}  // namespace

// Every thread rebuilds the tables with the same contents at start, so a
// thread that starts late writes what is already there, entry by entry.
void init_ing_entry_points(env_t) {
  ing_entry_point_t local;
  for (auto& e : local.entry_point) e = ing_handlers[0].handler;
  for (const auto& row : ing_handlers) local.entry_point[row.vector] = row.handler;
  store_entries(ing_ep.entry_point, local.entry_point);
}

void init_nph_entry_points(env_t) {
  nph_entry_point_t local{};
  for (auto& e : local.entry_point) e = nph_handlers[0].handler;
  for (const auto& row : nph_handlers) local.entry_point[nph_type_to_ep_table_index(row.nph_type)] = row.handler;
  store_entries(nph_ep.entry_point, local.entry_point);
}

void drop_packet_bad_nph_shim(env_t env) { drop_packet(env, DROP_UNKNOWN_NPH_TYPE); }

void plat_process_inject_shim(env_t env) { plat_process_inject(env, TRUE); }
