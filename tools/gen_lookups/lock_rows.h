// The bitmap locks of the catalogue: the bitmap of each family (tables.txt,
// [lock_bitmaps]), the family of each lock identifier (identifiers.txt,
// [locks family=...]) and the rows of lookups.txt that a lock's users add,
// one for each of its two requests, which may share their cell:
//   MAC_LOCK__TAIL_ING__ACQUIRE cell=0x020 live=...
//   MAC_LOCK__TAIL_ING__RELEASE cell=0x020 live=...
// They give acquire_lock_ID_<lock> and release_lock_ID_<lock>.
#pragma once

#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "catalogue.h"
#include "hash_rows.h"

namespace gen {

// "<family> <first word> <lock number bits>"
void parse_lock_bitmap(const std::vector<std::string>& words, int line, catalogue& cat, const line_report& report);

// Whether row r is a lock row; if so, fills l's lock, family and release.
bool is_lock_row(const catalogue& cat, const row& r, lookup& l);
// Fills l for the lock row r; reports each fault through fail.
void resolve_lock_row(const catalogue& cat, const row& r, lookup& l,
                      const std::function<void(const std::string&)>& fail);
// Each lock with one of its rows has the other too.
void check_lock_pairs(const catalogue& cat, const std::function<void(const row&, const std::string&)>& fail);

// A search row with a lock of its own name gets the writer's part 1, which
// locks the home bucket: only in the space whose first bucket the caller gives.
void link_search_locks(std::vector<lookup>& all, const std::function<void(const row&, const std::string&)>& fail);

// Request bytes of a lock request: the command word, the address, the
// operation and its operand; the old word comes back in the same cell.
inline constexpr std::uint32_t LOCK_REQUEST_BYTES = 16;

// lookup_tables.h: each family's bitmap.
void emit_lock_bitmaps(std::ostringstream& out, const catalogue& cat);
// lookup_catalogue.h: acquire_lock_ID_<lock> or release_lock_ID_<lock>.
void emit_lock_row(std::ostringstream& out, const lookup& l);

}  // namespace gen
