// The model's side of the platform operations.
#pragma once

#include <cstdint>

#include "npu.h"

namespace model {

// Entry of a host thread that plays an NPU thread: it runs the program's
// thread entry, again after each trap, until the thread is stopped.
void run_npu_thread(npu_thread& t, thread_entry entry);
// The NPU thread the calling host thread plays.
npu_thread& current_thread();

// Carries out a DMA command of the calling thread.
void execute_dma(npu_thread& t, std::uint32_t cmd);
// Carries out a request through a request template.
void execute_template(npu_thread& t, std::uint32_t table, std::uint32_t entry, std::uint32_t cmd,
                      std::uint32_t req_cell, std::uint32_t res_cell);

}  // namespace model
