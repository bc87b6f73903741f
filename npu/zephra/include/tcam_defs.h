// Request and response formats of the TCAM searches through the ITC, with
// the range stage (ARL) in front on resource 59, and of the IGPU's VLAN
// classification.
#pragma once

#include <cstdint>

#include "be_types.h"

// Word 0 of an ITC request (sse_itc_desc_fmt). reserved_2 is reserved_1 in
// the multi-search form.
struct sse_itc_desc_fmt {
  std::uint8_t bytes[4];
  using cmd = be_word_bits<0, 29, 3>;
  using key_size = be_word_bits<0, 25, 4>;
  using reserved_2 = be_word_bits<0, 17, 8>;
  using ms = be_word_bits<0, 16>;
  using bmr_en_1 = be_word_bits<0, 15>;
  using profile_1 = be_word_bits<0, 8, 7>;
  using bmr_en_0 = be_word_bits<0, 7>;
  using profile_0 = be_word_bits<0, 0, 7>;
};
static_assert(sizeof(sse_itc_desc_fmt) == 4);

inline constexpr std::uint32_t ITC_CMD_SEARCH = 1;
// Key widths, in units of 80 bits.
enum itc_key_size_e : std::uint32_t {
  ITC_KEY_80 = 1,
  ITC_KEY_160 = 2,
  ITC_KEY_320 = 4,
  ITC_KEY_400 = 5,
  ITC_KEY_640 = 8,
};
inline constexpr std::uint32_t ITC_KEY_UNIT_BYTES = 10;
constexpr std::uint32_t itc_key_bytes(std::uint32_t key_size) { return key_size * ITC_KEY_UNIT_BYTES; }
// The key follows word 0, padded at its front to whole words.
constexpr std::uint32_t itc_key_words(std::uint32_t key_size) { return (itc_key_bytes(key_size) + 3) / 4; }
constexpr std::uint32_t itc_request_bytes(std::uint32_t key_size) { return 4 + 4 * itc_key_words(key_size); }
constexpr std::uint32_t itc_key_offset(std::uint32_t key_size) {
  return itc_request_bytes(key_size) - itc_key_bytes(key_size);
}

// Resource 59 takes the range stage's header in front of the request.
inline constexpr std::uint32_t TCAM_ARL_CMD_LOC = 16;
inline constexpr std::uint32_t TCAM_DIRECT_CMD_LOC = 0;
// The ARL header stands this far in front of the key.
inline constexpr std::uint32_t TCAM_ARL_KEY_DISTANCE = 20;

struct tcam_search160_request_st {
  std::uint8_t bytes[24];
  using word_0 = be_bits<0, 0, 32>;
  using keydata4 = be_bits<4, 0, 32>;
  using keydata3 = be_bits<8, 0, 32>;
  using keydata2 = be_bits<12, 0, 32>;
  using keydata1 = be_bits<16, 0, 32>;
  using keydata0 = be_bits<20, 0, 32>;
  using key = be_byte_run<4, 20>;
};
static_assert(sizeof(tcam_search160_request_st) == itc_request_bytes(ITC_KEY_160));

// 400 bits: reserved_3 and keydata12 share the first key word.
struct tcam_search400_request_st {
  std::uint8_t bytes[56];
  using word_0 = be_bits<0, 0, 32>;
  using reserved_3 = be_bits<4, 0, 16>;
  using keydata12 = be_bits<6, 0, 16>;
  using keydata11 = be_bits<8, 0, 32>;
  using keydata0 = be_bits<52, 0, 32>;
  using key = be_byte_run<6, 50>;
};
static_assert(sizeof(tcam_search400_request_st) == itc_request_bytes(ITC_KEY_400));
using tcam_multi_search400_request_st = tcam_search400_request_st;

struct tcam_search640_request_st {
  std::uint8_t bytes[84];
  using word_0 = be_bits<0, 0, 32>;
  using keydata19 = be_bits<4, 0, 32>;
  using keydata0 = be_bits<80, 0, 32>;
  using key = be_byte_run<4, 80>;
};
static_assert(sizeof(tcam_search640_request_st) == itc_request_bytes(ITC_KEY_640));
using tcam_multi_search640_request_st = tcam_search640_request_st;

