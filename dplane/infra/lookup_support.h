// What the generated lookup operations are built from.
#pragma once

#include <cstdint>

#include "arch_tie.h"
#include "dma_common.h"
#include "dma_defs.h"
#include "dplane/infra/env.h"
#include "dplane/infra/lookup_dbg.h"
#include "dplane/infra/lookup_ids.h"
#include "dplane/infra/lookup_tables.h"
#include "dplane/infra/lookup_types.h"
#include "npu/zephra/bitmap_lock.h"
#include "npu/zephra/plu.h"
#include "npu/zephra/stats.h"
#include "npu/zephra/tlu.h"
#include "tlu_defs.h"

inline std::uint8_t* lookup_slot(env_t env, std::uint32_t loc) { return env_get_dmem_start(env) + loc; }

// Command word of a paged record: the TLU finds record_index through table
// page descriptor tpd_idx; bit 1 marks the paged form.
constexpr std::uint32_t lookup_paged_word(std::uint32_t tpd_idx, std::uint32_t record_index) {
  return tlu_paged_word(tpd_idx, record_index);
}
// Command word of a read with modulus, whose template implies the paged form.
constexpr std::uint32_t lookup_mod_word(std::uint32_t tpd_idx, std::uint32_t record_index) {
  return tlu_paged_record(tpd_idx, record_index);
}

// A read with modulus: the denominator at byte 8 of the cell, the numerator
// at byte 12; the answer (remainder block, then the record) lands over it.
inline void lookup_mod_request(env_t env, std::uint32_t rtt, std::uint32_t cmd, std::uint32_t num, std::uint32_t denom,
                               std::uint32_t loc) {
  auto& req = *reinterpret_cast<tlu_mod_request_st*>(dma_cell_words(env, loc));
  tlu_mod_request_st::denom::set(req, denom);
  tlu_mod_request_st::num::set(req, num);
  qrsc(rtt, cmd, loc, loc);
}

// Word 0 of a protected record: 0 only in the forward state, since every
// other state has its first bit set.
inline std::uint32_t lookup_record_word0(env_t env, std::uint32_t record_loc) {
  return dma_cell_words(env, record_loc)[0].get();
}

// The slow half of the wait on a protected record whose word 0 is 0: checks
// the forward-state pattern (a record without it traps), counts global
// counter 0xB7 and reads the shadow copy over the record.
void lookup_coherency_reread(env_t env, lookup_id_e id, std::uint32_t record_loc);

// A conversion to flowlock_id, request and response in the cell: the thread
// never reads the response.
inline void lookup_flowlock_convert(env_t env, std::uint32_t cell, std::uint32_t flowlock_id) {
  dma_flowlock_convert(env, flowlock_id, cell, cell);
}
