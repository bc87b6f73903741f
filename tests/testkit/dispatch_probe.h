// A probe in the dispatch tables: it takes the entry of one ingress vector
// or fabric header type, records that it ran, then runs the test's body,
// which ends the packet. Dispatch tests assert which row a packet reached;
// other tests play a path's handler with a body of their own.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <mutex>
#include <ostream>
#include <utility>
#include <vector>

#include "dplane/infra/drop.h"
#include "npu/zephra/pkt_rx.h"
#include "platform/varn/entry_points.h"
#include "testkit/npu_harness.h"

namespace testkit {

enum class dispatch_table { ingress, fabric };

// One run of a probe; the global-feature argument is ingress only.
struct probe_call {
  dispatch_table table;
  std::uint32_t row;
  boolean_t global_feature_enabled;
  bool operator==(const probe_call&) const = default;
};

inline void PrintTo(const probe_call& c, std::ostream* os) {
  *os << (c.table == dispatch_table::ingress ? "vector " : "fabric header type ") << c.row << ", global feature "
      << c.global_feature_enabled;
}

using probe_body = std::function<void(env_t)>;

namespace detail {
struct probe_state {
  std::mutex lock;
  std::vector<probe_call> calls;
  probe_body bodies[2] = {drop_packet_no_counter, drop_packet_no_counter};  // by dispatch_table
};
inline probe_state& probe() {
  static probe_state state;
  return state;
}
inline void probe_ran(env_t env, probe_call call) {
  probe_state& p = probe();
  {
    std::lock_guard guard(p.lock);
    p.calls.push_back(call);
  }
  p.bodies[static_cast<int>(call.table)](env);
}
template <std::uint32_t vector>
void ing_probe(env_t env, boolean_t global_feature_enabled) {
  probe_ran(env, {dispatch_table::ingress, vector, global_feature_enabled});
}
template <std::uint32_t type>
void nph_probe(env_t env) {
  probe_ran(env, {dispatch_table::fabric, type, FALSE});
}
inline constexpr auto ing_probes = []<std::size_t... v>(std::index_sequence<v...>) {
  return std::array<ing_fn_type, sizeof...(v)>{&ing_probe<v>...};
}
(std::make_index_sequence<256>{});
inline constexpr auto nph_probes = []<std::size_t... t>(std::index_sequence<t...>) {
  return std::array<nph_fn_type, sizeof...(t)>{&nph_probe<t>...};
}
(std::make_index_sequence<64>{});
inline void set_body(dispatch_table table, probe_body body) {
  std::lock_guard guard(probe().lock);
  probe().calls.clear();
  probe().bodies[static_cast<int>(table)] = body ? std::move(body) : probe_body(drop_packet_no_counter);
}
}  // namespace detail

// Puts the probe at `vector` of the ingress table, with `body` or one that
// ends the packet uncounted. The table serves every NPU; the probes of one
// table share a body.
inline void probe_vector(npu_harness& h, std::uint32_t vector, probe_body body = {}) {
  detail::set_body(dispatch_table::ingress, std::move(body));
  h.on_thread([vector](env_t) {
    std::atomic_ref(ing_ep.entry_point[vector]).store(detail::ing_probes[vector], std::memory_order_relaxed);
  });
}

// Puts the probe at fabric header type `type` of the fabric table.
inline void probe_nph_type(npu_harness& h, std::uint32_t type, probe_body body = {}) {
  detail::set_body(dispatch_table::fabric, std::move(body));
  h.on_thread([type](env_t) {
    std::atomic_ref(nph_ep.entry_point[nph_type_to_ep_table_index(type)])
        .store(detail::nph_probes[type], std::memory_order_relaxed);
  });
}

// The probe's runs since it was put in place or last asked.
inline std::vector<probe_call> take_probe_calls() {
  std::lock_guard guard(detail::probe().lock);
  return std::exchange(detail::probe().calls, {});
}

inline probe_call ran_at_vector(std::uint32_t vector, boolean_t global_feature_enabled = FALSE) {
  return {dispatch_table::ingress, vector, global_feature_enabled};
}
inline probe_call ran_at_nph_type(std::uint32_t type) { return {dispatch_table::fabric, type, FALSE}; }
using probe_calls = std::vector<probe_call>;

// The vector at which tests play a path's handler through the probe.
inline constexpr std::uint32_t TEST_VECTOR = VECTOR_IPV4_UNICAST;

// A line packet of the ingress buffer with a valid TEST_VECTOR and this handle.
inline dist_hdr line_packet(std::uint32_t handle = 1) {
  return dist_hdr::line(TEST_VECTOR).set<dist_hdr_line_st::gpm_pkt_handle>(handle).set<dist_hdr_line_st::pktlen>(64);
}

}  // namespace testkit
