// The platform operations as the program sees them, served by the model.
#include "platform_ops.h"

#include <cstdio>

#include "hash_unit.h"
#include "power.h"

namespace model {

namespace {
thread_local npu_thread* tls_thread = nullptr;
}

npu_thread& current_thread() { return *tls_thread; }

// A trapped thread gives up its packet and starts over from its entry.
void run_npu_thread(npu_thread& t, thread_entry entry) {
  tls_thread = &t;
  for (;;) {
    try {
      entry();
    } catch (const thread_stop&) {
      break;
    } catch (const thread_trap&) {
      t.owner->finish_packet(t);
    }
  }
  tls_thread = nullptr;
}

}  // namespace model

using model::current_thread;

std::uint8_t* power_get_dmem_start_addr() { return current_thread().dmem.data(); }

// The loop asks for the buffer once per packet; a second request for the same
// packet means that a handler returned without ending it.
std::uint8_t* power_get_pkt_buf_start_addr() {
  model::npu_thread& t = current_thread();
  if (t.holds_packet && ++t.buf_queries_since_arrival > 1) {
    t.owner->breach(t, "a handler returned without ending its packet or asking for another pass");
  }
  return t.pkt_buf();
}

std::uint8_t* power_get_spill_start_addr() { return current_thread().spill.data(); }

std::uint32_t power_rdc(std::uint32_t cop) {
  model::npu_thread& t = current_thread();
  model::npu& n = *t.owner;
  switch (cop) {
    case COP_THREAD_IDENTITY:
      return t.identity;
    case COP_HASH_RESULT:
      return model::hash_unit_answer(t.hash_inputs);
    case COP_RANDOM:
      return static_cast<std::uint32_t>(t.random());
    case COP_TIME_SECONDS:
      return n.clock().read_seconds();
    case COP_TIME_LOW:
      return n.clock().read_low();
    case COP_ROUTER_ID:
      return n.router_id();
    case COP_GLOBAL_CONFIG:
      return n.global_config();
    case COP_DROP_CAPTURE:
      return n.drop_capture();
    default:
      break;
  }
  n.breach(t, "read of coprocessor register " + std::to_string(cop) + ", which nothing serves");
  return 0;
}

void power_wdc(std::uint32_t data, std::uint32_t cop) {
  model::npu_thread& t = current_thread();
  switch (cop) {
    case COP_HASH_A:
      t.hash_inputs[0] = data;
      return;
    case COP_HASH_B:
      t.hash_inputs[1] = data;
      return;
    case COP_HASH_C:
      t.hash_inputs[2] = data;
      return;
    case COP_DMA_COMMAND:
      model::execute_dma(t, data);
      return;
    default:
      break;
  }
  t.owner->breach(t, "write of coprocessor register " + std::to_string(cop) + ", which nothing serves");
}

void power_qrsc(std::uint32_t table, std::uint32_t entry, std::uint32_t cmd, std::uint32_t req_cell,
                std::uint32_t res_cell) {
  model::execute_template(current_thread(), table, entry, cmd, req_cell, res_cell);
}

// The model's requests see the thread's memory directly: nothing to flush.
void power_gpmwbi() {}

void* power_get_fh() { return stdout; }
void* power_get_fp() { return stdout; }

void np_counter_monitor_check(std::uint32_t counter_index) { current_thread().owner->note_monitor(counter_index); }

// The breach stops a debug build at once; a release build logs it, and the
// thread unwinds to its entry.
void power_trap(const char* what) {
  model::npu_thread& t = current_thread();
  t.owner->breach(t, std::string("trap: ") + what);
  throw model::thread_trap{};
}

void power_dbg_lookup_request(std::uint32_t lookup_id, const char* name, std::uint32_t req_loc, std::uint32_t req_size,
                              std::uint32_t res_loc, std::uint32_t res_size) {
  model::npu_thread& t = current_thread();
  const std::string broke = t.lookups.request(lookup_id, name, req_loc, req_size, res_loc, res_size);
  if (!broke.empty()) t.owner->breach(t, broke);
}

void power_dbg_lookup_result(std::uint32_t, const char* name, std::uint32_t owner_id, const char* owner_name,
                             std::uint32_t res_loc, std::uint32_t res_size) {
  model::npu_thread& t = current_thread();
  const std::string broke = t.lookups.result(name, owner_id, owner_name, res_loc, res_size);
  if (!broke.empty()) t.owner->breach(t, broke);
}

void power_dbg_lookup_new_pass() { current_thread().lookups.clear(); }

void power_dbg_drop_capture(std::uint32_t drop_reason) { current_thread().current.captured_drop = drop_reason; }

void power_drop_counted(std::uint32_t drop_counter) { current_thread().current.drop_counter = drop_counter; }
