#include "util.h"

#include <cstring>

#include "be_types.h"

namespace {

constexpr std::uint32_t WORD = 4;
constexpr std::uint32_t DWORD = 8;

std::uint32_t whole_units(std::int32_t len, std::uint32_t unit) {
  return len <= 0 ? 0 : (static_cast<std::uint32_t>(len) + unit - 1) / unit * unit;
}

template <std::uint32_t N>
boolean_t equal(const void* p0, const void* p1) {
  return std::memcmp(p0, p1, N) == 0 ? TRUE : FALSE;
}

template <std::size_t N>
std::uint32_t load(const void* p) {
  be_uint<N> v;
  std::memcpy(v.b, p, N);
  return v.get();
}

}  // namespace

void memcpy_words(void* dst, const void* src, std::int32_t len) { std::memcpy(dst, src, whole_units(len, WORD)); }
void memcpy_swords(void* dst, const void* src, std::int32_t len) { memcpy_words(dst, src, len); }
void memcpy_dwords(void* dst, const void* src, std::int32_t len) {
  const std::uint32_t n = whole_units(len, DWORD);
  std::memcpy(dst, src, n == 0 ? DWORD : n);
}

void memcpy_bytes(void* dst, const void* src, std::uint32_t len) { std::memcpy(dst, src, len); }
void memcpy_bytes_unaligned(void* dst, const void* src, std::uint32_t len) { std::memcpy(dst, src, len); }
void memcpy_bytes_3B(void* dst, const void* src) { std::memcpy(dst, src, 3); }
void memcpy_bytes_4B(void* dst, const void* src) { std::memcpy(dst, src, 4); }
void memcpy_bytes_16B(void* dst, const void* src) { std::memcpy(dst, src, 16); }
void memcpy_6B(void* dst, const void* src) { std::memcpy(dst, src, 6); }
void memcpy_16B(void* dst, const void* src) { std::memcpy(dst, src, 16); }

void memcpy_bytes_reverse(void* dst, const void* src, std::uint32_t len) {
  auto* d = static_cast<std::uint8_t*>(dst);
  const auto* s = static_cast<const std::uint8_t*>(src);
  for (std::uint32_t i = len; i-- > 0;) d[i] = s[i];
}
void memcpy_bytes_reverse_cmpr(void* dst, const void* src, std::uint32_t len) { memcpy_bytes_reverse(dst, src, len); }

void memzero_words(void* addr, std::int32_t len) { std::memset(addr, 0, whole_units(len, WORD)); }
void memset_words(void* addr, std::int32_t len, std::uint32_t value) {
  be_u32 word;
  word = value;
  auto* p = static_cast<std::uint8_t*>(addr);
  for (std::uint32_t i = 0; i < whole_units(len, WORD); i += WORD) std::memcpy(p + i, word.b, WORD);
}
void memset_bytes(void* addr, std::uint32_t len, std::uint8_t value) { std::memset(addr, value, len); }

boolean_t compare(const void* p0, const void* p1, std::uint32_t len) {
  return std::memcmp(p0, p1, len) == 0 ? TRUE : FALSE;
}
boolean_t compare_4B(const void* p0, const void* p1) { return equal<4>(p0, p1); }
boolean_t compare_5B(const void* p0, const void* p1) { return equal<5>(p0, p1); }
boolean_t compare_6B(const void* p0, const void* p1) { return equal<6>(p0, p1); }
boolean_t compare_8B(const void* p0, const void* p1) { return equal<8>(p0, p1); }
boolean_t compare_9B(const void* p0, const void* p1) { return equal<9>(p0, p1); }
boolean_t compare_10B(const void* p0, const void* p1) { return equal<10>(p0, p1); }
boolean_t compare_15B(const void* p0, const void* p1) { return equal<15>(p0, p1); }
boolean_t compare_18B(const void* p0, const void* p1) { return equal<18>(p0, p1); }
boolean_t compare_19B(const void* p0, const void* p1) { return equal<19>(p0, p1); }
boolean_t compare_20B(const void* p0, const void* p1) { return equal<20>(p0, p1); }
boolean_t compare_32B(const void* p0, const void* p1) { return equal<32>(p0, p1); }
boolean_t compare_34B(const void* p0, const void* p1) { return equal<34>(p0, p1); }
boolean_t compare_40B(const void* p0, const void* p1) { return equal<40>(p0, p1); }
boolean_t compare_49B(const void* p0, const void* p1) { return equal<49>(p0, p1); }
boolean_t compare_32B_unaligned(const void* p0, const void* p1) { return equal<32>(p0, p1); }
boolean_t compare_34B_unaligned(const void* p0, const void* p1) { return equal<34>(p0, p1); }
boolean_t compare_40B_unaligned(const void* p0, const void* p1) { return equal<40>(p0, p1); }
boolean_t compare_49B_unaligned(const void* p0, const void* p1) { return equal<49>(p0, p1); }

boolean_t bit_test_1B(const void* p, std::uint8_t bits) { return (load<1>(p) & bits) ? TRUE : FALSE; }
boolean_t bit_test_2B(const void* p, std::uint16_t bits) { return (load<2>(p) & bits) ? TRUE : FALSE; }
boolean_t bit_test_4B(const void* p, std::uint32_t bits) { return (load<4>(p) & bits) ? TRUE : FALSE; }
