// Big-endian record mechanism: the one way every record of the program is
// described. Byte-aligned fields use the alignment-1 value types below; sub-byte
// fields use a be_bits descriptor (byte offset, first bit counted from the most
// significant bit, width), the B.b notation of the field tables. Fields stored
// least significant byte first use le_u16 / le_u32.
//
// Nothing here loads a native integer from record bytes: every access goes
// through bytes, so a record means the same on any host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace be_detail {

template <std::size_t N>
constexpr std::uint64_t load_be(const std::uint8_t* p) {
  std::uint64_t v = 0;
  for (std::size_t i = 0; i < N; ++i) v = (v << 8) | p[i];
  return v;
}

template <std::size_t N>
constexpr void store_be(std::uint8_t* p, std::uint64_t v) {
  for (std::size_t i = N; i-- > 0;) {
    p[i] = static_cast<std::uint8_t>(v);
    v >>= 8;
  }
}

template <std::size_t N>
constexpr std::uint64_t load_le(const std::uint8_t* p) {
  std::uint64_t v = 0;
  for (std::size_t i = N; i-- > 0;) v = (v << 8) | p[i];
  return v;
}

template <std::size_t N>
constexpr void store_le(std::uint8_t* p, std::uint64_t v) {
  for (std::size_t i = 0; i < N; ++i) {
    p[i] = static_cast<std::uint8_t>(v);
    v >>= 8;
  }
}

template <std::size_t N>
using uint_for_bytes =
    std::conditional_t<(N <= 2), std::uint16_t, std::conditional_t<(N <= 4), std::uint32_t, std::uint64_t>>;

}  // namespace be_detail

// An N-byte big-endian unsigned value with alignment 1.
template <std::size_t N>
struct be_uint {
  using value_type = be_detail::uint_for_bytes<N>;
  std::uint8_t b[N];

  constexpr value_type get() const { return static_cast<value_type>(be_detail::load_be<N>(b)); }
  constexpr void set(value_type v) { be_detail::store_be<N>(b, v); }
  constexpr operator value_type() const { return get(); }
  constexpr be_uint& operator=(value_type v) {
    set(v);
    return *this;
  }
};

// An N-byte value stored least significant byte first, alignment 1.
template <std::size_t N>
struct le_uint {
  using value_type = be_detail::uint_for_bytes<N>;
  std::uint8_t b[N];

  constexpr value_type get() const { return static_cast<value_type>(be_detail::load_le<N>(b)); }
  constexpr void set(value_type v) { be_detail::store_le<N>(b, v); }
  constexpr operator value_type() const { return get(); }
  constexpr le_uint& operator=(value_type v) {
    set(v);
    return *this;
  }
};

using be_u16 = be_uint<2>;
using be_u24 = be_uint<3>;
using be_u32 = be_uint<4>;
using be_u64 = be_uint<8>;
using le_u16 = le_uint<2>;
using le_u32 = le_uint<4>;

static_assert(sizeof(be_u24) == 3 && alignof(be_u24) == 1);
static_assert(sizeof(be_u64) == 8 && alignof(be_u64) == 1);

// A sub-byte or unaligned field of a record: Width bits whose first bit lies
// Bit bits below the top of byte Byte. Works on any record type R by its
// object bytes; the record must be large enough to hold the field.
template <std::size_t Byte, unsigned Bit, unsigned Width>
struct be_bits {
  static_assert(Bit < 8, "first bit is counted within its byte");
  static_assert(Width >= 1 && Width <= 32, "fields are at most 32 bits wide");

  static constexpr std::size_t first_byte = Byte;
  static constexpr unsigned first_bit = Bit;
  static constexpr unsigned width = Width;
  static constexpr std::size_t span = (Bit + Width + 7) / 8;  // bytes touched
  static constexpr unsigned shift = static_cast<unsigned>(span * 8 - Bit - Width);
  static constexpr std::uint64_t mask = (std::uint64_t{1} << Width) - 1;
  static constexpr std::size_t end_byte = Byte + span;

