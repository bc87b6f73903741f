// Test harness: a chassis of software NPUs with their control side,
// distribution headers built field by field, and a way to run program code
// on an NPU thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ctrl/chassis_tables.h"
#include "dplane/infra/env.h"
#include "model/chassis.h"
#include "model/dist_hdr_builder.h"

namespace testkit {

using dist_hdr = model::dist_hdr_builder;

class npu_harness {
 public:
  explicit npu_harness(std::uint32_t npus = 1, std::uint32_t threads_per_npu = 1);
  ~npu_harness();

  model::chassis& chassis() { return *chassis_; }
  model::npu& npu(std::uint32_t i = 0) { return chassis_->at(i); }
  // The control side of the chassis, and of NPU i.
  ctrl::chassis_tables& chassis_tables() { return *tables_; }
  ctrl::npu_tables& tables(std::uint32_t i = 0) { return tables_->npu(i); }

  // Queues a packet; the payload is the packet's bytes at pkt_start.
  std::uint64_t send(const dist_hdr& hdr, std::vector<std::uint8_t> payload = {}, std::uint32_t npu_id = 0);
  // Runs until idle and returns the outcomes of NPU npu_id in arrival order.
  std::vector<model::packet_outcome> run(std::uint32_t npu_id = 0);
  // Sends one packet, runs, and returns its outcome.
  model::packet_outcome one(const dist_hdr& hdr, std::vector<std::uint8_t> payload = {});

  // Runs fn(env) on thread `thread` of NPU npu_id between packets.
  void on_thread(const std::function<void(env_t)>& fn, std::uint32_t npu_id = 0, std::uint32_t thread = 0);

 private:
  std::unique_ptr<model::chassis> chassis_;
  std::unique_ptr<ctrl::chassis_tables> tables_;
};

}  // namespace testkit
