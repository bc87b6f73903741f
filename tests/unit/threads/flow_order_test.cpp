// The order in which packets leave an NPU of several threads: packets that
// share a flow lock leave in the order they came to it, packets of different
// locks do not wait for one another, and under many threads and flows no
// packet is lost, doubled or overtaken within its flow.
#include <gtest/gtest.h>

#include <latch>
#include <map>
#include <random>
#include <set>

#include "dplane/infra/drop.h"
#include "dplane/infra/flow_order.h"
#include "testkit/dispatch_probe.h"

namespace {

using cf = common_flags_st;

// A packet of the tests carries its flow and an amount of busy work.
std::vector<std::uint8_t> packet_payload(std::uint16_t flow, std::uint16_t work) {
  return {static_cast<std::uint8_t>(flow >> 8), static_cast<std::uint8_t>(flow), static_cast<std::uint8_t>(work >> 8),
          static_cast<std::uint8_t>(work)};
}
std::uint16_t word_at(env_t env, std::uint32_t offset) {
  const std::uint8_t* p = *ps_get_pkt_start(env) + offset;
  return static_cast<std::uint16_t>((p[0] << 8) | p[1]);
}
std::uint16_t flow_of(env_t env) { return word_at(env, 0); }
std::uint16_t work_of(env_t env) { return word_at(env, 2); }

void convert_to(env_t env, std::uint32_t lock) {
  *ps_put_mod_next_flowlock_id(env) = static_cast<std::uint16_t>(lock);
  simple_flowlock_convert(env);
}

// Work that lets later packets of other threads overtake this one.
void busy(env_t env, std::uint32_t rounds) {
  std::uint32_t x = flow_of(env);
  for (std::uint32_t i = 0; i < rounds; ++i) x = x * 1664525u + 1013904223u;
  (*ps_get_pkt_start(env))[8] = static_cast<std::uint8_t>(x);
}

// Outcomes in the order the packets left.
std::vector<std::uint64_t> departure_order(testkit::npu_harness& h) {
  h.chassis().run_until_idle();
  std::vector<std::uint64_t> seqs;
  for (const model::packet_outcome& o : h.npu().take_outcomes()) seqs.push_back(o.seq);
  return seqs;
}

// If the second packet waited for the first, the third packet, which lets
// the first go on, would find no thread: a broken order hangs here.
TEST(FlowOrder, PacketsOfDifferentLocksDoNotWaitForEachOther) {
  testkit::npu_harness h(1, 2);
  std::latch first_may_end(1);
  testkit::probe_vector(h, testkit::TEST_VECTOR, [&](env_t env) {
    switch (flow_of(env)) {
      case 1:
        convert_to(env, 800);
        first_may_end.wait();
        break;
      case 2:
        convert_to(env, 801);
        break;
      default:
        first_may_end.count_down();
        break;
    }
    drop_packet_no_counter(env);
  });
  for (std::uint16_t role = 1; role <= 3; ++role) h.send(testkit::line_packet(), packet_payload(role, 0));
  const std::vector<std::uint64_t> order = departure_order(h);
  ASSERT_EQ(order.size(), 3u);
  EXPECT_EQ(order[0], 2u);  // the first and the third then race: neither holds the other's lock
  EXPECT_EQ(std::set<std::uint64_t>(order.begin(), order.end()), (std::set<std::uint64_t>{1, 2, 3}));
}

// Flows of three kinds: some stay in the lock they arrived with, some
// convert, some convert by a kept drop that counts; every packet does a
// random amount of work before and after its conversion.
TEST(FlowOrder, ManyThreadsAndFlowsKeepEveryFlowInOrder) {
  constexpr std::uint32_t THREADS = 4;
  constexpr std::uint16_t FLOWS = 60;
  constexpr std::uint32_t PACKETS = 3000;
  constexpr std::uint32_t KEPT_DROP = 0x100;
  auto stays_in_arrival_lock = [](std::uint16_t flow) { return flow % 5 == 0; };
  auto converts_by_kept_drop = [](std::uint16_t flow) { return flow % 3 == 0; };

  testkit::npu_harness h(1, THREADS);
  testkit::probe_vector(h, testkit::TEST_VECTOR, [&](env_t env) {
    const std::uint16_t flow = flow_of(env);
    busy(env, work_of(env));
    if (!stays_in_arrival_lock(flow)) {
      *ps_put_mod_next_flowlock_id(env) = generate_flowlock(768, flow);
      if (converts_by_kept_drop(flow)) {
        cf::keep_gpm::set(*ps_put_mod_common_flags(env), 1);
        drop_packet(env, KEPT_DROP);
        cf::keep_gpm::set(*ps_put_mod_common_flags(env), 0);
      } else {
        simple_flowlock_convert(env);
      }
      busy(env, work_of(env));
    }
    drop_packet_no_counter(env);
  });

  std::mt19937 random(7);
  std::map<std::uint64_t, std::uint16_t> flow_of_seq;
  for (std::uint32_t i = 0; i < PACKETS; ++i) {
    const auto flow = static_cast<std::uint16_t>(random() % FLOWS);
    const auto work = static_cast<std::uint16_t>(random() % 3000);
    flow_of_seq[h.send(testkit::line_packet(), packet_payload(flow, work))] = flow;
  }
  h.chassis().run_until_idle();
  const std::vector<model::packet_outcome> out = h.npu().take_outcomes();

  ASSERT_EQ(out.size(), PACKETS);
  std::set<std::uint64_t> seen;
  std::map<std::uint16_t, std::uint64_t> last_of_flow;
  std::uint64_t last_in_arrival_lock = 0;
  for (const model::packet_outcome& o : out) {
    ASSERT_TRUE(flow_of_seq.count(o.seq)) << "packet " << o.seq << " was never sent";
    ASSERT_TRUE(seen.insert(o.seq).second) << "packet " << o.seq << " left twice";
    const std::uint16_t flow = flow_of_seq[o.seq];
    EXPECT_LT(last_of_flow[flow], o.seq) << "flow " << flow << " overtaken";
    last_of_flow[flow] = o.seq;
    if (stays_in_arrival_lock(flow)) {
      EXPECT_LT(last_in_arrival_lock, o.seq) << "the arrival lock overtaken";
      last_in_arrival_lock = o.seq;
    }
    const bool counted = !o.global_counters.empty();
    EXPECT_EQ(counted, !stays_in_arrival_lock(flow) && converts_by_kept_drop(flow)) << "packet " << o.seq;
  }
}

}  // namespace