  static constexpr std::uint32_t get_raw(const std::uint8_t* rec) {
    return static_cast<std::uint32_t>((be_detail::load_be<span>(rec + Byte) >> shift) & mask);
  }
  static constexpr void set_raw(std::uint8_t* rec, std::uint32_t v) {
    std::uint64_t w = be_detail::load_be<span>(rec + Byte);
    w = (w & ~(mask << shift)) | ((std::uint64_t{v} & mask) << shift);
    be_detail::store_be<span>(rec + Byte, w);
  }

  template <class R>
  static std::uint32_t get(const R& rec) {
    static_assert(std::is_trivially_copyable_v<R> && end_byte <= sizeof(R), "field lies outside the record");
    return get_raw(reinterpret_cast<const std::uint8_t*>(&rec));
  }
  template <class R>
  static void set(R& rec, std::uint32_t v) {
    static_assert(std::is_trivially_copyable_v<R> && end_byte <= sizeof(R), "field lies outside the record");
    set_raw(reinterpret_cast<std::uint8_t*>(&rec), v);
  }
};

// The same field seen from a record that holds the field's record Offset
// bytes in: one description serves a header alone and the header it sits in.
template <class F, std::size_t Offset>
using be_bits_at = be_bits<F::first_byte + Offset, F::first_bit, F::width>;

// A field of Bytes whole bytes at byte Byte, stored least significant byte
// first (the few byte-reversed fields of the fabric header).
template <std::size_t Byte, std::size_t Bytes>
struct le_bytes {
  static_assert(Bytes >= 1 && Bytes <= 4, "little-endian fields are at most 4 bytes wide");
  static constexpr std::size_t first_byte = Byte;
  static constexpr std::size_t end_byte = Byte + Bytes;
  static constexpr std::uint64_t mask = (std::uint64_t{1} << (8 * Bytes)) - 1;

  template <class R>
  static std::uint32_t get(const R& rec) {
    static_assert(std::is_trivially_copyable_v<R> && end_byte <= sizeof(R), "field lies outside the record");
    return static_cast<std::uint32_t>(be_detail::load_le<Bytes>(reinterpret_cast<const std::uint8_t*>(&rec) + Byte));
  }
  template <class R>
  static void set(R& rec, std::uint32_t v) {
    static_assert(std::is_trivially_copyable_v<R> && end_byte <= sizeof(R), "field lies outside the record");
    be_detail::store_le<Bytes>(reinterpret_cast<std::uint8_t*>(&rec) + Byte, v);
  }
};

// A run of Bytes raw bytes at byte Byte (addresses, MAC addresses): the
// field is the bytes themselves, in the order they stand.
template <std::size_t Byte, std::size_t Bytes>
struct be_byte_run {
  static constexpr std::size_t first_byte = Byte;
  static constexpr std::size_t size = Bytes;
  static constexpr std::size_t end_byte = Byte + Bytes;

  template <class R>
  static const std::uint8_t* data(const R& rec) {
    static_assert(std::is_trivially_copyable_v<R> && end_byte <= sizeof(R), "field lies outside the record");
    return reinterpret_cast<const std::uint8_t*>(&rec) + Byte;
  }
  template <class R>
  static std::uint8_t* data(R& rec) {
    static_assert(std::is_trivially_copyable_v<R> && end_byte <= sizeof(R), "field lies outside the record");
    return reinterpret_cast<std::uint8_t*>(&rec) + Byte;
  }
};

// A bit of a 32-bit big-endian word at byte offset WordByte, by its bit number
// counted from the least significant bit (the numbering of the flag tables).
template <std::size_t WordByte, unsigned BitNo, unsigned Width = 1>
using be_word_bits = be_bits<WordByte + (31 - (BitNo + Width - 1)) / 8, (31 - (BitNo + Width - 1)) % 8, Width>;

// The mask, within the 32-bit big-endian word at byte WordByte, of the given
// fields: lets a whole flag word be kept or cleared in one operation.
template <std::size_t WordByte, class... F>
constexpr std::uint32_t be_word_mask() {
  std::uint8_t rec[WordByte + 4] = {};
  (F::set_raw(rec, static_cast<std::uint32_t>(F::mask)), ...);
  return static_cast<std::uint32_t>(be_detail::load_be<4>(rec + WordByte));
}
