// Which lookup owns each 16-byte cell of a thread's request and result area.
//
// Debug builds of the program report every lookup request (its request cell
// and result slot) and every result read. A read through a lookup whose
// request did not fill the slot, or a request into a cell that still holds a
// result nobody has read, is a breach that names both lookups. Only lookups
// with a typed result make a slot live; a request that only borrows a cell
// leaves it free once it is issued.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace model {

class lookup_cells {
 public:
  // A new packet or pass: no cell holds a result.
  void clear() { cells_ = {}; }

  // Each returns what broke, or an empty string.
  std::string request(std::uint32_t id, const char* name, std::uint32_t req_loc, std::uint32_t req_size,
                      std::uint32_t res_loc, std::uint32_t res_size);
  std::string result(const char* name, std::uint32_t owner_id, const char* owner_name, std::uint32_t res_loc,
                     std::uint32_t res_size);

 private:
  static constexpr std::uint32_t CELL_BYTES = 16;
  static constexpr std::uint32_t CELLS = 64;  // the first 1024 bytes of data memory

  struct cell {
    const char* name = nullptr;  // lookup whose request wrote it last; null: none this pass
    std::uint32_t id = 0;
    bool result = false;  // holds that lookup's result
    bool read = false;    // the result has been read
  };

  std::array<cell, CELLS> cells_{};
};

}  // namespace model
