// Debug switches: settings of the whole process, not of a thread. One place
// sets a switch (the debugger's or a test's call), and every NPU thread reads
// it on its next use; nothing else is ordered by it, so a relaxed load does.
// Debug state that belongs to a thread (ps_dbg, lookup_dbg, the thread's
// lookup log segment) stays per thread.
#pragma once

#include <cstdint>

enum class debug_switch : std::uint8_t {
  lookup_log,  // log_lookup_result writes its entry
  count,
};

void debug_switch_set(debug_switch s, bool on);
bool debug_switch_on(debug_switch s);
