// The records that lookup results are read as, for the generated catalogue.
#pragma once

#include "dplane/infra/queue.h"
#include "fwc_fwd.h"
#include "fwc_global.h"
#include "fwc_lag.h"
#include "fwc_port.h"
#include "fwc_uidb.h"
#include "npu/zephra/stats.h"
#include "plu_defs.h"
