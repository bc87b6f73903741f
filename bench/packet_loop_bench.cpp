// Throughput of the packet loop: arrival, dispatch and drop of a packet
// whose fabric header type has no handler.
#include <benchmark/benchmark.h>

#include "model/chassis.h"
#include "model/dist_hdr_builder.h"

static void BM_dispatch_and_drop(benchmark::State& state) {
  model::chassis chassis({model::npu_config{}});
  model::arriving_packet pkt;
  pkt.dist_hdr = model::dist_hdr_builder::fabric().bytes();
  pkt.bytes.assign(64, 0);
  pkt.bytes[8] = 11;
  const auto batch = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    for (std::size_t i = 0; i < batch; ++i) chassis.at(0).enqueue(pkt);
    chassis.run_until_idle();
    benchmark::DoNotOptimize(chassis.at(0).take_outcomes());
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * batch));
}
BENCHMARK(BM_dispatch_and_drop)->Arg(1024)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
