// Names of parameterised tests from their rows' descriptions (`what`):
// letters and digits stay, anything else becomes '_'.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace testkit {

template <class Row>
std::string described(const ::testing::TestParamInfo<Row>& info) {
  std::string name;
  for (const char* p = info.param.what; *p; ++p) name += std::isalnum(static_cast<unsigned char>(*p)) ? *p : '_';
  return name;
}

}  // namespace testkit
