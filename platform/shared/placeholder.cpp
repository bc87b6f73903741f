#include "placeholder.h"

#include "dma_common.h"
#include "dplane/infra/drop.h"
#include "dplane/infra/ps.h"

namespace {

constexpr const char* names[] = {
#define PLACEHOLDER_ROW(name) #name,
#include "placeholder_rows.def"
#undef PLACEHOLDER_ROW
};

// The last cell of the request area; nothing else is live when a packet ends here.
constexpr std::uint32_t UNBUILT_REQ_CELL = 0x3F0;

}  // namespace

const char* unbuilt_handler_name(std::uint32_t id) { return id < UNBUILT_HANDLER_COUNT ? names[id] : nullptr; }

void unbuilt_handler_end(env_t env, unbuilt_handler_e id) {
  common_flags_st::do_multipass::set(*ps_put_mod_common_flags(env), 0);
  unbuilt_step_reached(env, id);
  drop_packet_no_counter(env);
}

void unbuilt_step_reached(env_t env, unbuilt_handler_e id) {
  dma_cell_words(env, UNBUILT_REQ_CELL)[0] = id;
  dma_initiate(env, dma_build_cmd(RES_UNBUILT_HANDLER, UNBUILT_REQ_CELL, 4, 0, 0));
}
