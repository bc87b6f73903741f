#include "protected_records.h"

namespace ctrl {

namespace {
constexpr std::uint32_t FORWARD_STATE_PATTERN = 0x8BADF00D;
constexpr std::uint32_t WORD = 4;

model::paddr_t physical(model::npu& n, std::uint32_t addr) { return n.memory().translate(addr); }
}  // namespace

void write_record(model::npu& n, std::uint32_t addr, std::span<const std::uint8_t> contents) {
  n.memory().write(physical(n, addr), contents);
}

void enter_forward_state(model::npu& n, std::uint32_t record, std::uint32_t shadow) {
  protected_record old{};
  n.memory().read(physical(n, record), old);
  write_record(n, shadow, old);
  n.memory().write_u32(physical(n, record + 2 * WORD), FORWARD_STATE_PATTERN);
  n.memory().write_u32(physical(n, record + WORD), shadow);
  n.memory().write_u32(physical(n, record), 0);
}

void leave_forward_state(model::npu& n, std::uint32_t record, const protected_record& contents) {
  write_record(n, record + WORD, std::span(contents).subspan(WORD));
  write_record(n, record, std::span(contents).first(WORD));
}

}  // namespace ctrl
