// The lookup log: a debugging record of lookup results in table memory, one
// segment per thread. Each entry is a 32-byte header and the result, rounded
// up to 32 bytes; an entry that would pass the segment's end is left out.
#include <cstring>

#include "dplane/infra/debug_switches.h"
#include "env_init.h"
#include "lookup.h"

namespace {

// Header of a log entry.
struct fwc_ppe_lookup_trace_ {
  be_u16 dmem_resp_offset;
  be_u16 record_size;
  be_u32 lookup_id;
  char lookup_name[24];
};
static_assert(sizeof(fwc_ppe_lookup_trace_) == 32);

constexpr std::uint32_t LOG_BASE = 0x29E1CE40;
constexpr std::uint32_t LOG_THREAD_STRIDE = 7296;
constexpr std::uint32_t LOG_ISSU_V2_OFFSET = 0x40000000;
constexpr std::uint32_t LOG_UNIT = 32;
constexpr std::uint32_t LOG_SEGMENT_BYTES = 1792;
// Data memory at 0 serves as the request cell of the writes: a 32-byte write
// takes 40 bytes of request, saved and put back around the entry.
constexpr std::uint32_t LOG_REQ_LOC = 0;
constexpr std::uint32_t LOG_REQ_SAVE = 48;

void write_unit(env_t env, std::uint32_t addr, const std::uint8_t* unit) {
  dma_write_32B_p(env, 0, addr, unit, LOG_REQ_LOC, LOG_REQ_LOC, FALSE);
}

}  // namespace

void log_lookup_result(env_t env, lookup_id_e lookup_id, const char* lookup_name, std::uint32_t dmem_res_loc,
                       std::uint32_t result_size) {
  if (!debug_switch_on(debug_switch::lookup_log)) return;
  log_lookup_result_internal(env, lookup_id, lookup_name, dmem_res_loc, result_size);
}

void log_lookup_result_internal(env_t env, lookup_id_e lookup_id, const char* lookup_name, std::uint32_t dmem_res_loc,
                                std::uint32_t result_size) {
  thread_lookup_trace_st& trace = *ps_put_mod_thread_lookup_trace(env);
  const std::uint32_t used = thread_lookup_trace_st::segment_offset::get(trace);
  const std::uint32_t units = 1 + (result_size + LOG_UNIT - 1) / LOG_UNIT;
  if ((used + units) * LOG_UNIT > LOG_SEGMENT_BYTES) return;

  std::uint32_t addr = LOG_BASE + npu_get_thread_id(env) * LOG_THREAD_STRIDE + used * LOG_UNIT;
  if (global_config_is_issu_v2_mode(env)) addr += LOG_ISSU_V2_OFFSET;

  std::uint8_t* dmem = env_get_dmem_start(env);
  std::uint8_t saved[LOG_REQ_SAVE];
  std::memcpy(saved, dmem, sizeof saved);
  // A result byte under the request cell is taken from the saved copy, as
  // the writes overwrite the cell.
  auto result_byte = [&](std::uint32_t i) {
    const std::uint32_t at = dmem_res_loc + i;
    return at < LOG_REQ_SAVE ? saved[at] : dmem[at];
  };

  fwc_ppe_lookup_trace_ header{};
  header.dmem_resp_offset = static_cast<std::uint16_t>(dmem_res_loc);
  header.record_size = static_cast<std::uint16_t>(result_size);
  header.lookup_id = lookup_id;
  for (std::size_t i = 0; i < sizeof header.lookup_name && lookup_name[i] != '\0'; ++i) {
    header.lookup_name[i] = lookup_name[i];
  }
  write_unit(env, addr, reinterpret_cast<const std::uint8_t*>(&header));
  for (std::uint32_t u = 1; u < units; ++u) {
    std::uint8_t unit[LOG_UNIT] = {};
    const std::uint32_t first = (u - 1) * LOG_UNIT;
    for (std::uint32_t i = first; i < result_size && i < first + LOG_UNIT; ++i) unit[i - first] = result_byte(i);
    write_unit(env, addr + u * LOG_UNIT, unit);
  }
  std::memcpy(dmem, saved, sizeof saved);
  thread_lookup_trace_st::segment_offset::set(trace, used + units);
}

void enable_lookup_logging(env_t) { debug_switch_set(debug_switch::lookup_log, true); }
void clear_lookup_logging(env_t) { debug_switch_set(debug_switch::lookup_log, false); }
