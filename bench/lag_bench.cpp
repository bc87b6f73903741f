// The bundle member choice per call, on one NPU thread: at ingress the bundle
// record and the member by hash modulo the member count (a 16-byte read, then
// a modulus read), at egress the bundle record and the member by the number
// that ingress chose (no modulus). A batch of calls per hop onto the thread.
#include <benchmark/benchmark.h>

#include <memory>

#include "ctrl/chassis_tables.h"
#include "dplane/lag/lag_egr.h"
#include "dplane/lag/lag_ing.h"
#include "model/chassis.h"
#include "power.h"

namespace {

constexpr std::int64_t BATCH = 4096;
constexpr std::uint32_t BUNDLE = 7;
constexpr std::uint32_t MEMBERS = 8;
constexpr std::uint32_t LAG_HASHES = 1 << 12;  // the 12 bundle bits of a flow hash

// One NPU of one thread holding a bundle of MEMBERS members, all its own.
model::chassis& bundle_chassis() {
  static model::chassis ch({{1, 1}}, power_fwcore_main);
  static ctrl::chassis_tables tables = [] {
    ctrl::chassis_tables t(ch);
    ctrl::bundle b;
    for (std::uint32_t i = 0; i < MEMBERS; ++i) {
      b.members.push_back({0x100 + i, static_cast<std::uint16_t>(i), true, false, static_cast<std::uint8_t>(i)});
    }
    if (t.npu(0).lags().write(BUNDLE, b) != ctrl::error::none) std::abort();
    ch.start();
    return t;
  }();
  return ch;
}

// Runs BATCH calls of call(env, i) on the NPU thread per iteration.
template <typename Call>
void per_call(benchmark::State& state, Call call) {
  model::chassis& ch = bundle_chassis();
  std::uint32_t i = 0;
  for (auto _ : state) {
    ch.at(0).run_on_thread(0, [&] {
      const auto env = reinterpret_cast<env_t>(power_get_dmem_start_addr());
      for (std::int64_t b = 0; b < BATCH; ++b, ++i) call(env, i);
    });
  }
  state.SetItemsProcessed(state.iterations() * BATCH);
  state.counters["time_per_call"] = benchmark::Counter(static_cast<double>(state.iterations() * BATCH),
                                                       benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_lag_ingress_member_choice(benchmark::State& state) {
  per_call(state, [](env_t env, std::uint32_t i) {
    std::uint32_t vqi = 0;
    std::uint8_t lagm = 0;
    if (lag_process_common_ing(env, BUNDLE, i % LAG_HASHES, &vqi, &lagm) != RC_SUCCESS) std::abort();
    benchmark::DoNotOptimize(vqi);
    benchmark::DoNotOptimize(lagm);
  });
}

void BM_lag_egress_member_by_number(benchmark::State& state) {
  per_call(state, [](env_t env, std::uint32_t i) {
    std::uint32_t drop = 0;
    if (base_egr_lag_process(env, BUNDLE, i % MEMBERS, FALSE, &drop) != LAG_EGR_PORT_SET) std::abort();
  });
}

}  // namespace

BENCHMARK(BM_lag_ingress_member_choice)->UseRealTime();
BENCHMARK(BM_lag_egress_member_by_number)->UseRealTime();

BENCHMARK_MAIN();
