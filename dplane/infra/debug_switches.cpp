#include "dplane/infra/debug_switches.h"

#include <array>
#include <atomic>

namespace {

std::array<std::atomic<bool>, static_cast<std::size_t>(debug_switch::count)> switches{};

std::atomic<bool>& switch_of(debug_switch s) { return switches[static_cast<std::size_t>(s)]; }

}  // namespace

void debug_switch_set(debug_switch s, bool on) { switch_of(s).store(on, std::memory_order_relaxed); }

bool debug_switch_on(debug_switch s) { return switch_of(s).load(std::memory_order_relaxed); }
