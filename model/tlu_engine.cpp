#include "tlu_engine.h"

#include <algorithm>
#include <optional>

#include "tlu_defs.h"

namespace model {

namespace {

constexpr std::uint32_t PAGED_WORD_LOW_BITS = 3;

// Bytes a modulus command reads, by the high nibble of its command byte.
std::optional<std::uint32_t> mod_read_bytes(std::uint32_t cmd) {
  switch (cmd >> 4) {
    case 0:
      return 0;
    case TLU_MOD_READ_4B >> 4:
      return 4;
    case TLU_MOD_READ_16B >> 4:
      return 16;
    case TLU_MOD_READ_32B >> 4:
      return 32;
    default:
      return std::nullopt;
  }
}

// The address of the member `rem` records after the one word 1 names.
std::optional<std::uint32_t> member_address(dma_request& r, std::uint32_t cmd, std::uint32_t rem,
                                            std::uint32_t record_bytes) {
  const std::uint32_t w1 = r.word(1);
  if (!(cmd & TLU_MOD_PAGED)) return w1 + rem * record_bytes;
  return r.owner().pages().paged_address(w1, rem);
}

// Word 2 the denominator, word 3 the numerator. The answer is the remainder
// and quotient if asked for, then the chosen member's record.
void modulus(dma_request& r) {
  const std::uint32_t cmd = r.word(0);
  const std::uint32_t denom = r.word(2);
  const std::uint32_t num = r.word(3);
  const auto read_bytes = mod_read_bytes(cmd);
  if (!read_bytes) return r.breach("TLU modulus command " + std::to_string(cmd) + " with a read size nothing serves");
  if (denom == 0) return r.breach("TLU modulus command by a denominator of 0");
  const std::uint32_t header = (cmd & TLU_MOD_RETURN_RESULT) ? sizeof(tlu_long_div_rmr_response_) : 0;
  if (r.cmd().resp_bytes < header + *read_bytes) {
    return r.breach("TLU modulus command " + std::to_string(cmd) + " with a response smaller than its answer");
  }
  const std::uint32_t rem = num % denom;
  const auto member = member_address(r, cmd, rem, *read_bytes);
  if (!member) return r.breach("TLU modulus read through a table page descriptor that is not set");
  std::uint8_t* resp = r.response();
  if (header) {
    auto& answer = *reinterpret_cast<tlu_long_div_rmr_response_*>(resp);
    tlu_long_div_rmr_response_::mod_rem::set(answer, rem);
    tlu_long_div_rmr_response_::mod_quot::set(answer, num / denom);
  }
  tlu_read_virtual(r.owner(), *member, {resp + header, *read_bytes}, !(cmd & TLU_MOD_NO_ALLOCATE));
}

void translate(dma_request& r) {
  const paddr_t p = r.owner().memory().translate(r.word(1));
  if (std::uint8_t* resp = r.response()) {
    auto& answer = *reinterpret_cast<tlu_long_tmulpa_response_*>(resp);
    tlu_long_tmulpa_response_::ppnh::set(answer, static_cast<std::uint32_t>(p >> 32));
    tlu_long_tmulpa_response_::ppnl::set(answer, static_cast<std::uint32_t>(p));
  }
}

// A descriptor that is not set answers with the descriptor error bit.
void translate_paged(dma_request& r) {
  const std::uint32_t w1 = r.word(1);
  const auto vaddr = r.owner().pages().paged_address(w1);
  std::uint8_t* resp = r.response();
  if (!resp) return;
  tlu_long_tps_lpa_response_ out{};
  if (!vaddr) {
    tlu_long_tps_lpa_response_::tpde::set(out, 1);
  } else {
    const paddr_t p = r.owner().memory().translate(*vaddr);
    tlu_long_tps_lpa_response_::m40h::set(out, static_cast<std::uint32_t>(p >> 32) & 0xFF);
    tlu_long_tps_lpa_response_::m40l::set(out, static_cast<std::uint32_t>(p) >> PAGED_WORD_LOW_BITS);
  }
  std::copy_n(out.bytes, std::min<std::size_t>(sizeof out.bytes, r.cmd().resp_bytes), resp);
}

}  // namespace

void tlu_read_virtual(npu& n, std::uint32_t vaddr, std::span<std::uint8_t> out, bool allocate) {
  n.tlu_cache().read(n.memory().translate(vaddr), out, allocate);
}

void execute_tlu_read(dma_request& r) {
  const std::uint32_t index = r.cmd().resource - RES_TLU_READ_4B;
  const std::uint32_t size = 4u << (index % TLU_READ_NO_ALLOCATE_OFFSET);
  const auto vaddr = r.owner().pages().address_of(r.word(0));
  if (!vaddr) {
    return r.breach("TLU read through table page descriptor " +
                    std::to_string(page_descriptors::descriptor_of(r.word(0))) + ", which is not set");
  }
  if (std::uint8_t* resp = r.response()) {
    const bool allocate = index < TLU_READ_NO_ALLOCATE_OFFSET;
    tlu_read_virtual(r.owner(), *vaddr, {resp, std::min(size, r.cmd().resp_bytes)}, allocate);
  }
}

void execute_tlu_invalidate(dma_request& r) {
  r.owner().tlu_cache().invalidate((paddr_t{r.word(0) >> 24} << 32) | r.word(1));
  r.response();
}

bool is_tlu_command(std::uint32_t word0) {
  return word0 == TLU_CMD_TMU_LPA || word0 == TLU_CMD_TMU_LPA_PAGED || word0 == (word0 & TLU_MOD_CMD_MASK);
}

void execute_tlu_command(dma_request& r) {
  const std::uint32_t w0 = r.word(0);
  if (w0 == TLU_CMD_TMU_LPA) return translate(r);
  if (w0 == TLU_CMD_TMU_LPA_PAGED) return translate_paged(r);
  modulus(r);
}

}  // namespace model
