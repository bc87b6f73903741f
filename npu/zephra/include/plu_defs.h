// Request and response formats of the prefix lookup unit (PLU). A request
// is a key: its first byte is the engine's code, the key space (VRF, bridge
// domain or interface handle) follows, then the addresses, laid out so that
// an address stays as it stood in the packet (from byte 3 on for IP).
#pragma once

#include <cstdint>

#include "be_types.h"

enum plu_key_code_e : std::uint8_t {
  PLU_IPV4_UNICAST = 1,
  PLU_IPV6_UNICAST = 2,
  PLU_IPV4_SG_VRF = 4,
  PLU_IPV6_SG_VRF = 6,
  PLU_L2M4_SG = 8,
  PLU_L2M6_SG = 10,
  PLU_MAC_FWD = 12,
  PLU_MAC_UPD = 13,
  PLU_MAC_COMP = 14,
  PLU_IPV6_LL_UNICAST = 15,
  PLU_SRAM_BUCKET_WRITE = 24,
  PLU_SRAM_BUCKET_READ = 25,
  PLU_CACHE_INVALIDATE = 26,
};

// result_type of an answer that found nothing.
inline constexpr std::uint32_t PLU_RESULT_NO_MATCH = 3;
inline constexpr std::uint32_t PLU_RESULT_MATCH = 0;
// Searches answer 32 bytes; bucket reads and invalidation one cell.
inline constexpr std::uint32_t PLU_SEARCH_RESP_BYTES = 32;
inline constexpr std::uint32_t PLU_BUCKET_RESP_BYTES = 8;
// Bytes of route leaf data the control side gives; the PLU appends the rest.
inline constexpr std::uint32_t PLU_LEAF_DATA_BYTES = 26;

struct plu_ipv4_unicast_key_st {
  std::uint8_t bytes[8];
  using code = be_bits<0, 0, 8>;
  using vrf = be_bits<1, 0, 16>;
  using addr = be_bits<3, 0, 32>;
};
static_assert(sizeof(plu_ipv4_unicast_key_st) == 8);

struct plu_ipv6_unicast_key_st {
  std::uint8_t bytes[20];
  using code = be_bits<0, 0, 8>;
  using vrf = be_bits<1, 0, 16>;
  using addr = be_byte_run<3, 16>;
};
static_assert(sizeof(plu_ipv6_unicast_key_st) == 20);

// Link-local routes by interface handle: the address without its first byte.
struct plu_ipv6_ll_key_st {
  std::uint8_t bytes[20];
  using code = be_bits<0, 0, 8>;
  using ifh = be_bits<1, 0, 32>;
  using addr_tail = be_byte_run<5, 15>;
};
static_assert(sizeof(plu_ipv6_ll_key_st) == 20);

struct plu_ipv4_sg_key_st {
  std::uint8_t bytes[12];
  using code = be_bits<0, 0, 8>;
  using vrf = be_bits<1, 0, 16>;
  using src = be_bits<3, 0, 32>;
  using grp = be_bits<7, 0, 32>;
};
static_assert(sizeof(plu_ipv4_sg_key_st) == 12);

struct plu_ipv6_sg_key_st {
  std::uint8_t bytes[36];
  using code = be_bits<0, 0, 8>;
  using vrf = be_bits<1, 0, 16>;
  using src = be_byte_run<3, 16>;
  using grp = be_byte_run<19, 16>;
};
static_assert(sizeof(plu_ipv6_sg_key_st) == 36);

struct plu_l2m4_sg_key_st {
  std::uint8_t bytes[12];
  using code = be_bits<0, 0, 8>;
  using bd_id = be_bits<1, 0, 24>;
  using src = be_bits<4, 0, 32>;
  using grp = be_bits<8, 0, 32>;
};
static_assert(sizeof(plu_l2m4_sg_key_st) == 12);

struct plu_l2m6_sg_key_st {
  std::uint8_t bytes[36];
  using code = be_bits<0, 0, 8>;
  using bd_id = be_bits<1, 0, 24>;
  using src = be_byte_run<4, 16>;
  using grp = be_byte_run<20, 16>;
};
static_assert(sizeof(plu_l2m6_sg_key_st) == 36);

struct plu_mac_key_st {
  std::uint8_t bytes[12];
  using code = be_bits<0, 0, 8>;
  using bd_id = be_bits<1, 0, 24>;
  using mac = be_byte_run<4, 6>;
  using zero = be_bits<10, 0, 16>;
};
static_assert(sizeof(plu_mac_key_st) == 12);

struct plu_sram_bucket_write_st {
  std::uint8_t bytes[8];
  using code = be_bits<0, 0, 8>;
  using cand_bkt_index = be_word_bits<0, 0, 22>;
  using bucket_data = be_bits<4, 0, 16>;
};
static_assert(sizeof(plu_sram_bucket_write_st) == 8);

struct plu_sram_bucket_read_st {
  std::uint8_t bytes[4];
  using code = be_bits<0, 0, 8>;
  using cand_bkt_index = be_word_bits<0, 0, 22>;
};
static_assert(sizeof(plu_sram_bucket_read_st) == 4);

struct plu_cache_invalidate_st {
  std::uint8_t bytes[4];
  using code = be_bits<0, 0, 8>;
  using bucket_index = be_word_bits<0, 0, 23>;
};
static_assert(sizeof(plu_cache_invalidate_st) == 4);

// plu_resp_leaf_found_response_ (sse_plu_desc_fmt): the leaf of the longest
// match with its prefix length; result_type 3 when nothing matched.
struct plu_result_st {
  std::uint8_t bytes[28];
  using leaf_data_0 = be_bits<0, 0, 32>;
  using leaf_data_1 = be_bits<4, 0, 32>;
  using leaf_data_2 = be_bits<8, 0, 32>;
  using leaf_data_3 = be_bits<12, 0, 32>;
  using leaf_data_4 = be_bits<16, 0, 32>;
  using leaf_data_5 = be_bits<20, 0, 32>;
  using leaf_data_6 = be_bits<24, 0, 16>;
  using leaf_data = be_byte_run<0, PLU_LEAF_DATA_BYTES>;
  using prefix_len = be_bits<26, 0, 8>;
  using result_type = be_bits<27, 6, 2>;
};
static_assert(sizeof(plu_result_st) == 28);
using plu_resp_leaf_found_response_ = plu_result_st;

// The answer of an exact (S, G) search: seven words and 30 bits of leaf,
// then result_type.
struct plu_resp_mc_leaf_found_response_ {
  std::uint8_t bytes[32];
  using leaf_data_0 = be_bits<0, 0, 32>;
  using leaf_data_1 = be_bits<4, 0, 32>;
  using leaf_data_2 = be_bits<8, 0, 32>;
  using leaf_data_3 = be_bits<12, 0, 32>;
  using leaf_data_4 = be_bits<16, 0, 32>;
  using leaf_data_5 = be_bits<20, 0, 32>;
  using leaf_data_6 = be_bits<24, 0, 32>;
  using leaf_data_7 = be_bits<28, 0, 30>;
  using result_type = be_bits<31, 6, 2>;
};
static_assert(sizeof(plu_resp_mc_leaf_found_response_) == 32);

struct plu_cmd_rd_sram_bkt_response_ {
  std::uint8_t bytes[4];
  using bucket = be_bits<0, 0, 16>;
  using reserved_1 = be_bits<2, 0, 16>;
};
static_assert(sizeof(plu_cmd_rd_sram_bkt_response_) == 4);
