// The thread context: the thread's 2048-byte data memory.
//   0x000  distribution header of the current packet (32 bytes)
//   0x020  request and result cells, 62 cells of 16 bytes
//   0x400  packet-state fields (ps_fields.def)
//   0x7F4  common_flags2, then common_flags
// Behind it stand the packet buffer and the thread-local memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fwc_types.h"
#include "ps_records.h"
#include "thread_memory.h"

inline constexpr std::uint32_t DMEM_CELL_SIZE = 16;
inline constexpr std::uint32_t DMEM_PS_OFFSET = 0x400;
inline constexpr std::uint32_t DMEM_FLAGS_OFFSET = 0x7F4;

// Areas of packet memory ahead of the packet (thread_memory.h places it).
inline constexpr std::uint32_t PKT_ING_SAVE_AREA_OFFSET = 48;
inline constexpr std::uint32_t PKT_ING_SAVE_AREA_SIZE = 64;
inline constexpr std::uint32_t PKT_EGR_SECOND_ENCAP_OFFSET = 112;
inline constexpr std::uint32_t PKT_EGR_SECOND_ENCAP_SIZE = 48;

#define PS_DMEM(name, type) type f_##name;
#define PS_TLM(name, type)
struct ps_dmem_fields {
#include "ps_fields.def"
};
#undef PS_DMEM
#undef PS_TLM

#define PS_DMEM(name, type)
#define PS_TLM(name, type) type f_##name;
struct ps_tlm_fields {
#include "ps_fields.def"
};
#undef PS_DMEM
#undef PS_TLM

struct alignas(64) env_st {
  std::uint8_t dist_hdr[DMEM_DIST_HDR_SIZE];
  std::uint8_t cells[DMEM_PS_OFFSET - DMEM_DIST_HDR_SIZE];
  ps_dmem_fields ps;
  std::uint8_t unused[DMEM_FLAGS_OFFSET - DMEM_PS_OFFSET - sizeof(ps_dmem_fields)];
  common_flags2_st common_flags2;
  common_flags_st common_flags;
};
static_assert(sizeof(env_st) == DMEM_SIZE);
static_assert(offsetof(env_st, cells) == 0x20);
static_assert(offsetof(env_st, ps) == DMEM_PS_OFFSET);
static_assert(offsetof(env_st, common_flags2) == 0x7F4);
static_assert(offsetof(env_st, common_flags) == 0x7F8);

// Thread-local memory: the fields, then the lookup results placed there.
inline constexpr std::uint32_t TLM_FIELDS_SIZE = 1024;
static_assert(sizeof(ps_tlm_fields) <= TLM_FIELDS_SIZE);

inline std::uint8_t* env_get_dmem_start(env_t env) { return reinterpret_cast<std::uint8_t*>(env); }
