// A reader-writer lock for tables that NPU threads search at packet rate and
// the control side changes now and then (the search engines' tables).
//
// Readers never touch a shared cache line for writing: each announces itself
// in a slot of its own (the NPU thread's index picks it), then looks at the
// writer flag. A writer raises the flag, then waits until every slot is
// empty. Both steps are sequentially consistent, so of a reader and a writer
// that start together at least one sees the other: either the reader sees
// the flag, steps out of its slot and waits for the writer to finish, or the
// writer sees the slot and waits for the reader. A reader's search thus runs
// with no writer inside, and a writer's change with no reader inside; the
// tables behind the lock are plain data.
//
// The release of a slot (release) and the lowering of the flag (release)
// pair with the writer's and the reader's acquire loads, so each side sees
// everything the other did before it left. Writers queue on a mutex among
// themselves. A waiting writer holds readers off, so a stream of searches
// cannot starve the control side; a reader waits at most one change.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>

namespace model {

class read_mostly_lock {
 public:
  static constexpr std::uint32_t SLOTS = 64;

  class reader {
   public:
    reader(const read_mostly_lock& lock, std::uint32_t slot) : count_(lock.slots_[slot % SLOTS].readers) {
      for (;;) {
        count_.fetch_add(1, std::memory_order_seq_cst);
        if (!lock.writing_.load(std::memory_order_seq_cst)) return;
        count_.fetch_sub(1, std::memory_order_release);
        while (lock.writing_.load(std::memory_order_acquire)) std::this_thread::yield();
      }
    }
    ~reader() { count_.fetch_sub(1, std::memory_order_release); }
    reader(const reader&) = delete;
    reader& operator=(const reader&) = delete;

   private:
    std::atomic<std::uint32_t>& count_;
  };

  class writer {
   public:
    explicit writer(read_mostly_lock& lock) : lock_(lock), queue_(lock.writers_) {
      lock_.writing_.store(true, std::memory_order_seq_cst);
      for (const slot& s : lock_.slots_) {
        while (s.readers.load(std::memory_order_seq_cst) != 0) std::this_thread::yield();
      }
    }
    ~writer() { lock_.writing_.store(false, std::memory_order_release); }
    writer(const writer&) = delete;
    writer& operator=(const writer&) = delete;

   private:
    read_mostly_lock& lock_;
    std::lock_guard<std::mutex> queue_;
  };

 private:
  struct alignas(64) slot {
    mutable std::atomic<std::uint32_t> readers{0};
  };
  std::array<slot, SLOTS> slots_{};
  alignas(64) std::atomic<bool> writing_{false};
  std::mutex writers_;
};

}  // namespace model
