#include "lookup_dbg.h"

#include "env.h"

thread_local lookup_dbg_st lookup_dbg;

void lookup_dbg_initialize(env_t env) {
  std::uint8_t* dmem = env_get_dmem_start(env);
  for (std::size_t i = 0; i < lookup_request_cells.size(); ++i) {
    lookup_dbg.req[i] = {lookup_request_cells[i].id, dmem + lookup_request_cells[i].offset};
  }
  for (std::size_t i = 0; i < lookup_result_slots.size(); ++i) {
    lookup_dbg.res[i] = {lookup_result_slots[i].id, dmem + lookup_result_slots[i].offset};
  }
}

void lookup_dbg_new_pass(env_t) {
#ifndef NDEBUG
  power_dbg_lookup_new_pass();
#endif
}
