#include "fab_hdr_access.h"
#include "fab_hdr_write.h"

namespace {
constexpr std::size_t SUMMED_WORDS = 15;  // bytes 0..29
constexpr std::size_t LAST_SUMMED_BYTE = 30;
}  // namespace

// Bytes 0..29 as fifteen big-endian words, byte 30 as a plain value; the
// sum folds to 8 bits, and its complement is the checksum.
void dc3_set_checksum(void* fab) {
  const auto* b = static_cast<const std::uint8_t*>(fab);
  std::uint32_t s = 0;
  for (std::size_t i = 0; i < SUMMED_WORDS; ++i) s += (std::uint32_t{b[2 * i]} << 8) | b[2 * i + 1];
  s += b[LAST_SUMMED_BYTE];
  s = (s & 0xFF) + ((s >> 8) & 0xFF) + (s >> 16);
  s = (s & 0xFF) + (s >> 8);
  s += s >> 8;
  dc3_nph_st::dc3_checksum::set(fab_as<dc3_nph_st>(fab), ~s & 0xFF);
}
