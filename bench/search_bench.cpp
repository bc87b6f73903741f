// The PLU at realistic sizes: loading a million IPv4 prefixes and a hundred
// thousand IPv6 prefixes, and searches per second, in the engine alone and
// as the program issues them from an NPU thread.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

#include "ctrl/chassis_tables.h"
#include "model/chassis.h"
#include "npu/zephra/plu.h"
#include "power.h"

namespace {

constexpr std::size_t IPV4_ROUTES = 1'000'000;
constexpr std::size_t IPV6_ROUTES = 100'000;
constexpr std::size_t ADDRESSES = 1 << 16;
constexpr std::uint32_t REQ = 0x100;
constexpr std::uint32_t RESP = 0x200;

// Lengths as in an Internet table: mostly /24, then /16 to /23, a few
// shorter and longer ones.
unsigned ipv4_length(std::mt19937& rng) {
  const unsigned p = rng() % 100;
  if (p < 58) return 24;
  if (p < 88) return 16 + rng() % 8;
  if (p < 93) return 8 + rng() % 8;
  return 25 + rng() % 8;
}

// Allocations of /32 under 2000::/3, most routes /48, some /33 to /64.
unsigned ipv6_length(std::mt19937& rng) {
  const unsigned p = rng() % 100;
  if (p < 55) return 48;
  if (p < 75) return 32 + rng() % 16;
  if (p < 95) return 49 + rng() % 16;
  return 128;
}

std::uint32_t ipv4_random(std::mt19937& rng) { return 0x01000000 + rng() % 0xDE000000; }

model::ip_bytes ipv6_random(std::mt19937& rng, const std::vector<std::uint32_t>& allocations) {
  model::ip_bytes a;
  const std::uint32_t top = allocations[rng() % allocations.size()];
  for (int i = 0; i < 4; ++i) a[i] = static_cast<std::uint8_t>(top >> (24 - 8 * i));
  for (int i = 4; i < 16; ++i) a[i] = static_cast<std::uint8_t>(rng());
  return a;
}

// A table of routes with the addresses to search: most inside some route.
struct route_set {
  std::vector<ctrl::route_prefix> routes;
  std::vector<model::plu_route_key> searches;  // the engine's own keys: searched without the control side
};

route_set ipv4_routes() {
  std::mt19937 rng(4);
  route_set s;
  while (s.routes.size() < IPV4_ROUTES + IPV4_ROUTES / 10) {
    s.routes.push_back(ctrl::ipv4_prefix({0}, ipv4_random(rng), static_cast<std::uint8_t>(ipv4_length(rng))));
  }
  for (std::size_t i = 0; i < ADDRESSES; ++i) {
    ctrl::route_prefix k = s.routes[rng() % s.routes.size()];
    for (int b = 3; b >= k.length / 8; --b) k.addr[b] = static_cast<std::uint8_t>(rng());
    s.searches.push_back({PLU_IPV4_UNICAST, k.table, k.addr, k.length});
  }
  return s;
}

route_set ipv6_routes() {
  std::mt19937 rng(6);
  std::vector<std::uint32_t> allocations(IPV6_ROUTES / 10);
  for (auto& a : allocations) a = 0x20000000 | (rng() & 0x1FFFFFFF);
  route_set s;
  while (s.routes.size() < IPV6_ROUTES + IPV6_ROUTES / 20) {
    const auto length = static_cast<std::uint8_t>(ipv6_length(rng));
    s.routes.push_back(ctrl::ipv6_prefix({0}, ipv6_random(rng, allocations), length));
  }
  for (std::size_t i = 0; i < ADDRESSES; ++i) {
    ctrl::route_prefix k = s.routes[rng() % s.routes.size()];
    for (int b = 15; b >= k.length / 8; --b) k.addr[b] = static_cast<std::uint8_t>(rng());
    s.searches.push_back({PLU_IPV6_UNICAST, k.table, k.addr, k.length});
  }
  return s;
}

const route_set& ipv4_set() {
  static const route_set s = ipv4_routes();
  return s;
}
const route_set& ipv6_set() {
  static const route_set s = ipv6_routes();
  return s;
}

// Adds routes until `count` are in (the drawn list holds some twice).
void load(ctrl::npu_tables& tables, const route_set& s, std::size_t count) {
  const ctrl::route_leaf leaf{};
  std::size_t added = 0;
  for (std::size_t i = 0; i < s.routes.size() && added < count; ++i) {
    added += tables.routes().add_prefix(s.routes[i], leaf) == ctrl::error::none;
  }
}

// One NPU with its tables loaded once for all the search benchmarks.
model::chassis& loaded_chassis() {
  static model::chassis ch({{1, 1}}, power_fwcore_main);
  static ctrl::chassis_tables tables = [] {
    ctrl::chassis_tables t(ch);
    load(t.npu(0), ipv4_set(), IPV4_ROUTES);
    load(t.npu(0), ipv6_set(), IPV6_ROUTES);
    ch.start();
    return t;
  }();
  return ch;
}

void BM_load_ipv4_routes(benchmark::State& state) {
  const route_set& s = ipv4_set();
  for (auto _ : state) {
    model::chassis ch({{1, 1}}, power_fwcore_main);
    ctrl::chassis_tables tables(ch);
    load(tables.npu(0), s, IPV4_ROUTES);
    state.counters["routes"] = static_cast<double>(ch.at(0).plu().routes());
  }
}
BENCHMARK(BM_load_ipv4_routes)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_load_ipv6_routes(benchmark::State& state) {
  const route_set& s = ipv6_set();
  for (auto _ : state) {
    model::chassis ch({{1, 1}}, power_fwcore_main);
    ctrl::chassis_tables tables(ch);
    load(tables.npu(0), s, IPV6_ROUTES);
    state.counters["routes"] = static_cast<double>(ch.at(0).plu().routes());
  }
}
BENCHMARK(BM_load_ipv6_routes)->Iterations(1)->Unit(benchmark::kMillisecond);

// The engine's search alone.
void search_engine(benchmark::State& state, const route_set& s) {
  const model::plu_engine& plu = loaded_chassis().at(0).plu();
  plu_result_st out;
  std::size_t i = 0;
  for (auto _ : state) {
    plu.search_route(0, s.searches[i++ % ADDRESSES], out);
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
void BM_search_ipv4_engine(benchmark::State& state) { search_engine(state, ipv4_set()); }
void BM_search_ipv6_engine(benchmark::State& state) { search_engine(state, ipv6_set()); }
BENCHMARK(BM_search_ipv4_engine);
BENCHMARK(BM_search_ipv6_engine);

// The program's request from an NPU thread: key, DMA command, search,
// response; a batch of searches per hop onto the thread.
void BM_search_ipv4_request(benchmark::State& state) {
  const auto& searches = ipv4_set().searches;
  constexpr std::size_t BATCH = 4096;
  std::size_t i = 0;
  for (auto _ : state) {
    loaded_chassis().at(0).run_on_thread(0, [&] {
      const auto env = reinterpret_cast<env_t>(power_get_dmem_start_addr());
      for (std::size_t b = 0; b < BATCH; ++b, ++i) {
        const auto& a = searches[i % ADDRESSES].addr;
        const std::uint32_t addr = (std::uint32_t{a[0]} << 24) | (a[1] << 16) | (a[2] << 8) | a[3];
        plu_ipv4_global_unicast_addr(env, addr, REQ, RESP);
      }
    });
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * BATCH));
}
BENCHMARK(BM_search_ipv4_request)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
