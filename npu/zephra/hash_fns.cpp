#include "hash_fns.h"

#include "arch_tie.h"

namespace {

// Added to every fold; the 32-bit form has its own.
constexpr std::uint32_t FOLD_BIAS = 0xDEADBEF7;
constexpr std::uint32_t FOLD_BIAS_32 = 0xDEADBEF3;
constexpr std::uint32_t BOB_INIT = 0xDEADBEEF;
constexpr std::uint32_t WORD_BYTES = 4;

// The key's big-endian values: words at byte 4 * i, halves and bytes at byte n.
struct key_view {
  const unsigned char* p;
  std::uint32_t w(unsigned i) const {
    const unsigned char* q = p + WORD_BYTES * i;
    return (std::uint32_t{q[0]} << 24) | (std::uint32_t{q[1]} << 16) | (std::uint32_t{q[2]} << 8) | q[3];
  }
  std::uint32_t h(unsigned n) const { return (std::uint32_t{p[n]} << 8) | p[n + 1]; }
  std::uint32_t b(unsigned n) const { return p[n]; }
};

constexpr hash_words_st biased(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  return {a + FOLD_BIAS, b + FOLD_BIAS, c + FOLD_BIAS};
}

// lookup3's mix of three words.
void bob_mix(hash_words_st& w) {
  w.a -= w.c;
  w.a ^= hash_rot(w.c, 4);
  w.c += w.b;
  w.b -= w.a;
  w.b ^= hash_rot(w.a, 6);
  w.a += w.c;
  w.c -= w.b;
  w.c ^= hash_rot(w.b, 8);
  w.b += w.a;
  w.a -= w.c;
  w.a ^= hash_rot(w.c, 16);
  w.c += w.b;
  w.b -= w.a;
  w.b ^= hash_rot(w.a, 19);
  w.a += w.c;
  w.c -= w.b;
  w.c ^= hash_rot(w.b, 4);
  w.b += w.a;
}

std::uint32_t hash_of(hash_func_type_en fn_type, unsigned char* parm) {
  const hash_words_st w = hash_fold(fn_type, parm);
  return hash_3_tuple(w.a, w.b, w.c);
}

}  // namespace

// The sums of each width, as fixed by the tables that use them; note the
// 144-bit form takes only the low half of w2, and the 256-, 320- and 392-bit
// forms add w5 to both a and c.
hash_words_st hash_fold(hash_func_type_en fn_type, const unsigned char* parm) {
  const key_view k{parm};
  switch (fn_type) {
    case HASH_32B_TO_32B:
      return {k.w(0) + FOLD_BIAS_32, FOLD_BIAS_32, k.w(0) + FOLD_BIAS_32};
    case HASH_40B_TO_32B:
      return biased(k.w(0), k.b(4), 0);
    case HASH_48B_TO_32B:
      return biased(k.w(0), k.h(4), 0);
    case HASH_64B_TO_32B:
      return biased(k.w(0), k.w(1), 0);
    case HASH_72B_TO_32B:
      return biased(k.w(0), k.w(1), k.b(8));
    case HASH_80B_TO_32B:
      return biased(k.w(0), k.w(1), k.h(8));
    case HASH_120B_TO_32B:
      return biased(k.w(0) + k.h(12), k.w(1) + k.b(14), k.w(2));
    case HASH_144B_TO_32B:
      return biased(k.w(0) + k.w(3), k.w(1) + k.h(16), k.w(2) & 0xFFFF);
    case HASH_152B_TO_32B:
      return biased(k.w(0) + k.w(3), k.w(1) + k.h(16), k.w(2) + k.b(18));
    case HASH_160B_TO_32B:
      return biased(k.w(0) + k.w(3), k.w(1) + k.w(4), k.w(2));
    case HASH_192B_TO_32B:
      return biased(k.w(0) + k.w(3), k.w(1) + k.w(4), k.w(2) + k.w(5));
    case HASH_256B_TO_32B:
      return biased(k.w(0) + k.w(3) + k.w(5), k.w(1) + k.w(4) + k.w(6), k.w(2) + k.w(5) + k.w(7));
    case HASH_272B_TO_32B:
      return biased(k.w(0) + k.w(3) + k.w(6), k.w(1) + k.w(4) + k.w(7), k.w(2) + k.w(5) + k.h(32));
    case HASH_320B_TO_32B:
      return biased(k.w(0) + k.w(3) + k.w(5) + k.w(8), k.w(1) + k.w(4) + k.w(6) + k.w(9), k.w(2) + k.w(5) + k.w(7));
    case HASH_392B_TO_32B:
      return biased(k.w(0) + k.w(3) + k.w(5) + k.w(8) + k.w(11), k.w(1) + k.w(4) + k.w(6) + k.w(9) + k.b(48),
                    k.w(2) + k.w(5) + k.w(7) + k.w(10));
    case HASH_INVALID_FUNC:
      break;
  }
  return {};
}

