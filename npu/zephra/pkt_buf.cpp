#include "pkt_buf.h"

#include <cstring>

#include "dma_common.h"
#include "dplane/infra/drop.h"
#include "dplane/infra/lookup_tables.h"
#include "global_counters.h"

namespace {

using cf = common_flags_st;

constexpr std::uint32_t SAVE_UNIT = 8;
constexpr std::uint32_t SAVE_ADDITIONAL_UNIT = 4;

// The mark word's 12 high marks replace the low 12 bits of baf word 0; its
// next 8 marks become the top byte of baf word 1, which keeps the bits of
// this mask.
constexpr std::uint32_t MARK_HIGH_SHIFT = 12;
constexpr std::uint32_t MARK_HIGH_MASK = 0xFFF;
constexpr std::uint32_t MARK_LOW_SHIFT = 4;
constexpr std::uint32_t MARK_LOW_MASK = 0xFF;
constexpr std::uint32_t BAF_WORD1_KEPT = 0x008FFFFF;
// Cell 0, saved and restored around the mark read: it holds the header.
constexpr std::uint32_t MARK_READ_CELL = 0;
constexpr std::uint32_t MARK_BITS_BYTES = 4;

constexpr std::uint32_t round_up(std::uint32_t n, std::uint32_t unit) { return (n + unit - 1) / unit * unit; }

}  // namespace

std::uint32_t pkt_get_bytes_remaining(env_t env, const std::uint8_t* pkt_ptr) {
  const std::uint32_t len = get_orig_pkt_len(env);
  const std::uint8_t* start = pkt_get_rx_pkt_mem_start(env) + PKT_START_OFFSET;
  if (pkt_ptr < start) return len + static_cast<std::uint32_t>(start - pkt_ptr);
  const auto offset = static_cast<std::uint32_t>(pkt_ptr - start);
  return offset > len ? 0 : len - offset;
}

boolean_t npu_verify_dst_error(env_t env, std::uint32_t dst_format) {
  if (dst_format != DST_FORMAT_FABRIC || !dist_hdr_fabric_st::error::get(pkt_rx_line_hdr(env))) return FALSE;
  drop_packet(env, DROP_FABRIC_ERROR);
  return TRUE;
}

void* npu_pkt_adjust_head(env_t env, std::int32_t size) {
  std::uint8_t*& pkt_start = *ps_put_mod_pkt_start(env);
  pkt_start += size;
  pkt_set_rx_packet_length(env, pkt_get_rx_packet_length(env) - size);
  return pkt_start;
}

void pkt_ing_save_hdr(env_t env, std::uint32_t len, void* mpls) {
  common_flags_st& flags = *ps_put_mod_common_flags(env);
  if (cf::egr_wred_valid_or_ing_l2_saved::get(flags) && *ps_get_saved_pkt_hdr_len(env) >= len) return;
  std::uint8_t* pkt_start = pkt_get_rx_pkt_start(env);
  std::uint8_t* save = env_get_pkt_ing_save_area_start(env);
  std::memcpy(save, pkt_start, round_up(len, SAVE_UNIT));
  *ps_put_def_saved_pkt_l2_hdr_len(env) = static_cast<std::uint16_t>(*ps_get_l2_hdr_len(env));
  *ps_put_def_saved_pkt_hdr_len(env) = static_cast<std::uint16_t>(len);
  *ps_put_def_saved_pkt_orig_start(env) = pkt_start;
  cf::egr_wred_valid_or_ing_l2_saved::set(flags, 1);
  if (!mpls || !cf::mpls_to_ip::get(flags)) return;
  // The saved copy keeps the label as it came, not as the path changed it.
  std::uint8_t* saved_label = save + (static_cast<std::uint8_t*>(mpls) - pkt_start);
  const mpls_hdr_st& orig = *ps_get_orig_mpls_hdr(env);
  if (std::memcmp(saved_label, orig.bytes, sizeof orig.bytes) != 0) {
    std::memcpy(saved_label, orig.bytes, sizeof orig.bytes);
  }
}

void pkt_ing_save_additional_hdr(env_t env, unsigned char* modify_depth) {
  const std::uint32_t saved = *ps_get_saved_pkt_hdr_len(env);
  const std::uint8_t* start = *ps_get_saved_pkt_orig_start(env) + saved;
  if (start >= modify_depth) return;
  const std::uint32_t len = round_up(static_cast<std::uint32_t>(modify_depth - start), SAVE_ADDITIONAL_UNIT);
  std::uint8_t* dst = env_get_pkt_ing_save_area_start(env) + saved;
  const std::uint8_t* save_end = env_get_pkt_egr_second_encap_start(env);
  if (dst + len > save_end) return;
  std::memcpy(dst, start, len);
  *ps_put_mod_saved_pkt_hdr_len(env) = static_cast<std::uint16_t>(saved + len);
}

void pkt_update_ing_mark_bits(env_t env, std::uint32_t uidb_index) {
  std::uint8_t saved_cell[DMEM_CELL_SIZE];
  std::uint8_t* cell = env_get_dmem_start(env) + MARK_READ_CELL;
  std::memcpy(saved_cell, cell, sizeof saved_cell);
  dma_cell_words(env, MARK_READ_CELL)[0] = TABLE_BASE_UIDB_MARK_BITS_ING + uidb_index * TABLE_STRIDE_UIDB_MARK_BITS_ING;
  dma_initiate(env, dma_build_cmd(RES_TLU_READ_4B, MARK_READ_CELL, 4, MARK_READ_CELL, MARK_BITS_BYTES));
  std::memcpy(pkt_rx_uidb_mark_bits(env)->bytes, cell, MARK_BITS_BYTES);
  std::memcpy(cell, saved_cell, sizeof saved_cell);
  pkt_update_ing_mark_bits_base(env);
}

void pkt_update_ing_mark_bits_base(env_t env) {
  be_u32 mark;
  std::memcpy(mark.b, pkt_rx_uidb_mark_bits(env)->bytes, sizeof mark.b);
  be_u32* words = reinterpret_cast<be_u32*>(pkt_rx_baf_mod(env).bytes);
  words[0] = (words[0].get() & ~MARK_HIGH_MASK) + ((mark.get() >> MARK_HIGH_SHIFT) & MARK_HIGH_MASK);
  words[1] = (((mark.get() >> MARK_LOW_SHIFT) & MARK_LOW_MASK) << 24) + (words[1].get() & BAF_WORD1_KEPT);
}
