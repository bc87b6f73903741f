// The NPU clock behind registers 132 (seconds) and 133 (low word). Tests set
// it, and can make it jump after a given number of reads, so that the seconds
// change between two reads of one time stamp.
#pragma once

#include <cstdint>
#include <mutex>

namespace model {

class npu_clock {
 public:
  void set(std::uint32_t seconds, std::uint32_t low) {
    std::lock_guard lock(mutex_);
    seconds_ = seconds;
    low_ = low;
    reads_until_jump_ = 0;
  }
  // After `reads` more register reads, the clock shows (seconds, low).
  void jump_after_reads(std::uint32_t reads, std::uint32_t seconds, std::uint32_t low) {
    std::lock_guard lock(mutex_);
    reads_until_jump_ = reads;
    jump_seconds_ = seconds;
    jump_low_ = low;
  }
  std::uint32_t read_seconds() { return read(true); }
  std::uint32_t read_low() { return read(false); }

 private:
  std::uint32_t read(bool seconds) {
    std::lock_guard lock(mutex_);
    const std::uint32_t v = seconds ? seconds_ : low_;
    if (reads_until_jump_ > 0 && --reads_until_jump_ == 0) {
      seconds_ = jump_seconds_;
      low_ = jump_low_;
    }
    return v;
  }

  std::mutex mutex_;
  std::uint32_t seconds_ = 0;
  std::uint32_t low_ = 0;
  std::uint32_t reads_until_jump_ = 0;
  std::uint32_t jump_seconds_ = 0;
  std::uint32_t jump_low_ = 0;
};

}  // namespace model