std::uint32_t hash_3_tuple(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  WDC(a, COP_HASH_A);
  WDC(b, COP_HASH_B);
  WDC(c, COP_HASH_C);
  return RDC(COP_HASH_RESULT);
}

std::uint32_t generic_hash_func(hash_func_type_en fn_type, unsigned char* parm) {
  if (fn_type == HASH_INVALID_FUNC || fn_type > HASH_FUNC_TYPE_LAST) return HASH_FUNC_INVALID_RESULT;
  return hash_of(fn_type, parm);
}

std::uint32_t hash_32b_to_32b(unsigned char* parm) { return hash_of(HASH_32B_TO_32B, parm); }
std::uint32_t hash_40b_to_32b(unsigned char* parm) { return hash_of(HASH_40B_TO_32B, parm); }
std::uint32_t hash_48b_to_32b(unsigned char* parm) { return hash_of(HASH_48B_TO_32B, parm); }
std::uint32_t hash_64b_to_32b(unsigned char* parm) { return hash_of(HASH_64B_TO_32B, parm); }
std::uint32_t hash_72b_to_32b(unsigned char* parm) { return hash_of(HASH_72B_TO_32B, parm); }
std::uint32_t hash_80b_to_32b(unsigned char* parm) { return hash_of(HASH_80B_TO_32B, parm); }
std::uint32_t hash_120b_to_32b(unsigned char* parm) { return hash_of(HASH_120B_TO_32B, parm); }
std::uint32_t hash_144b_to_32b(unsigned char* parm) { return hash_of(HASH_144B_TO_32B, parm); }
std::uint32_t hash_152b_to_32b(unsigned char* parm) { return hash_of(HASH_152B_TO_32B, parm); }
std::uint32_t hash_160b_to_32b(unsigned char* parm) { return hash_of(HASH_160B_TO_32B, parm); }
std::uint32_t hash_192b_to_32b(unsigned char* parm) { return hash_of(HASH_192B_TO_32B, parm); }
std::uint32_t hash_256b_to_32b(unsigned char* parm) { return hash_of(HASH_256B_TO_32B, parm); }
std::uint32_t hash_272b_to_32b(unsigned char* parm) { return hash_of(HASH_272B_TO_32B, parm); }
std::uint32_t hash_320b_to_32b(unsigned char* parm) { return hash_of(HASH_320B_TO_32B, parm); }
std::uint32_t hash_392b_to_32b(unsigned char* parm) { return hash_of(HASH_392B_TO_32B, parm); }
std::uint32_t npu_hash_32b_to_32b(unsigned char* parm) { return hash_32b_to_32b(parm); }
std::uint32_t npu_hash_64b_to_32b(unsigned char* parm) { return hash_64b_to_32b(parm); }

// lookup3's hashword over the key's whole big-endian words.
std::uint32_t bob_hash(const void* k_in, std::uint32_t length, std::uint32_t seed) {
  const key_view k{static_cast<const unsigned char*>(k_in)};
  std::uint32_t words = length / WORD_BYTES;
  const std::uint32_t init = BOB_INIT + words * WORD_BYTES + seed;
  hash_words_st w{init, init, init};
  unsigned i = 0;
  for (; words > 3; words -= 3, i += 3) {
    w.a += k.w(i);
    w.b += k.w(i + 1);
    w.c += k.w(i + 2);
    bob_mix(w);
  }
  if (words == 0) return w.c;
  if (words == 3) w.c += k.w(i + 2);
  if (words >= 2) w.b += k.w(i + 1);
  w.a += k.w(i);
  return hash_unit_final(w);
}
