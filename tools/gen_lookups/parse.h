// Reading the three descriptions. Each parser adds what it reads to the
// catalogue and appends one message per fault, "file:line: what".
#pragma once

#include <optional>
#include <string_view>

#include "catalogue.h"

namespace gen {

// The request template table, REQUEST_TEMPLATE(name, table, entry, response)
// rows; read before the identifiers, whose engines name its templates.
void parse_request_templates(std::string_view text, const std::string& file, catalogue& cat, errors& errs);
void parse_identifiers(std::string_view text, const std::string& file, catalogue& cat, errors& errs);
void parse_tables(std::string_view text, const std::string& file, catalogue& cat, errors& errs);
void parse_lookups(std::string_view text, const std::string& file, catalogue& cat, errors& errs);

// A decimal or 0x-hexadecimal 32-bit number.
std::optional<std::uint32_t> number_of(const std::string& s);

}  // namespace gen
