#include "unbuilt_tail_functions.h"

#include "unbuilt_handlers.h"

#define UNBUILT(name) \
  void name(env_t env, std::uint32_t) { unbuilt_handler_end(env, UNBUILT_##name); }
#include "unbuilt_tail_functions.def"
#undef UNBUILT
