// The lookup catalogue: every table access of the forwarding path.
//
// For a lookup ID_X the generated operations are, in the order of use:
//   lookup_request_ID_X(env, ...)   issue; returns at once
//   lookup_wait_ID_X(env)           the result is needed from here on; for a
//                                   protected table, the coherency check
//   lookup_result_ID_X(env)         the result slot as its record type
// and lookup_wait_cohfail_ID_X, lookup_result_dmem_offset_ID_X,
// lookup_alloc_ID_X and lookup_alloc_ref_ID_X where they apply.
#pragma once

#include <cstdint>

#include "dplane/infra/lookup_catalogue.h"

// Logging of lookup results into the per-thread log in table memory, while
// the process-wide lookup_log switch is on (enable_lookup_logging turns it on
// for every thread, clear_lookup_logging off). Nothing on the forwarding path
// calls it.
void log_lookup_result(env_t env, lookup_id_e lookup_id, const char* lookup_name, std::uint32_t dmem_res_loc,
                       std::uint32_t result_size);
void log_lookup_result_internal(env_t env, lookup_id_e lookup_id, const char* lookup_name, std::uint32_t dmem_res_loc,
                                std::uint32_t result_size);
void enable_lookup_logging(env_t env);
void clear_lookup_logging(env_t env);
