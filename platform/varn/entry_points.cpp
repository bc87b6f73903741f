#include "entry_points.h"

#include <type_traits>

#include "dplane/infra/drop.h"
#include "fab_hdr.h"
#include "npu/zephra/pkt_rx.h"
#include "platform/shared/handlers.h"

ing_entry_point_t ing_ep;
nph_entry_point_t nph_ep;

namespace {
// The ingress entry of a handler: the handler itself, or for one that takes
// no global-feature argument (the L2 paths) an adapter that drops it.
template <auto handler>
constexpr ing_fn_type ing_entry() {
  if constexpr (std::is_convertible_v<decltype(handler), ing_fn_type>) {
    return handler;
  } else {
    return [](env_t env, boolean_t) { handler(env); };
  }
}

// A vector or header type listed twice would leave one of its rows unused.
template <std::size_t N>
constexpr bool all_distinct(const std::uint32_t (&keys)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    for (std::size_t j = i + 1; j < N; ++j) {
      if (keys[i] == keys[j]) return false;
    }
  }
  return true;
}
constexpr std::uint32_t ing_vectors[] = {
#define ING_HANDLER(vector, handler) vector,
#include "ing_handlers.def"
#undef ING_HANDLER
};
constexpr std::uint32_t nph_types[] = {
#define NPH_HANDLER(type, handler) type,
#include "nph_handlers.def"
#undef NPH_HANDLER
};
static_assert(all_distinct(ing_vectors), "a vector has two rows in ing_handlers.def");
static_assert(all_distinct(nph_types), "a fabric header type has two rows in nph_handlers.def");
}  // namespace

const ing_handler_init_t ing_handlers[ING_HANDLER_COUNT] = {
#define ING_HANDLER(vector, handler) {vector, ing_entry<&handler>()},
#include "ing_handlers.def"
#undef ING_HANDLER
};

const nph_handler_init_t nph_handlers[NPH_HANDLER_COUNT] = {
#define NPH_HANDLER(type, handler) {type, handler},
#include "nph_handlers.def"
#undef NPH_HANDLER
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
