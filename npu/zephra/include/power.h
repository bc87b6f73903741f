// The platform operations: the whole interface between the forwarding program
// and the network processor (or its software model). Everything the program
// does beyond computing on its own memories goes through these.
#pragma once

#include <cstdint>

// The program's side: the entry every NPU thread runs. It fills data memory
// with 0xDEADBEEF, sets up the context and runs the packet loop for ever.
// Whoever builds the platform hands it this function.
[[noreturn]] void power_fwcore_main();

std::uint8_t* power_get_dmem_start_addr();
std::uint8_t* power_get_pkt_buf_start_addr();
std::uint8_t* power_get_spill_start_addr();
std::uint32_t power_rdc(std::uint32_t cop);
void power_wdc(std::uint32_t data, std::uint32_t cop);
void power_qrsc(std::uint32_t table, std::uint32_t entry, std::uint32_t cmd, std::uint32_t req_cell,
                std::uint32_t res_cell);
void power_gpmwbi();
void* power_get_fh();
void* power_get_fp();
void np_counter_monitor_check(std::uint32_t counter_index);
// The thread meets a state it cannot go on from; the platform stops it.
[[noreturn]] void power_trap(const char* what);

// Debug builds of the program name the lookup behind each request and each
// result read, so that a software platform can stop a result read through
// the wrong lookup or a live cell reused. Locations are data memory offsets;
// the names live as long as the process.
void power_dbg_lookup_request(std::uint32_t lookup_id, const char* name, std::uint32_t req_loc, std::uint32_t req_size,
                              std::uint32_t res_loc, std::uint32_t res_size);
void power_dbg_lookup_result(std::uint32_t lookup_id, const char* name, std::uint32_t owner_id, const char* owner_name,
                             std::uint32_t res_loc, std::uint32_t res_size);
// A new pass over the packet: no slot holds a result any more.
void power_dbg_lookup_new_pass();
// The drop-capture hook took the packet: a software platform may keep it.
void power_dbg_drop_capture(std::uint32_t drop_reason);
// A drop names the counter it counted under just before it frees the
// buffer, so that the platform can tell how the packet ended.
void power_drop_counted(std::uint32_t drop_counter);

// Coprocessor registers.
inline constexpr std::uint32_t COP_THREAD_IDENTITY = 0;
inline constexpr std::uint32_t COP_HASH_A = 32;
inline constexpr std::uint32_t COP_HASH_B = 33;
inline constexpr std::uint32_t COP_HASH_C = 34;
inline constexpr std::uint32_t COP_HASH_RESULT = 35;
inline constexpr std::uint32_t COP_DMA_COMMAND = 64;
inline constexpr std::uint32_t COP_RANDOM = 129;
inline constexpr std::uint32_t COP_TIME_SECONDS = 132;
inline constexpr std::uint32_t COP_TIME_LOW = 133;
inline constexpr std::uint32_t COP_ROUTER_ID = 135;
inline constexpr std::uint32_t COP_GLOBAL_CONFIG = 136;
inline constexpr std::uint32_t COP_DROP_CAPTURE = 137;
