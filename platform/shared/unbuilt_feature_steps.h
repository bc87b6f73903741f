// Steps of later features on the ways of built code (unbuilt_feature_steps.def).
#pragma once

#include "fwc_types.h"

#define UNBUILT(name) void name(env_t env);
#include "unbuilt_feature_steps.def"
#undef UNBUILT
