// Throughput of the packet loop: arrival, dispatch and drop of a packet
// whose fabric header type has no handler, on an NPU of one thread and on
// an NPU with a thread per host core, which runs free. The driver queues a
// batch without waiting and then waits for the NPU to go idle.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <thread>

#include "model/chassis.h"
#include "model/dist_hdr_builder.h"
#include "power.h"

namespace {

constexpr std::int64_t BATCH = 4096;

void BM_arrival_dispatch_drop(benchmark::State& state) {
  const auto threads = static_cast<std::uint32_t>(state.range(0));
  model::chassis chassis({model::npu_config{threads, 1}}, power_fwcore_main);
  chassis.start();
  model::arriving_packet pkt;
  pkt.dist_hdr = model::dist_hdr_builder::fabric().bytes();
  pkt.bytes.assign(64, 0);
  pkt.bytes[8] = 11;  // a header type without a handler: dispatch, then drop
  for (auto _ : state) {
    for (std::int64_t i = 0; i < BATCH; ++i) chassis.at(0).enqueue(pkt);
    chassis.run_until_idle();
    benchmark::DoNotOptimize(chassis.at(0).take_outcomes());
  }
  // Packets per second, and the time of one packet (seconds, shown with n for ns).
  state.SetItemsProcessed(state.iterations() * BATCH);
  state.counters["time_per_packet"] = benchmark::Counter(static_cast<double>(state.iterations() * BATCH),
                                                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

std::int64_t host_cores() { return std::max<std::int64_t>(1, std::thread::hardware_concurrency()); }

}  // namespace

BENCHMARK(BM_arrival_dispatch_drop)
    ->Arg(1)
    ->Arg(host_cores())
    ->ArgName("threads")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
