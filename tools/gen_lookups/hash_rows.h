// The exact-key tables of the catalogue: their lines in tables.txt
// ([hash_spaces], [hash_tables]), their search rows in lookups.txt, and what
// the generator writes for them.
//
// A search row names a table, optionally with a tag, and its three cells:
//   COMMON_ACL_HASH__ING bucket=0x200 key=0x210 res=0x250 type=<result> live=...
// and gives the identifiers <T>_BUCKET_0, _BUCKET_1, _BUCKET, _KEY and _RES
// (with the row's tag), their operations, and hash_search_part_1..3_ID_<row>.
#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "catalogue.h"

namespace gen {

using line_report = std::function<void(int line, const std::string& what)>;

void parse_hash_space(const std::vector<std::string>& words, int line, catalogue& cat, const line_report& report);
void parse_hash_table(const std::vector<std::string>& words, int line, catalogue& cat, const line_report& report);

// The identifier of a search row's lookup with a suffix: <T>_<suffix>[__<tag>].
std::string hash_row_id(const row& r, const std::string& suffix);
// The identifiers a search row stands for, in the order they are numbered.
std::vector<std::string> hash_row_ids(const row& r);

// Fills l for the search row r of table t; reports each fault through fail.
void resolve_hash_row(const catalogue& cat, const row& r, const hash_table& t, lookup& l,
                      const std::function<void(const std::string&)>& fail);

// The cells a search occupies: bucket, key cells and result.
struct hash_region {
  std::uint32_t begin;
  std::uint32_t bytes;
  const char* what;
};
std::vector<hash_region> hash_regions(const lookup& l);

// lookup_tables.h: the bucket spaces and every table's description.
void emit_hash_tables(std::ostringstream& out, const catalogue& cat);
// lookup_catalogue.h: the operations and the search family of a row.
void emit_hash_search(std::ostringstream& out, const lookup& l);
// lookup_catalogue.cpp: the result slots of a row (bucket, key, result).
void emit_hash_slots(std::ostringstream& out, const lookup& l);
inline constexpr std::size_t HASH_ROW_RESULTS = 3;

}  // namespace gen
