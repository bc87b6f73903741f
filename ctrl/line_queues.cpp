#include "line_queues.h"

#include "interfaces.h"

namespace ctrl {

namespace {
constexpr std::uint32_t MAX_QUEUE_ID = 0xFFFF;
}

error line_queues::map(std::uint32_t queue_id, std::uint32_t port) {
  if (queue_id > MAX_QUEUE_ID || port > MAX_LINE_PORT) return error::out_of_range;
  n_.map_queue_port(queue_id, port);
  return error::none;
}

}  // namespace ctrl
