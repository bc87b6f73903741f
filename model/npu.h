// One software NPU: its table memory, statistics, registers, clock, threads
// and the queue of packets waiting for a thread.
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "clock.h"
#include "flow_locks.h"
#include "gpb_engine.h"
#include "igpu_engine.h"
#include "line_parser.h"
#include "lookup_cells.h"
#include "packet_io.h"
#include "page_descriptors.h"
#include "plu_engine.h"
#include "stats_memory.h"
#include "table_memory.h"
#include "tcam_engine.h"
#include "thread_memory.h"
#include "tlu_cache.h"

namespace model {

class chassis;
class npu;

inline constexpr std::uint32_t MAX_PACKET_BYTES = 16384;
inline constexpr std::uint32_t PKT_BUF_SIZE = PKT_BUF_HEAD_ROOM + PKT_START_OFFSET + MAX_PACKET_BYTES;
// The distribution header's length field has 14 bits.
inline constexpr std::uint32_t MAX_LINE_FRAME_BYTES = 16383;

// A packet buffer, aligned to 256 bytes as the NPU's are: the packet memory
// start, 4096 bytes in, is a multiple of 256.
struct packet_buffer {
  alignas(256) std::array<std::uint8_t, PKT_BUF_SIZE> bytes{};
  std::uint8_t* data() { return bytes.data(); }
  static constexpr std::size_t size() { return PKT_BUF_SIZE; }
};

// Thrown inside a blocking packet request to end a thread; the program never
// catches it, so it unwinds to the thread's entry.
struct thread_stop {};
// Thrown when the program traps: the thread's packet ends as a breach of the
// contract and the thread starts over, as the NPU restarts a trapped thread.
struct thread_trap {};

// One NPU thread: its own memories and the registers that hold thread state.
struct npu_thread {
  npu* owner = nullptr;
  std::uint32_t index = 0;
  std::uint32_t identity = 0;

  alignas(64) std::array<std::uint8_t, DMEM_SIZE> dmem{};
  alignas(64) std::array<std::uint8_t, TLM_SIZE> spill{};
  // Two packet buffers, used in turn, so that code which keeps the buffer
  // address across packets instead of asking for it is caught.
  std::array<packet_buffer, 2> pkt_bufs;
  std::uint32_t current_buf = 0;

  std::array<std::uint32_t, 3> hash_inputs{};
  std::mt19937 random;

  // Packet held by the thread, and what it has done so far.
  bool holds_packet = false;
  std::uint32_t buf_queries_since_arrival = 0;
  packet_outcome current;
  // Which lookup owns each request cell and result slot (debug builds).
  lookup_cells lookups;

  std::thread host_thread;
  // Guarded by the chassis mutex: set up and asked for a first packet;
  // blocked for a packet.
  bool asked_for_packet = false;
  bool waiting = false;
  // Work to run on this thread between packets (tests call program functions
  // this way); guarded by the chassis mutex.
  std::deque<std::function<void()>> tasks;

  std::uint8_t* pkt_buf() { return pkt_bufs[current_buf].data(); }
};

// The program's thread entry, which every NPU thread runs; it never returns.
using thread_entry = void (*)();

struct npu_config {
  std::uint32_t threads = 1;
  std::uint64_t random_seed = 1;
};

class npu {
 public:
  npu(chassis& owner, std::uint32_t id, const npu_config& cfg);
  npu(const npu&) = delete;
  npu& operator=(const npu&) = delete;

  std::uint32_t id() const { return id_; }
  chassis& owner_chassis() { return chassis_; }
  table_memory& memory() { return memory_; }
  stats_memory& stats() { return stats_; }
  page_descriptors& pages() { return pages_; }
  model::tlu_cache& tlu_cache() { return tlu_cache_; }
  plu_engine& plu() { return plu_; }
  tcam_engine& tcam() { return tcam_; }
  igpu_engine& igpu() { return igpu_; }
  npu_clock& clock() { return clock_; }
  gpb_engine& gpb() { return gpb_; }
  line_parser& parser() { return parser_; }
  flow_locks& flow_order() { return flow_order_; }

  void set_global_config(std::uint32_t v) { global_config_ = v; }
  void set_router_id(std::uint32_t v) { router_id_ = v; }
  void set_drop_capture(std::uint32_t v) { drop_capture_ = v; }
  std::uint32_t global_config() const { return global_config_; }
  std::uint32_t router_id() const { return router_id_; }
  std::uint32_t drop_capture() const { return drop_capture_; }

  // Queues a packet for the next free thread; returns its arrival number.
  std::uint64_t enqueue(arriving_packet pkt);
  // A frame from line port `port`: the parser fills its distribution header,
  // then it is queued. Throws std::length_error for a frame longer than the
  // header's length field holds.
  std::uint64_t receive_line_frame(std::uint32_t port, std::vector<std::uint8_t> frame);
  std::vector<packet_outcome> take_outcomes();
  // The traffic manager's map of output queues (the line header's 16-bit
  // queue_id) to line ports.
  void map_queue_port(std::uint32_t queue_id, std::uint32_t port);
  void unmap_queue(std::uint32_t queue_id);
  std::optional<std::uint32_t> port_of_queue(std::uint32_t queue_id);
  std::uint64_t placeholder_count(std::int32_t placeholder) const;
  std::vector<std::string> log() const;
  std::uint32_t monitor_calls(std::uint32_t counter) const;
  // Runs fn on NPU thread `thread` while it waits for a packet, and returns
  // when it has run. fn must not end a packet.
  void run_on_thread(std::uint32_t thread, std::function<void()> fn);

  // ---- used by the platform operations, on the NPU's own threads ----
  npu_thread& thread(std::uint32_t i) { return *threads_[i]; }
  std::uint32_t thread_count() const { return static_cast<std::uint32_t>(threads_.size()); }
  // Records the packet's outcome when its turn in its flow lock comes.
  void finish_packet(npu_thread& t);
  void wait_for_packet(npu_thread& t);
  void note_placeholder(npu_thread& t, std::int32_t placeholder);
  void note_monitor(std::uint32_t counter);
  void breach(npu_thread& t, const std::string& what);

 private:
  friend class chassis;
  bool idle_locked() const;

  chassis& chassis_;
  std::uint32_t id_;
  table_memory memory_;
  model::tlu_cache tlu_cache_{memory_};
  stats_memory stats_;
  page_descriptors pages_;
  plu_engine plu_;
  tcam_engine tcam_;
  igpu_engine igpu_;
  npu_clock clock_;
  gpb_engine gpb_;
  line_parser parser_;
  flow_locks flow_order_;
  std::atomic<std::uint32_t> global_config_{0};
  std::atomic<std::uint32_t> router_id_{0};
  std::atomic<std::uint32_t> drop_capture_{0};
  std::vector<std::unique_ptr<npu_thread>> threads_;

  // Guarded by the chassis mutex.
  std::condition_variable work_cv_;  // wakes this NPU's threads waiting for work
  std::deque<std::pair<std::uint64_t, arriving_packet>> queue_;
  std::uint64_t next_seq_ = 1;
  std::vector<packet_outcome> outcomes_;
  std::map<std::int32_t, std::uint64_t> placeholder_counts_;
  std::map<std::uint32_t, std::uint32_t> monitor_calls_;
  std::map<std::uint32_t, std::uint32_t> queue_ports_;
  std::vector<std::string> log_;
};

}  // namespace model
