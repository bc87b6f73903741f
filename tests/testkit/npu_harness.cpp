#include "testkit/npu_harness.h"

#include <algorithm>

#include "power.h"

namespace testkit {

npu_harness::npu_harness(std::uint32_t npus, std::uint32_t threads_per_npu)
    : chassis_(std::make_unique<model::chassis>(std::vector<model::npu_config>(npus, {threads_per_npu, 1}),
                                                power_fwcore_main)) {
  tables_ = std::make_unique<ctrl::chassis_tables>(*chassis_);
  chassis_->start();
}

npu_harness::~npu_harness() { chassis_->stop(); }

std::uint64_t npu_harness::send(const dist_hdr& hdr, std::vector<std::uint8_t> payload, std::uint32_t npu_id) {
  model::arriving_packet pkt;
  pkt.dist_hdr = hdr.bytes();
  pkt.bytes = std::move(payload);
  return chassis_->at(npu_id).enqueue(std::move(pkt));
}

std::vector<model::packet_outcome> npu_harness::run(std::uint32_t npu_id) {
  chassis_->run_until_idle();
  auto out = chassis_->at(npu_id).take_outcomes();
  std::sort(out.begin(), out.end(), [](const auto& a, const auto& b) { return a.seq < b.seq; });
  return out;
}

model::packet_outcome npu_harness::one(const dist_hdr& hdr, std::vector<std::uint8_t> payload) {
  send(hdr, std::move(payload));
  auto out = run();
  return out.empty() ? model::packet_outcome{} : out.back();
}

void npu_harness::on_thread(const std::function<void(env_t)>& fn, std::uint32_t npu_id, std::uint32_t thread) {
  chassis_->at(npu_id).run_on_thread(thread, [&fn] { fn(reinterpret_cast<env_t>(power_get_dmem_start_addr())); });
}

}  // namespace testkit
