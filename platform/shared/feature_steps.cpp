// The generated bodies of the placeholder rows of feature_steps.def.
#include "feature_steps.h"

#include "placeholder.h"

#define FEATURE_STEP(name, state) \
  LC_IF_PLACEHOLDER(              \
      state, void name(env_t env) { unbuilt_step_reached(env, UNBUILT_##name); })
#include "feature_steps.def"
#undef FEATURE_STEP
