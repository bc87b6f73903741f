// The request templates (request_templates.def) as numbers: RTT_<name> is
// the template's index, table in bit 4 and entry in bits 3..0.
#pragma once

#include <cstdint>

#include "dma_defs.h"

#define REQUEST_TEMPLATE(name, table, entry, response) \
  inline constexpr std::uint32_t RTT_##name = rtt_index(table, entry);
#include "request_templates.def"
#undef REQUEST_TEMPLATE
