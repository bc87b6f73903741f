#include "flow_locks.h"

namespace model {

flow_locks::flow_locks(std::uint32_t threads)
    : queues_(ARRIVAL_LOCK + 1), holders_(std::make_unique<holder[]>(threads)) {}

void flow_locks::arrive(std::uint32_t thread) {
  std::lock_guard held(mutex_);
  join_locked(thread, ARRIVAL_LOCK);
}

void flow_locks::convert(std::uint32_t thread, std::uint32_t lock) {
  std::unique_lock held(mutex_);
  if (holders_[thread].lock == lock) return;
  wait_head_locked(held, thread);
  // Leaving the old lock and joining the new one under one hold of the
  // mutex: the packets behind in the old lock stay behind in the new one.
  pass_head_locked(thread);
  join_locked(thread, lock);
}

void flow_locks::wait_turn(std::uint32_t thread) {
  std::unique_lock held(mutex_);
  wait_head_locked(held, thread);
}

void flow_locks::leave(std::uint32_t thread) {
  std::lock_guard held(mutex_);
  pass_head_locked(thread);
}

void flow_locks::join_locked(std::uint32_t thread, std::uint32_t lock) {
  holder& h = holders_[thread];
  queue& q = queues_[lock];
  h.lock = lock;
  h.next = NONE;
  if (q.tail == NONE) {
    q.head = thread;
  } else {
    holders_[q.tail].next = thread;
  }
  q.tail = thread;
}

void flow_locks::wait_head_locked(std::unique_lock<std::mutex>& held, std::uint32_t thread) {
  holder& h = holders_[thread];
  h.turn.wait(held, [&] { return queues_[h.lock].head == thread; });
}

void flow_locks::pass_head_locked(std::uint32_t thread) {
  holder& h = holders_[thread];
  queue& q = queues_[h.lock];
  q.head = h.next;
  if (q.head == NONE) {
    q.tail = NONE;
  } else {
    holders_[q.head].turn.notify_one();
  }
  h.lock = NONE;
  h.next = NONE;
}

}  // namespace model
