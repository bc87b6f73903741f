// The traffic manager's output queues of one NPU: which line port each
// queue feeds. Queue ids are handed out lowest first and taken back when
// their queue goes.
#pragma once

#include <cstdint>

#include "ctrl/error.h"
#include "ctrl/index_pool.h"
#include "model/npu.h"

namespace ctrl {

struct queue_added {
  error err = error::none;
  std::uint32_t queue_id = 0;
};

class line_queues {
 public:
  static constexpr std::uint32_t QUEUE_COUNT = 0x10000;  // the line header's 16 bits

  explicit line_queues(model::npu& n) : n_(n), ids_(0, QUEUE_COUNT) {}

  // A free queue that feeds line port `port`. out_of_range for a port beyond
  // the logical ports; table_full when every queue is taken.
  queue_added add(std::uint32_t port);
  // Frames sent to queue_id leave by line port `port`, which replaces what
  // the queue fed. out_of_range for a queue beyond 16 bits or a port beyond
  // the logical ports.
  error map(std::uint32_t queue_id, std::uint32_t port);
  // The queue feeds no port any more. not_found: not in use.
  error remove(std::uint32_t queue_id);

 private:
  model::npu& n_;
  index_pool ids_;
};

}  // namespace ctrl