// The range stage's header: which range configuration applies and where in
// the key the range results go, then the values to test.
struct arl_request_st {
  std::uint8_t bytes[16];
  using word_0 = be_bits<0, 0, 16>;
  using unused = be_bits<0, 0, 2>;
  using config_ptr = be_bits<0, 2, 4>;
  using replacement_ptr = be_bits<0, 6, 8>;
  using reserved_zero = be_bits<1, 6, 2>;
  using range_value_3 = be_bits<2, 0, 16>;
  using range_value_2 = be_bits<4, 0, 32>;
  using range_value_1 = be_bits<8, 0, 32>;
  using range_value_0 = be_bits<12, 0, 32>;
};
static_assert(sizeof(arl_request_st) == 16);

struct tcam_arl_search400_request_st {
  arl_request_st arl;
  tcam_search400_request_st tcam;
};
static_assert(sizeof(tcam_arl_search400_request_st) == 72);
using tcam_arl_multi_search400_request_st = tcam_arl_search400_request_st;

struct tcam_arl_search640_request_st {
  arl_request_st arl;
  tcam_search640_request_st tcam;
};
static_assert(sizeof(tcam_arl_search640_request_st) == 100);
using tcam_arl_multi_search640_request_st = tcam_arl_search640_request_st;

// The answer of a single search, in a cell of 8 bytes.
struct tcam_search_response_st {
  std::uint8_t bytes[4];
  using srch_hit = be_word_bits<0, 31>;
  using hit_addr = be_word_bits<0, 15, 16>;
  using reserved_1 = be_word_bits<0, 0, 15>;
};
static_assert(sizeof(tcam_search_response_st) == 4);

// The answer of a multi search: the second profile's first, then the first
// profile's, whose address is split over the two words.
struct tcam_multi_search_response_st {
  std::uint8_t bytes[8];
  using srch_hit_1 = be_word_bits<0, 31>;
  using hit_addr_1 = be_word_bits<0, 15, 16>;
  using srch_hit_0 = be_word_bits<0, 14>;
  using hit_addr_0h = be_word_bits<0, 0, 14>;
  using hit_addr_0l = be_word_bits<4, 30, 2>;
  using reserved_1 = be_word_bits<4, 0, 30>;
};
static_assert(sizeof(tcam_multi_search_response_st) == 8);
inline constexpr std::uint32_t TCAM_HIT_ADDR_0L_BITS = 2;

// The IGPU's classification request and answer.
struct igpu_resp_match_request_ {
  std::uint8_t bytes[12];
  using user_defined = be_word_bits<0, 16, 16>;
  using first_vlan_pbits = be_word_bits<0, 12, 4>;
  using first_vlan_id = be_word_bits<0, 0, 12>;
  using second_vlan_pbits = be_word_bits<4, 28, 4>;
  using second_vlan_id = be_word_bits<4, 4, 24>;
  using bundle_logical_port_upper = be_word_bits<4, 0, 4>;
  using bundle_logical_port_lower = be_word_bits<8, 24, 8>;
  using frame_type = be_word_bits<8, 16, 8>;
  using reserved_1 = be_word_bits<8, 0, 16>;
};
static_assert(sizeof(igpu_resp_match_request_) == 12);
// Bytes of the request that the match compares: all but reserved_1.
inline constexpr std::uint32_t IGPU_KEY_BYTES = 10;

struct igpu_resp_match_response_ {
  std::uint8_t bytes[8];
  using result = be_word_bits<0, 31>;
  using reserved_1 = be_word_bits<0, 16, 15>;
  using uidb_index = be_word_bits<0, 0, 16>;
  using reserved_2 = be_word_bits<4, 20, 12>;
  using mark_bits = be_word_bits<4, 0, 20>;
};
static_assert(sizeof(igpu_resp_match_response_) == 8);
