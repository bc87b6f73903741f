// Thin wrappers over the platform operations, and the NPU instructions that
// the hosted platform does not need (empty bodies).
#pragma once

#include <cstdint>

#include "power.h"
#include "request_templates.h"

inline void WDC(std::uint32_t data, std::uint32_t cop) { power_wdc(data, cop); }
inline std::uint32_t RDC(std::uint32_t cop) { return power_rdc(cop); }

// Queue a request through template rtt_index; req_dma and res_dma are data
// memory offsets of 16-byte cells.
inline void qrsc(std::uint32_t rtt_index, std::uint32_t cmd, std::uint32_t req_dma, std::uint32_t res_dma) {
  power_qrsc((rtt_index >> 4) & 1, rtt_index & 0xF, cmd, req_dma / 16, res_dma / 16);
}
inline void qrsc_sow(std::uint32_t rtt_index, std::uint32_t cmd, std::uint32_t req_dma, std::uint32_t res_dma) {
  qrsc(rtt_index, cmd, req_dma, res_dma);
}

inline void gpmwbi() { power_gpmwbi(); }
inline std::uint8_t* get_dmem_start_addr() { return power_get_dmem_start_addr(); }
inline std::uint8_t* get_gpb_start_addr() { return power_get_pkt_buf_start_addr(); }
inline std::uint8_t* get_spill_start_addr() { return power_get_spill_start_addr(); }
inline void* get_fh() { return power_get_fh(); }
inline void* get_print_fp() { return power_get_fp(); }

// Builds a DMA command word as dma_build_cmd does and stores it at *reg1.
void mk_dma_reg(std::uint32_t instruct, std::uint32_t resp_size, std::uint32_t resp_loc, std::uint32_t req_size,
                std::uint32_t req_loc, std::uint32_t* reg1);

inline void PREALLOC(const void*, std::uint32_t) {}
inline void DTIWB(std::uint32_t) {}
inline void rsync() {}
inline void excw() {}
inline void memory_barrier() {}
inline void dma_wait_for_idle() {}

// Captures a dropped packet: the platform records it with the packet's outcome.
void capture_drop_packet_asm(std::uint32_t drop_reason);
