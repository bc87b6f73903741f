// The traffic manager's output queues: which line port each queue feeds.
#pragma once

#include <cstdint>

#include "error.h"
#include "model/npu.h"

namespace ctrl {

class line_queues {
 public:
  explicit line_queues(model::npu& n) : n_(n) {}

  // Frames sent to queue_id (the line header's 16 bits) leave by line port
  // `port`. out_of_range for a queue beyond 16 bits or a port beyond the
  // logical ports.
  error map(std::uint32_t queue_id, std::uint32_t port);

 private:
  model::npu& n_;
};

}  // namespace ctrl
