// From rows to lookups: each row's engine, address, cell, slot and
// protection, and the checks a compiler cannot make. A row that breaks a rule
// gets a message naming it and the rule; the layout checks name both lookups
// of an overlap and their live group.
#pragma once

#include <vector>

#include "catalogue.h"

namespace gen {

// The rows of `cat` as lookups, in row order. `cat` must outlive the result.
std::vector<lookup> resolve(const catalogue& cat, errors& errs);

// The identifiers of lookup_id_e in generator order: those of
// identifiers.txt, then the tagged identifiers that rows add.
std::vector<std::string> enum_names(const catalogue& cat);

}  // namespace gen
