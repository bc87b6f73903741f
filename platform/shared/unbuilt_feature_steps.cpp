#include "unbuilt_feature_steps.h"

#include "unbuilt_handlers.h"

#define UNBUILT(name) \
  void name(env_t env) { unbuilt_step_reached(env, UNBUILT_##name); }
#include "unbuilt_feature_steps.def"
#undef UNBUILT
