// Classification requests: TCAM searches through the ITC (resource 59 with
// the range stage's header in front, 63 without) and the IGPU's match
// (resource 80).
#pragma once

#include "dma_request.h"

namespace model {

void execute_tcam(dma_request& r);
void execute_igpu(dma_request& r);

}  // namespace model
