// Small text helpers of the generated code.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace gen {

// "0x" and the value in upper-case hexadecimal, at least `digits` digits.
inline std::string hex(std::uint32_t v, int digits = 3) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%0*X", digits, v);
  return buf;
}

inline std::string upper(std::string s) {
  for (char& c : s) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  return s;
}

}  // namespace gen
