// A chassis of software NPUs and the driver that runs them.
//
// Every NPU thread is a host thread running the forwarding program. The
// chassis mutex guards all queues, thread states and records of every NPU;
// each NPU's condition variable wakes its threads waiting for work, the
// chassis's own wakes callers waiting for the threads to start or for the
// chassis to go idle. Table memory has locks of its own and is never touched
// under the chassis mutex; the flow locks of an NPU are taken inside it,
// never around it.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "npu.h"

namespace model {

class chassis {
 public:
  // Every thread of every NPU runs `entry`, the program's thread entry.
  chassis(const std::vector<npu_config>& npus, thread_entry entry);
  ~chassis();
  chassis(const chassis&) = delete;
  chassis& operator=(const chassis&) = delete;

  npu& at(std::size_t i) { return *npus_[i]; }
  std::size_t size() const { return npus_.size(); }

  // Starts every NPU thread and returns when each has set itself up and
  // asked for its first packet.
  void start();
  // Returns when no packet is queued and every thread waits for one.
  void run_until_idle();
  // Ends every thread at its next packet request and joins them.
  void stop();

  // The fabric's map of unicast destinations: VQI (11 bits) to NPU.
  void map_vqi(std::uint32_t vqi, std::uint32_t npu_id);
  void unmap_vqi(std::uint32_t vqi) { map_vqi(vqi, NO_NPU); }
  std::optional<std::uint32_t> npu_of_vqi(std::uint32_t vqi);
  static constexpr std::uint32_t VQI_COUNT = 2048;
  // Its map of fabric groups: FGID (24 bits) to the NPUs that each get a
  // copy. An unmapped group has no NPU.
  void map_fabric_group(std::uint32_t fgid, std::vector<std::uint32_t> npus);
  std::vector<std::uint32_t> npus_of_group(std::uint32_t fgid);
  static constexpr std::uint32_t FGID_COUNT = 1u << 24;

 private:
  friend class npu;
  bool idle_locked() const;
  bool started_locked() const;

  std::mutex mutex_;
  std::condition_variable idle_cv_;
  thread_entry entry_;
  bool stopping_ = false;
  bool started_ = false;
  std::vector<std::unique_ptr<npu>> npus_;
  // Guarded by mutex_; NO_NPU where no NPU serves the VQI.
  static constexpr std::uint32_t NO_NPU = ~0u;
  std::array<std::uint32_t, VQI_COUNT> vqi_npu_;
  std::map<std::uint32_t, std::vector<std::uint32_t>> group_npus_;  // guarded by mutex_
};

}  // namespace model
