// The generated bodies of the placeholder rows of handlers.def.
#include "handlers.h"

// A placeholder ignores every parameter but the packet.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#define HANDLER(name, state, ret, params) \
  LC_IF_PLACEHOLDER(                      \
      state, ret name params { return placeholder_handler_end<ret>(env, UNBUILT_##name); })
#include "handlers.def"
#undef HANDLER
