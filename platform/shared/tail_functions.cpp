// The generated bodies of the placeholder rows of tail_functions.def.
#include "tail_functions.h"

#include "placeholder.h"

#define TAIL_FUNCTION(name, state) \
  LC_IF_PLACEHOLDER(               \
      state, void name(env_t env, std::uint32_t) { unbuilt_handler_end(env, UNBUILT_##name); })
#include "tail_functions.def"
#undef TAIL_FUNCTION
