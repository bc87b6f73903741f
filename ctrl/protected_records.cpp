#include "protected_records.h"

namespace ctrl {

namespace {
constexpr std::uint32_t FORWARD_STATE_PATTERN = 0x8BADF00D;
constexpr std::uint32_t WORD = 4;

model::paddr_t physical(model::npu& n, std::uint32_t addr) { return n.memory().translate(addr); }

// Every write of the control side drops the TLU's cached copies of what it
// changed, as the control plane's invalidate does on the NPU.
void write_word(model::npu& n, std::uint32_t addr, std::uint32_t v) {
  n.memory().write_u32(physical(n, addr), v);
  n.tlu_cache().invalidate_range(physical(n, addr), WORD);
}
}  // namespace

void write_record(model::npu& n, std::uint32_t addr, std::span<const std::uint8_t> contents) {
  n.memory().write(physical(n, addr), contents);
  n.tlu_cache().invalidate_range(physical(n, addr), contents.size());
}

void enter_forward_state(model::npu& n, std::uint32_t record, std::uint32_t shadow) {
  protected_record old{};
  n.memory().read(physical(n, record), old);
  write_record(n, shadow, old);
  write_word(n, record + 2 * WORD, FORWARD_STATE_PATTERN);
  write_word(n, record + WORD, shadow);
  write_word(n, record, 0);
}

void leave_forward_state(model::npu& n, std::uint32_t record, const protected_record& contents) {
  write_record(n, record + WORD, std::span(contents).subspan(WORD));
  write_record(n, record, std::span(contents).first(WORD));
}

}  // namespace ctrl
