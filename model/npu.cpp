#include "npu.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <stdexcept>
#include <utility>

#include "chassis.h"
#include "flb_defs.h"

namespace model {

namespace {
// What the rest of a packet-ending response holds: the program must not
// rely on it.
constexpr std::uint8_t RESPONSE_POISON = 0xDB;
}  // namespace

const char* packet_end_name(packet_end end) {
  switch (end) {
    case packet_end::freed:
      return "freed";
    case packet_end::sent:
      return "sent";
    case packet_end::contract_breach:
      return "contract breach";
  }
  return "?";
}

npu::npu(chassis& owner, std::uint32_t id, const npu_config& cfg) : chassis_(owner), id_(id), flow_order_(cfg.threads) {
  for (std::uint32_t i = 0; i < cfg.threads; ++i) {
    auto t = std::make_unique<npu_thread>();
    t->owner = this;
    t->index = i;
    t->identity = i;
    t->random.seed(static_cast<std::mt19937::result_type>(cfg.random_seed + i));
    threads_.push_back(std::move(t));
  }
}

std::uint64_t npu::enqueue(arriving_packet pkt) {
  std::lock_guard lock(chassis_.mutex_);
  const std::uint64_t seq = next_seq_++;
  queue_.emplace_back(seq, std::move(pkt));
  work_cv_.notify_one();
  return seq;
}

std::uint64_t npu::receive_line_frame(std::uint32_t port, std::vector<std::uint8_t> frame) {
  if (frame.size() > MAX_LINE_FRAME_BYTES) {
    throw std::length_error("a line frame of " + std::to_string(frame.size()) + " bytes; a packet holds at most " +
                            std::to_string(MAX_LINE_FRAME_BYTES));
  }
  arriving_packet pkt;
  pkt.dist_hdr = parser_.parse(memory_, port, frame);
  pkt.bytes = std::move(frame);
  return enqueue(std::move(pkt));
}

std::vector<packet_outcome> npu::take_outcomes() {
  std::lock_guard lock(chassis_.mutex_);
  return std::exchange(outcomes_, {});
}

void npu::map_queue_port(std::uint32_t queue_id, std::uint32_t port) {
  std::lock_guard lock(chassis_.mutex_);
  queue_ports_[queue_id] = port;
}

void npu::unmap_queue(std::uint32_t queue_id) {
  std::lock_guard lock(chassis_.mutex_);
  queue_ports_.erase(queue_id);
}

std::optional<std::uint32_t> npu::port_of_queue(std::uint32_t queue_id) {
  std::lock_guard lock(chassis_.mutex_);
  const auto it = queue_ports_.find(queue_id);
  if (it == queue_ports_.end()) return std::nullopt;
  return it->second;
}

std::uint64_t npu::placeholder_count(std::int32_t placeholder) const {
  std::lock_guard lock(chassis_.mutex_);
  auto it = placeholder_counts_.find(placeholder);
  return it == placeholder_counts_.end() ? 0 : it->second;
}

std::vector<std::string> npu::log() const {
  std::lock_guard lock(chassis_.mutex_);
  return log_;
}

std::uint32_t npu::monitor_calls(std::uint32_t counter) const {
  std::lock_guard lock(chassis_.mutex_);
  auto it = monitor_calls_.find(counter);
  return it == monitor_calls_.end() ? 0 : it->second;
}

void npu::run_on_thread(std::uint32_t thread, std::function<void()> fn) {
  std::packaged_task<void()> task(std::move(fn));
  std::future<void> done = task.get_future();
  {
    std::lock_guard lock(chassis_.mutex_);
    threads_.at(thread)->tasks.emplace_back([&task] { task(); });
  }
  chassis_.start();
  work_cv_.notify_all();
  done.get();
}

bool npu::idle_locked() const {
  if (!queue_.empty()) return false;
  for (const auto& t : threads_) {
    if (!t->waiting || !t->tasks.empty()) return false;
  }
  return true;
}

// Outcomes of packets that share a flow lock are recorded in their order.
void npu::finish_packet(npu_thread& t) {
  if (!t.holds_packet) return;
  flow_order_.wait_turn(t.index);
  {
    std::lock_guard lock(chassis_.mutex_);
    outcomes_.push_back(std::move(t.current));
    t.holds_packet = false;
  }
  flow_order_.leave(t.index);
}

void npu::note_placeholder(npu_thread& t, std::int32_t placeholder) {
  t.current.placeholder = placeholder;
  std::lock_guard lock(chassis_.mutex_);
  ++placeholder_counts_[placeholder];
}

void npu::note_monitor(std::uint32_t counter) {
  std::lock_guard lock(chassis_.mutex_);
  ++monitor_calls_[counter];
}

// Blocks the thread until a packet is assigned, then lays the packet out as
// the distributor does: header at data memory 0 (the rest of the 128-byte
// response poisoned), bytes at packet memory + 160 of the next buffer.
void npu::wait_for_packet(npu_thread& t) {
  std::pair<std::uint64_t, arriving_packet> next;
  {
    std::unique_lock lock(chassis_.mutex_);
    for (;;) {
      t.waiting = true;
      t.asked_for_packet = true;
      chassis_.idle_cv_.notify_all();
      work_cv_.wait(lock, [&] { return chassis_.stopping_ || !queue_.empty() || !t.tasks.empty(); });
      t.waiting = false;
      if (chassis_.stopping_) throw thread_stop{};
      if (t.tasks.empty()) break;
      std::function<void()> task = std::move(t.tasks.front());
      t.tasks.pop_front();
      lock.unlock();
      task();
      lock.lock();
    }
    next = std::move(queue_.front());
    queue_.pop_front();
    flow_order_.arrive(t.index);
  }
  arriving_packet& pkt = next.second;
  std::memcpy(t.dmem.data(), pkt.dist_hdr.data(), DIST_HDR_BYTES);
  std::memset(t.dmem.data() + DIST_HDR_BYTES, RESPONSE_POISON, PKT_END_RESPONSE_BYTES - DIST_HDR_BYTES);
  t.current_buf ^= 1;
  const std::size_t len = std::min<std::size_t>(pkt.bytes.size(), MAX_PACKET_BYTES);
  if (len > 0) std::memcpy(t.pkt_buf() + PKT_BUF_HEAD_ROOM + PKT_START_OFFSET, pkt.bytes.data(), len);
  t.holds_packet = true;
  t.buf_queries_since_arrival = 0;
  t.lookups.clear();
  t.current = packet_outcome{};
  t.current.seq = next.first;
  t.current.npu = id_;
  t.current.thread = t.index;
  t.current.dist_hdr = pkt.dist_hdr;
}

// A breach of the platform contract. Debug builds stop at once with the name
// of what broke; release builds record it in the log and on the packet.
void npu::breach(npu_thread& t, const std::string& what) {
  const std::string msg = "npu " + std::to_string(id_) + " thread " + std::to_string(t.index) + ": " + what;
#ifndef NDEBUG
  std::fprintf(stderr, "model contract breach: %s\n", msg.c_str());
  std::abort();
#else
  t.current.end = packet_end::contract_breach;
  t.current.note = what;
  std::lock_guard lock(chassis_.mutex_);
  log_.push_back(msg);
#endif
}

}  // namespace model
