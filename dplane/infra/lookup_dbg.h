// Debug aids of the lookup catalogue.
//  - lookup_dbg: where each request cell and result slot lies, for a debugger.
//  - Ownership notes: in debug builds every request and every result read
//    tells the platform which lookup it belongs to, so that a software
//    platform can stop a read through the wrong lookup or the reuse of a
//    cell whose result is still unread. Release builds compile them away.
#pragma once

#include <array>
#include <cstdint>

#include "dplane/infra/lookup_ids.h"
#include "fwc_types.h"
#include "power.h"

// A cell or slot by its data memory offset.
struct lookup_place_st {
  lookup_id_e id;
  std::uint32_t offset;
};

struct lookup_dbg_entry_st {
  lookup_id_e id;
  std::uint8_t* addr;
};

struct lookup_dbg_st {
  std::array<lookup_dbg_entry_st, LOOKUP_DBG_REQ_COUNT> req;  // lookups that expose their request cell
  std::array<lookup_dbg_entry_st, LOOKUP_DBG_RES_COUNT> res;  // lookups with a result
};

// Generated with the catalogue.
extern const std::array<lookup_place_st, LOOKUP_DBG_REQ_COUNT> lookup_request_cells;
extern const std::array<lookup_place_st, LOOKUP_DBG_RES_COUNT> lookup_result_slots;

// On the NPU every thread sees its data memory at one address, so one table
// serves all threads; on a hosted platform each thread's data memory lies
// elsewhere, so each thread keeps its own table.
extern thread_local lookup_dbg_st lookup_dbg;

// Fills lookup_dbg with the addresses of this thread's cells and slots.
void lookup_dbg_initialize(env_t env);
// A new pass over the same packet starts with every slot undefined.
void lookup_dbg_new_pass(env_t env);

inline void lookup_dbg_note_request(env_t env, lookup_id_e id, std::uint32_t req_loc, std::uint32_t req_size,
                                    std::uint32_t res_loc, std::uint32_t res_size) {
  (void)env;
#ifndef NDEBUG
  power_dbg_lookup_request(id, lookup_id_name(id), req_loc, req_size, res_loc, res_size);
#else
  (void)id, (void)req_loc, (void)req_size, (void)res_loc, (void)res_size;
#endif
}

// `owner` is the lookup whose request fills the slot: the lookup itself, or
// the lookup a view reads.
inline void lookup_dbg_check_result(env_t env, lookup_id_e id, lookup_id_e owner, std::uint32_t res_loc,
                                    std::uint32_t res_size) {
  (void)env;
#ifndef NDEBUG
  power_dbg_lookup_result(id, lookup_id_name(id), owner, lookup_id_name(owner), res_loc, res_size);
#else
  (void)id, (void)owner, (void)res_loc, (void)res_size;
#endif
}
