// Reading a protected record that the control plane is changing.
//
// While it changes a record, the control plane leaves it in the forward
// state: word 0 is 0, word 1 the address of a shadow copy, word 2 the
// pattern 0x8BADF00D. Every other state has the record's first bit set, so a
// wait costs one compare unless the record is being changed.
#include <cstdio>

#include "global_counters.h"
#include "lookup.h"

namespace {

constexpr std::uint32_t FORWARD_STATE_PATTERN = 0x8BADF00D;
constexpr std::uint32_t COHERENT_RECORD_BYTES = 32;

// Word 0 is 0 but the pattern is missing: the control plane broke the
// protocol, and no reading of the record can be trusted.
[[noreturn]] void trap_broken_record(lookup_id_e id, std::uint32_t record_loc, std::uint32_t word2) {
  char what[160];
  std::snprintf(what, sizeof what,
                "%s: record at data memory 0x%03X has word 0 = 0 without the forward-state pattern "
                "(word 2 = 0x%08X, not 0x%08X)",
                lookup_id_name(id), record_loc, word2, FORWARD_STATE_PATTERN);
  power_trap(what);
}

}  // namespace

void lookup_coherency_reread(env_t env, lookup_id_e id, std::uint32_t record_loc) {
  be_u32* w = dma_cell_words(env, record_loc);
  const std::uint32_t word2 = w[2].get();
  if (word2 != FORWARD_STATE_PATTERN) trap_broken_record(id, record_loc, word2);
  lookup_request_ID_STATS_INC_GLB_CNT__DEBUG(env, CNT_SHADOW_READ);
  // The cell is the request (the shadow's address in word 0) and the response.
  w[0] = w[1].get();
  dma_initiate(env, dma_build_cmd(RES_TLU_READ_NC_32B, record_loc, 4, record_loc, COHERENT_RECORD_BYTES));
}
