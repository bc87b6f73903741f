#include "line_queues.h"

#include "interfaces.h"

namespace ctrl {

queue_added line_queues::add(std::uint32_t port) {
  if (port > MAX_LINE_PORT) return {error::out_of_range};
  const std::optional<std::uint32_t> queue_id = ids_.take();
  if (!queue_id) return {error::table_full};
  n_.map_queue_port(*queue_id, port);
  return {error::none, *queue_id};
}

error line_queues::map(std::uint32_t queue_id, std::uint32_t port) {
  if (queue_id >= QUEUE_COUNT || port > MAX_LINE_PORT) return error::out_of_range;
  ids_.take_at(queue_id);
  n_.map_queue_port(queue_id, port);
  return error::none;
}

error line_queues::remove(std::uint32_t queue_id) {
  if (!ids_.give(queue_id)) return error::not_found;
  n_.unmap_queue(queue_id);
  return error::none;
}

}  // namespace ctrl
