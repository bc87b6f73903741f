// The FLB's flow locks of one NPU: the order in which packets pass.
//
// A packet holds one lock number at a time. It arrives holding the arrival
// lock, behind every packet that arrived before it; a conversion moves it to
// another number, and its end (a send or a free) lets it go. At each number
// the packets form one queue, in the order in which they took the number, and
// a packet passes a conversion or its end only from the head of its queue.
// So packets that share a number leave it in the order they came to it, and
// packets of different numbers never wait for one another.
//
// The model makes the thread wait at the ordering point; on the NPU the
// thread goes on and its later FLB commands queue behind the conversion.
// Both give the program the same order of departures.
//
// Concurrency: one mutex guards the queues and every thread's place in
// them. A thread waits for its turn on its own condition variable, and the
// packet that leaves a head wakes only the thread behind it. Lock order: the
// chassis mutex is held when a packet arrives here; nothing here takes the
// chassis mutex, so the two never nest the other way round.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace model {

class flow_locks {
 public:
  // The lock of a packet that has not converted yet: above the program's
  // 16-bit numbers, so that no conversion can name it.
  static constexpr std::uint32_t ARRIVAL_LOCK = 0x10000;
  static constexpr std::uint32_t MAX_PROGRAM_LOCK = 0xFFFF;

  explicit flow_locks(std::uint32_t threads);

  // The packet now on `thread` arrives: it joins the arrival lock. Called in
  // arrival order.
  void arrive(std::uint32_t thread);
  // The packet passes its lock's ordering point and goes on under `lock`;
  // a conversion to the lock it holds keeps its place.
  void convert(std::uint32_t thread, std::uint32_t lock);
  // Blocks until the packet is at the head of its lock.
  void wait_turn(std::uint32_t thread);
  // The packet at the head of its lock leaves: the next one may pass.
  void leave(std::uint32_t thread);

 private:
  static constexpr std::uint32_t NONE = ~0u;
  struct queue {
    std::uint32_t head = NONE;
    std::uint32_t tail = NONE;
  };
  struct holder {
    std::uint32_t lock = NONE;
    std::uint32_t next = NONE;  // the thread behind in the same lock
    std::condition_variable turn;
  };

  void join_locked(std::uint32_t thread, std::uint32_t lock);
  void wait_head_locked(std::unique_lock<std::mutex>& held, std::uint32_t thread);
  void pass_head_locked(std::uint32_t thread);

  std::mutex mutex_;
  std::vector<queue> queues_;          // by lock number, the arrival lock last
  std::unique_ptr<holder[]> holders_;  // by thread
};

}  // namespace model
