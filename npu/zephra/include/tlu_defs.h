// Request and response formats of the tree lookup unit (TLU): reads by
// address or by paged record, the modulus command that reads a member chosen
// by remainder, address translation and the cache invalidate.
#pragma once

#include <cstdint>

#include "be_types.h"

enum tlu_cache_policy_e : std::uint32_t {
  TLU_CACHE_NEVER = 0,     // read past the cache, without allocation
  TLU_CACHE_ALWAYS = 1,    // the data goes into the cache
  TLU_CACHE_PERIODIC = 2,  // as tlu_alloc_policy_for_read says
};

// A read resource without allocation lies this far above the one with it;
// in a command word that is tlu_alloc_policy_for_read's value 0x02000000.
inline constexpr std::uint32_t TLU_READ_NO_ALLOCATE_OFFSET = 4;
inline constexpr std::uint32_t TLU_POLICY_NO_ALLOCATE = TLU_READ_NO_ALLOCATE_OFFSET << 23;
// With TLU_CACHE_PERIODIC only the thread whose identity has these low six
// bits allocates: one thread in 64 fills the cache.
inline constexpr std::uint32_t TLU_POLICY_THREAD = 16;

// Modulus command byte, word 0 of the request: the high nibble is the size of
// the read (0: none), then the flags below.
inline constexpr std::uint32_t TLU_MOD_READ_4B = 0x10;
inline constexpr std::uint32_t TLU_MOD_READ_16B = 0x30;
inline constexpr std::uint32_t TLU_MOD_READ_32B = 0x40;
inline constexpr std::uint32_t TLU_MOD_NO_ALLOCATE = 0x08;
inline constexpr std::uint32_t TLU_MOD_RETURN_RESULT = 0x04;  // remainder and quotient in front of the data
inline constexpr std::uint32_t TLU_MOD_PAGED = 0x02;
inline constexpr std::uint32_t TLU_MOD_CMD_MASK = 0xFF;  // the rest of word 0 is 0
// Resource of the paged modulus and translation forms.
inline constexpr std::uint32_t TLU_PAGED_RESOURCE = 120;

// A paged record as a read names it: bits 31..26 the table page descriptor,
// 25..2 the record, bit 1 the paged mark. The modulus and translation forms
// take it without the mark.
struct tlu_paged_word_st {
  std::uint8_t bytes[4];
  using word = be_bits<0, 0, 32>;
  using tpd_idx = be_word_bits<0, 26, 6>;
  using record_idx = be_word_bits<0, 2, 24>;
  using paged = be_word_bits<0, 1>;
};
static_assert(sizeof(tlu_paged_word_st) == 4);
inline constexpr std::uint32_t TLU_PAGED_MARK = 2;
constexpr std::uint32_t tlu_paged_record(std::uint32_t tpd_idx, std::uint32_t record_idx) {
  std::uint8_t w[sizeof(tlu_paged_word_st)] = {};
  tlu_paged_word_st::tpd_idx::set_raw(w, tpd_idx);
  tlu_paged_word_st::record_idx::set_raw(w, record_idx);
  return tlu_paged_word_st::word::get_raw(w);
}
constexpr std::uint32_t tlu_paged_word(std::uint32_t tpd_idx, std::uint32_t record_idx) {
  return tlu_paged_record(tpd_idx, record_idx) | TLU_PAGED_MARK;
}

// Paged address translation: word 1 is (tpd_idx << 26) | (record_idx << 2).
inline constexpr std::uint32_t TLU_CMD_TMU_LPA_PAGED = 0x00000A02;
// Word 0 of a cache invalidate is m40ah << 24 OR this.
inline constexpr std::uint32_t TLU_INVALIDATE_MARK = 2;

// A template read with modulus: the command word (a paged record without the
// mark), the denominator at byte 8 and the numerator at byte 12. The answer
// (npu_mod_fields_st, then the record) lands over it.
struct tlu_mod_request_st {
  std::uint8_t bytes[16];
  using cmd = be_bits<0, 0, 32>;
  using denom = be_bits<8, 0, 32>;
  using num = be_bits<12, 0, 32>;
};
static_assert(sizeof(tlu_mod_request_st) == 16);

// The answer of the plain modulus command, and the part in front of the
// data in the forms that return the result.
struct tlu_long_div_rmr_response_ {
  std::uint8_t bytes[8];
  using mod_rem = be_bits<0, 0, 32>;
  using mod_quot = be_bits<4, 0, 32>;
};
static_assert(sizeof(tlu_long_div_rmr_response_) == 8);

// The remainder block of the template modulus reads, in front of the record.
struct npu_mod_fields_st {
  std::uint8_t bytes[16];
  using mod_rem = be_bits<0, 0, 32>;
  using mod_quot = be_bits<4, 0, 32>;
  using pad1 = be_bits<8, 0, 32>;
  using pad2 = be_bits<12, 0, 32>;
};
static_assert(sizeof(npu_mod_fields_st) == 16);

// The answer of TMU_LPA. The reader does not examine miss, pe and ovf.
struct tlu_long_tmulpa_response_ {
  std::uint8_t bytes[8];
  using miss = be_word_bits<0, 31>;
  using pe = be_word_bits<0, 30>;
  using ovf = be_word_bits<0, 8>;
  using ppnh = be_word_bits<0, 0, 8>;
  using ppnl = be_bits<4, 0, 32>;
};
static_assert(sizeof(tlu_long_tmulpa_response_) == 8);

// The answer of the paged translation; any of the three error bits means that
// the page tables are broken.
struct tlu_long_tps_lpa_response_ {
  std::uint8_t bytes[8];
  using m40h = be_word_bits<0, 0, 8>;
  using m40l = be_word_bits<4, 3, 29>;
  using tpde = be_word_bits<4, 2>;
  using tptpe = be_word_bits<4, 1>;
  using tptnv = be_word_bits<4, 0>;
};
static_assert(sizeof(tlu_long_tps_lpa_response_) == 8);
