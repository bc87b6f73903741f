// The platform operations: the whole interface between the forwarding program
// and the network processor (or its software model). Everything the program
// does beyond computing on its own memories goes through these.
#pragma once

#include <cstdint>

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
