// The two dispatch tables: ing_ep by the parser's vector for packets from a
// line port, nph_ep by the fabric header type for packets from the fabric.
#pragma once

#include <atomic>
#include <cstdint>

#include "fwc_types.h"
#include "ingress_vectors.h"

using ing_fn_type = void (*)(env_t env, boolean_t global_feature_enabled);
using nph_fn_type = void (*)(env_t env);

struct ing_entry_point_t {
  ing_fn_type entry_point[256];
};

struct nph_entry_point_t {
  std::uint32_t pad[15];
  nph_fn_type entry_point[64];
};

struct ing_handler_init_t {
  std::uint8_t vector;
  ing_fn_type handler;
};

struct nph_handler_init_t {
  std::uint8_t nph_type;
  nph_fn_type handler;
};

// The number of rows of each table list.
inline constexpr std::uint32_t ING_HANDLER_COUNT = 0
#define ING_HANDLER(vector, handler) +1
#include "ing_handlers.def"
#undef ING_HANDLER
    ;
inline constexpr std::uint32_t NPH_HANDLER_COUNT = 0
#define NPH_HANDLER(type, handler) +1
#include "nph_handlers.def"
#undef NPH_HANDLER
    ;
// Vectors above the last wire vector come from inject and time-stamp queues.
inline constexpr std::uint32_t ING_MAX_WIRE_VECTOR = VECTOR_L2_CONTROL;

// Every thread fills the tables at its start, with the same contents, while
// other threads may already dispatch through them: each entry is stored and
// loaded whole, as a relaxed atomic, and a reader sees the old or the new
// pointer, which are equal. Read the tables through the two functions below.
extern ing_entry_point_t ing_ep;
extern nph_entry_point_t nph_ep;

inline ing_fn_type ing_ep_entry(std::uint32_t vector) {
  return std::atomic_ref(ing_ep.entry_point[vector]).load(std::memory_order_relaxed);
}
inline nph_fn_type nph_ep_entry(std::uint32_t index) {
  return std::atomic_ref(nph_ep.entry_point[index]).load(std::memory_order_relaxed);
}
extern const ing_handler_init_t ing_handlers[ING_HANDLER_COUNT];
extern const nph_handler_init_t nph_handlers[NPH_HANDLER_COUNT];

void init_ing_entry_points(env_t env);
void init_nph_entry_points(env_t env);

// The fabric header types fold onto the table's slots: types 7..34 move up
// by 29, types 35..63 down by 28.
constexpr std::uint32_t nph_type_to_ep_table_index(std::uint32_t nph_type) {
  if (nph_type <= 6) return nph_type;
  if (nph_type <= 34) return nph_type + 29;
  return nph_type - 28;
}
