// The fuzz target's corpus as regression tests: every frame kept there, the
// seeds and any input that once broke the parser, passes its checks.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/parser_fuzz_setup.h"

namespace {

TEST(ParserFuzzCorpus, EveryKeptInputPassesTheParsersChecks) {
  fuzz::parser_fixture fixture;
  std::size_t inputs = 0;
  for (const auto& file : std::filesystem::directory_iterator(LC_PARSER_CORPUS)) {
    std::ifstream in(file.path(), std::ios::binary);
    const std::vector<std::uint8_t> data{std::istreambuf_iterator<char>(in), {}};
    if (data.empty()) continue;
    fixture.check(data[0] % fuzz::PORTS, std::span(data).subspan(1));
    ++inputs;
  }
  EXPECT_GT(inputs, 0u);
}

}  // namespace
