// Copy, fill, compare and bit-test helpers for the big-endian word layouts
// and the fixed key sizes of the tables. Plain functions over pointers.
#pragma once

#include <cstdint>

#include "fwc_types.h"

// By 4 bytes: len in bytes, rounded up to a multiple of 4; nothing for a
// len at or below 0.
void memcpy_words(void* dst, const void* src, std::int32_t len);
void memcpy_swords(void* dst, const void* src, std::int32_t len);
// By 8 bytes: len rounded up to a multiple of 8; always at least one unit.
void memcpy_dwords(void* dst, const void* src, std::int32_t len);

void memcpy_bytes(void* dst, const void* src, std::uint32_t len);
void memcpy_bytes_unaligned(void* dst, const void* src, std::uint32_t len);
void memcpy_bytes_3B(void* dst, const void* src);
void memcpy_bytes_4B(void* dst, const void* src);
void memcpy_bytes_16B(void* dst, const void* src);
void memcpy_6B(void* dst, const void* src);
void memcpy_16B(void* dst, const void* src);

// Last byte first: a copy to a higher address over its own source.
void memcpy_bytes_reverse(void* dst, const void* src, std::uint32_t len);
void memcpy_bytes_reverse_cmpr(void* dst, const void* src, std::uint32_t len);

// len as for memcpy_words; memset_words stores value as big-endian words.
void memzero_words(void* addr, std::int32_t len);
void memset_words(void* addr, std::int32_t len, std::uint32_t value);
void memset_bytes(void* addr, std::uint32_t len, std::uint8_t value);

// TRUE when equal. The fixed sizes are the key sizes of the hash tables.
boolean_t compare(const void* p0, const void* p1, std::uint32_t len);
boolean_t compare_4B(const void* p0, const void* p1);
boolean_t compare_5B(const void* p0, const void* p1);
boolean_t compare_6B(const void* p0, const void* p1);
boolean_t compare_8B(const void* p0, const void* p1);
boolean_t compare_9B(const void* p0, const void* p1);
boolean_t compare_10B(const void* p0, const void* p1);
boolean_t compare_15B(const void* p0, const void* p1);
boolean_t compare_18B(const void* p0, const void* p1);
boolean_t compare_19B(const void* p0, const void* p1);
boolean_t compare_20B(const void* p0, const void* p1);
boolean_t compare_32B(const void* p0, const void* p1);
boolean_t compare_34B(const void* p0, const void* p1);
boolean_t compare_40B(const void* p0, const void* p1);
boolean_t compare_49B(const void* p0, const void* p1);
boolean_t compare_32B_unaligned(const void* p0, const void* p1);
boolean_t compare_34B_unaligned(const void* p0, const void* p1);
boolean_t compare_40B_unaligned(const void* p0, const void* p1);
boolean_t compare_49B_unaligned(const void* p0, const void* p1);

// TRUE if any of `bits` is set in the big-endian value at p.
boolean_t bit_test_1B(const void* p, std::uint8_t bits);
boolean_t bit_test_2B(const void* p, std::uint16_t bits);
boolean_t bit_test_4B(const void* p, std::uint32_t bits);
