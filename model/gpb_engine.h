// The buffer engine's head allocation (GPB): a thread asks for one 128-byte
// block of head space at a time, below its packet memory. The engine grants
// every request unless a test has limited the grants; a refusal answers
// with a non-zero ack.
//
// Concurrency: the engine's counters are atomics; a limit set while threads
// ask applies from their next request.
#pragma once

#include <atomic>
#include <cstdint>

namespace model {

struct npu_thread;

class gpb_engine {
 public:
  // Grants n more blocks, then refuses every request.
  void limit_grants(std::uint32_t n);
  void grant_all();
  // Requests received, granted or not.
  std::uint64_t requests() const { return requests_.load(); }

  // Decides one request: true if the block is granted.
  bool decide();

 private:
  static constexpr std::int64_t UNLIMITED = -1;
  std::atomic<std::int64_t> grants_left_{UNLIMITED};
  std::atomic<std::uint64_t> requests_{0};
};

// Whether a DMA resource is one of the buffer engine's head allocators.
bool is_gpb_resource(std::uint32_t resource);
// Serves a head allocation request of thread t.
void execute_gpb(npu_thread& t, std::uint32_t resource, std::uint32_t req_loc, std::uint32_t resp_loc,
                 std::uint32_t resp_bytes);

}  // namespace model
