// Distribution headers as the distributor writes them, field by field through
// the program's own descriptors.
#pragma once

#include <array>
#include <cstdint>

#include "dist_hdr.h"

namespace model {

class dist_hdr_builder {
 public:
  // A packet from a line port with a valid vector.
  static dist_hdr_builder line(std::uint32_t vector);
  // A packet from the fabric.
  static dist_hdr_builder fabric();
  // Any distribution format.
  static dist_hdr_builder format(std::uint32_t dst_format);

  template <class F>
  dist_hdr_builder& set(std::uint32_t v) {
    F::set(hdr_, v);
    return *this;
  }
  std::array<std::uint8_t, 32> bytes() const;

 private:
  dist_hdr_line_st hdr_{};
};

}  // namespace model
