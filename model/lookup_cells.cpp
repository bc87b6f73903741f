#include "lookup_cells.h"

#include <cstdio>

namespace model {

namespace {

std::string at(std::uint32_t loc) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%03X", loc);
  return buf;
}

// Cells [first, last) that bytes [loc, loc + size) touch, clipped to the area.
struct span {
  std::uint32_t first;
  std::uint32_t last;
};
span cells_of(std::uint32_t loc, std::uint32_t size, std::uint32_t cell_bytes, std::uint32_t cells) {
  if (size == 0) return {0, 0};
  const std::uint32_t first = loc / cell_bytes;
  const std::uint32_t last = (loc + size + cell_bytes - 1) / cell_bytes;
  return {first < cells ? first : cells, last < cells ? last : cells};
}

}  // namespace

std::string lookup_cells::request(std::uint32_t id, const char* name, std::uint32_t req_loc, std::uint32_t req_size,
                                  std::uint32_t res_loc, std::uint32_t res_size) {
  const span req = cells_of(req_loc, req_size, CELL_BYTES, CELLS);
  const span res = cells_of(res_loc, res_size, CELL_BYTES, CELLS);
  for (const span& s : {req, res}) {
    for (std::uint32_t i = s.first; i < s.last; ++i) {
      const cell& c = cells_[i];
      if (c.name && c.result && !c.read && c.id != id) {
        return std::string(name) + " reuses data memory " + at(i * CELL_BYTES) + ", which holds the unread result of " +
               c.name;
      }
    }
  }
  for (std::uint32_t i = req.first; i < req.last; ++i) cells_[i] = {name, id, false, false};
  for (std::uint32_t i = res.first; i < res.last; ++i) cells_[i] = {name, id, true, false};
  return {};
}

std::string lookup_cells::result(const char* name, std::uint32_t owner_id, const char* owner_name,
                                 std::uint32_t res_loc, std::uint32_t res_size) {
  const span res = cells_of(res_loc, res_size, CELL_BYTES, CELLS);
  for (std::uint32_t i = res.first; i < res.last; ++i) {
    const cell& c = cells_[i];
    const std::string where = "result of " + std::string(name) + " read at " + at(res_loc);
    if (!c.name) return where + " before any request of " + owner_name + " filled it";
    if (c.id != owner_id) {
      return where + (c.result ? ", which holds the result of " : ", which the request of ") + c.name +
             (c.result ? "" : " has overwritten");
    }
  }
  for (std::uint32_t i = res.first; i < res.last; ++i) cells_[i].read = true;
  return {};
}

}  // namespace model
