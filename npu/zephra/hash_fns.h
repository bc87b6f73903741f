// Table hashes. One operation of the hash unit does all hashing: three
// 32-bit words in (registers 32, 33, 34), one out (register 35), the final
// step of the lookup3 hash. A key of each width is folded into the three
// words by fixed sums, so that the control side that writes a table and the
// program that reads it compute the same value: both fold with hash_fold,
// the program hashes in the unit, the control side and the software NPU
// with hash_unit_final.
#pragma once

#include <cstdint>

#include "fwc_types.h"

// The width selector of generic_hash_func.
enum hash_func_type_en : std::uint32_t {
  HASH_INVALID_FUNC = 0,
  HASH_32B_TO_32B = 1,
  HASH_64B_TO_32B = 2,
  HASH_72B_TO_32B = 3,
  HASH_80B_TO_32B = 4,
  HASH_40B_TO_32B = 5,
  HASH_48B_TO_32B = 6,
  HASH_272B_TO_32B = 7,
  HASH_144B_TO_32B = 8,
  HASH_120B_TO_32B = 9,
  HASH_152B_TO_32B = 10,
  HASH_160B_TO_32B = 11,
  HASH_192B_TO_32B = 12,
  HASH_320B_TO_32B = 13,
  HASH_256B_TO_32B = 14,
  HASH_392B_TO_32B = 15,
};
inline constexpr std::uint32_t HASH_FUNC_TYPE_LAST = HASH_392B_TO_32B;

// The selector of a table's key width; HASH_INVALID_FUNC for a width that no
// fold takes.
constexpr hash_func_type_en hash_func_for_key_bits(std::uint32_t bits) {
  switch (bits) {
    case 32:
      return HASH_32B_TO_32B;
    case 40:
      return HASH_40B_TO_32B;
    case 48:
      return HASH_48B_TO_32B;
    case 64:
      return HASH_64B_TO_32B;
    case 72:
      return HASH_72B_TO_32B;
    case 80:
      return HASH_80B_TO_32B;
    case 120:
      return HASH_120B_TO_32B;
    case 144:
      return HASH_144B_TO_32B;
    case 152:
      return HASH_152B_TO_32B;
    case 160:
      return HASH_160B_TO_32B;
    case 192:
      return HASH_192B_TO_32B;
    case 256:
      return HASH_256B_TO_32B;
    case 272:
      return HASH_272B_TO_32B;
    case 320:
      return HASH_320B_TO_32B;
    case 392:
      return HASH_392B_TO_32B;
    default:
      return HASH_INVALID_FUNC;
  }
}
// What generic_hash_func answers for a selector without a width.
inline constexpr std::uint32_t HASH_FUNC_INVALID_RESULT = 0xFFFFFFFF;

// The three input words of the hash unit.
struct hash_words_st {
  std::uint32_t a;
  std::uint32_t b;
  std::uint32_t c;
};

constexpr std::uint32_t hash_rot(std::uint32_t x, unsigned k) { return (x << k) | (x >> (32 - k)); }

// One line of the lookup3 steps: x ^= y, then x -= y rotated by k.
constexpr void hash_step(std::uint32_t& x, std::uint32_t y, unsigned k) {
  x ^= y;
  x -= hash_rot(y, k);
}

// The final step of lookup3: c after mixing a, b, c. What register 35 answers.
constexpr std::uint32_t hash_unit_final(hash_words_st w) {
  hash_step(w.c, w.b, 14);
  hash_step(w.a, w.c, 11);
  hash_step(w.b, w.a, 25);
  hash_step(w.c, w.b, 16);
  hash_step(w.a, w.c, 4);
  hash_step(w.b, w.a, 14);
  hash_step(w.c, w.b, 24);
  return w.c;
}

// The words of a key of the selector's width; fn_type must name a width.
hash_words_st hash_fold(hash_func_type_en fn_type, const unsigned char* parm);

// The unit's operation: the three registers in, register 35 out.
std::uint32_t hash_3_tuple(std::uint32_t a, std::uint32_t b, std::uint32_t c);

// The hash of a key by selector; HASH_FUNC_INVALID_RESULT for a selector
// without a width.
std::uint32_t generic_hash_func(hash_func_type_en fn_type, unsigned char* parm);

std::uint32_t hash_32b_to_32b(unsigned char* parm);
std::uint32_t hash_40b_to_32b(unsigned char* parm);
std::uint32_t hash_48b_to_32b(unsigned char* parm);
std::uint32_t hash_64b_to_32b(unsigned char* parm);
std::uint32_t hash_72b_to_32b(unsigned char* parm);
std::uint32_t hash_80b_to_32b(unsigned char* parm);
std::uint32_t hash_120b_to_32b(unsigned char* parm);
std::uint32_t hash_144b_to_32b(unsigned char* parm);
std::uint32_t hash_152b_to_32b(unsigned char* parm);
std::uint32_t hash_160b_to_32b(unsigned char* parm);
std::uint32_t hash_192b_to_32b(unsigned char* parm);
std::uint32_t hash_256b_to_32b(unsigned char* parm);
std::uint32_t hash_272b_to_32b(unsigned char* parm);
std::uint32_t hash_320b_to_32b(unsigned char* parm);
std::uint32_t hash_392b_to_32b(unsigned char* parm);
// The platform forms of the first two.
std::uint32_t npu_hash_32b_to_32b(unsigned char* parm);
std::uint32_t npu_hash_64b_to_32b(unsigned char* parm);

// The full software hash for keys of any length: lookup3 over the key's
// whole big-endian words.
std::uint32_t bob_hash(const void* k_in, std::uint32_t length, std::uint32_t seed);
