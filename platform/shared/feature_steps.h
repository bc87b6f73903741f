// Steps of features on the ways of built code (feature_steps.def).
#pragma once

#include "fwc_types.h"

#define FEATURE_STEP(name, state) void name(env_t env);
#include "feature_steps.def"
#undef FEATURE_STEP
