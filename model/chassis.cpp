#include "chassis.h"

#include "platform_ops.h"

namespace model {

chassis::chassis(const std::vector<npu_config>& npus, thread_entry entry) : entry_(entry) {
  vqi_npu_.fill(NO_NPU);
  for (std::uint32_t i = 0; i < npus.size(); ++i) npus_.push_back(std::make_unique<npu>(*this, i, npus[i]));
}

chassis::~chassis() { stop(); }

void chassis::map_vqi(std::uint32_t vqi, std::uint32_t npu_id) {
  std::lock_guard lock(mutex_);
  vqi_npu_.at(vqi) = npu_id;
}

std::optional<std::uint32_t> chassis::npu_of_vqi(std::uint32_t vqi) {
  std::lock_guard lock(mutex_);
  const std::uint32_t id = vqi < VQI_COUNT ? vqi_npu_[vqi] : NO_NPU;
  if (id >= npus_.size()) return std::nullopt;
  return id;
}

void chassis::map_fabric_group(std::uint32_t fgid, std::vector<std::uint32_t> npus) {
  std::lock_guard lock(mutex_);
  group_npus_[fgid] = std::move(npus);
}

std::vector<std::uint32_t> chassis::npus_of_group(std::uint32_t fgid) {
  std::lock_guard lock(mutex_);
  const auto it = group_npus_.find(fgid);
  return it == group_npus_.end() ? std::vector<std::uint32_t>{} : it->second;
}

void chassis::start() {
  if (started_) return;
  started_ = true;
  for (auto& n : npus_) {
    for (std::uint32_t i = 0; i < n->thread_count(); ++i) {
      npu_thread& t = n->thread(i);
      t.host_thread = std::thread([&t, entry = entry_] { run_npu_thread(t, entry); });
    }
  }
  std::unique_lock lock(mutex_);
  idle_cv_.wait(lock, [&] { return started_locked(); });
}

bool chassis::started_locked() const {
  for (const auto& n : npus_) {
    for (std::uint32_t i = 0; i < n->thread_count(); ++i) {
      if (!n->threads_[i]->asked_for_packet) return false;
    }
  }
  return true;
}

bool chassis::idle_locked() const {
  for (const auto& n : npus_) {
    if (!n->idle_locked()) return false;
  }
  return true;
}

void chassis::run_until_idle() {
  start();
  std::unique_lock lock(mutex_);
  idle_cv_.wait(lock, [&] { return idle_locked(); });
}

void chassis::stop() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  for (auto& n : npus_) n->work_cv_.notify_all();
  for (auto& n : npus_) {
    for (std::uint32_t i = 0; i < n->thread_count(); ++i) {
      std::thread& th = n->thread(i).host_thread;
      if (th.joinable()) th.join();
    }
  }
}

}  // namespace model
