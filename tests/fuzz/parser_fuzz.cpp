// libFuzzer target of the line parser: any bytes, as a frame on one of four
// ports (by the first byte), must give a header without a fault that keeps
// every promise of parser_promises.h; a broken one traps.
#include <cstddef>
#include <cstdint>
#include <span>

#include "fuzz/parser_fuzz_setup.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static fuzz::parser_fixture fixture;
  fixture.check(data[0] % fuzz::PORTS, std::span(data + 1, size - 1));
  return 0;
}
