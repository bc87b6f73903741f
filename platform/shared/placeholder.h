// The placeholders: rows of handlers.def, tail_functions.def and
// feature_steps.def in state PLACEHOLDER. Each has a number, under which the
// platform counts the packets that reach it, and a generated body.
#pragma once

#include <cstdint>
#include <type_traits>

#include "fwc_types.h"

// Expands a row's macro argument by its state: a placeholder row yields
// `placeholder`, a built row nothing.
#define LC_IF_PLACEHOLDER_PLACEHOLDER(...) __VA_ARGS__
#define LC_IF_PLACEHOLDER_BUILT(...)
#define LC_IF_PLACEHOLDER(state, ...) LC_IF_PLACEHOLDER_##state(__VA_ARGS__)

enum unbuilt_handler_e : std::uint32_t {
#define PLACEHOLDER_ROW(name) UNBUILT_##name,
#include "placeholder_rows.def"
#undef PLACEHOLDER_ROW
  UNBUILT_HANDLER_COUNT
};

// Name of a placeholder by its number, or null.
const char* unbuilt_handler_name(std::uint32_t id);

// Counts the packet under the placeholder's number, then frees it; a packet
// that ends here takes no further pass.
void unbuilt_handler_end(env_t env, unbuilt_handler_e id);
// Counts the packet under the step's number; the packet goes on.
void unbuilt_step_reached(env_t env, unbuilt_handler_e id);

// The generated body of a placeholder handler: a handler that answers
// whether it took the packet answers yes, since the packet has ended.
template <class Result>
Result placeholder_handler_end(env_t env, unbuilt_handler_e id) {
  static_assert(std::is_void_v<Result> || std::is_same_v<Result, boolean_t>);
  unbuilt_handler_end(env, id);
  if constexpr (!std::is_void_v<Result>) return TRUE;
}
