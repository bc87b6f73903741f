// Writing the catalogue as C++.
//   lookup_ids.h        lookup_id_e, the counts of the debug table
//   lookup_tables.h     table addresses, for the program and the control side
//   lookup_catalogue.h  the operations of every lookup
//   lookup_catalogue.cpp  identifier names, the places of cells and slots
#pragma once

#include <string>
#include <vector>

#include "catalogue.h"

namespace gen {

struct outputs {
  std::string ids_header;
  std::string tables_header;
  std::string ops_header;
  std::string source;
};

outputs emit(const catalogue& cat, const std::vector<lookup>& lookups);

}  // namespace gen
