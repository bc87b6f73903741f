// A bundle across a chassis of three NPUs, written through the control side
// on every NPU, whose members lie on NPUs 1 and 2. A UDP frame from a line
// port of NPU 0 takes the member that its flow hash chooses at ingress, crosses
// the fabric to the NPU of that member's VQI only, and there the member number
// of its header gives the member's port. A member that changed owner while
// the frame crossed ends in its drop counter.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "ctrl/bundles.h"
#include "ctrl/counters.h"
#include "dplane/infra/drop.h"
#include "dplane/lag/lag_egr.h"
#include "dplane/lag/lag_ing.h"
#include "npu/zephra/xmit_fab.h"
#include "platform/varn/fab_hdr.h"
#include "platform/varn/fab_hdr_access.h"
#include "testkit/bundles.h"
#include "testkit/dispatch_probe.h"
#include "testkit/fabric_path.h"
#include "testkit/line_card.h"

namespace {

using testkit::line_card;
using testkit::PORT_BASE;
using testkit::VQI_BASE;

constexpr std::uint32_t NPUS = 3;
constexpr std::uint32_t IN_PORT = 1;
constexpr std::uint32_t IF_HANDLE = 0x101;
constexpr std::uint32_t BUNDLE = 21;
constexpr std::uint32_t NOT_SEEN = ~0u;
// The NPU that owns each member's port: members 0 and 2 on NPU 1, 1, 3 and 4
// on NPU 2. Member i goes to VQI VQI_BASE + i and port PORT_BASE + i.
const std::vector<std::uint32_t> OWNERS = {1, 2, 1, 2, 2};

// The bundle as NPU n holds it: only the members it owns are local.
ctrl::bundle bundle_held_by(std::uint32_t n, const std::vector<std::uint32_t>& owners) {
  ctrl::bundle b = testkit::bundle_of(static_cast<std::uint32_t>(owners.size()), false);
  for (std::size_t i = 0; i < owners.size(); ++i) b.members[i].local = owners[i] == n;
  return b;
}

// What the egress side read and chose.
struct egress_view {
  std::uint32_t lagm = NOT_SEEN;
  std::uint32_t port = NOT_SEEN;
};

class BundleAcrossFabric : public ::testing::Test {
 protected:
  BundleAcrossFabric() {
    lc.add_port(IN_PORT);
    EXPECT_EQ(lc.ifs().add_physical_port(IN_PORT, line_card::routed(IF_HANDLE, true, false, false)).err,
              ctrl::error::none);
    for (std::uint32_t n = 0; n < NPUS; ++n) write_bundle(n, OWNERS);
    for (std::uint32_t i = 0; i < OWNERS.size(); ++i) {
      EXPECT_EQ(lc.harness().chassis_tables().map_vqi(VQI_BASE + i, OWNERS[i]), ctrl::error::none);
    }
    testkit::probe_nph_type(lc.harness(), NPH_TYPE_IPV4_UNI, [this](env_t env) { egress(env); });
  }

  ctrl::npu_tables& tables(std::uint32_t n) { return lc.harness().tables(n); }

  void write_bundle(std::uint32_t n, const std::vector<std::uint32_t>& owners) {
    EXPECT_EQ(tables(n).lags().write(BUNDLE, bundle_held_by(n, owners)), ctrl::error::none);
  }

  // The egress side: the header's member turned into this NPU's port. The
  // send to that port comes with the IPv4 egress path; a member that is not
  // this NPU's drops with the counter the choice gave.
  void egress(env_t env) {
    seen.lagm = plat_get_l3_uni_lag_egr(plat_fab_hdr_of(env));
    std::uint32_t drop = 0;
    if (base_egr_lag_process(env, BUNDLE, seen.lagm, FALSE, &drop) != LAG_EGR_PORT_SET) {
      drop_packet(env, drop);
      return;
    }
    seen.port = *ps_get_egr_port_id(env);
    drop_packet_no_counter(env);
  }

  // A UDP frame from IN_PORT whose flow hash is raw_hash. The ingress side
  // chooses the member into the unicast header and sends; `in_flight` runs
  // after the choice, before the send.
  model::packet_outcome receive(
      std::uint32_t raw_hash, std::function<void()> in_flight = [] {}) {
    testkit::probe_vector(lc.harness(), testkit::TEST_VECTOR, [raw_hash, in_flight](env_t env) {
      std::uint8_t* fab = testkit::write_ipv4_uni_header(env, IF_HANDLE);
      if (lag_process_l3_ing(env, fab, BUNDLE, raw_hash) != RC_SUCCESS) return;
      in_flight();
      testkit::prep_uni_send(env, fab, testkit::l3_len(env));
      npu_pkt_tx_request_ing(env);
    });
    return lc.receive(IN_PORT, testkit::udp_frame(8));
  }

  // How many frames each NPU took from the fabric.
  std::vector<std::size_t> arrivals() {
    std::vector<std::size_t> counts;
    for (std::uint32_t n = 0; n < NPUS; ++n) counts.push_back(lc.harness().run(n).size());
    return counts;
  }

  line_card lc{NPUS};
  egress_view seen;
};

// A flow hash and the member that its bundle bits (bits 27..24 and the low
// byte) modulo 5 choose.
struct flow {
  const char* name;
  std::uint32_t raw_hash;
  std::uint32_t member;
};

class Flows : public BundleAcrossFabric, public ::testing::WithParamInterface<flow> {};

TEST_P(Flows, CrossToTheNpuOfTheirMemberAndTakeItsPort) {
  const flow& f = GetParam();
  const model::packet_outcome o = receive(f.raw_hash);
  ASSERT_EQ(o.sent.size(), 1u) << o.note;
  EXPECT_EQ(o.sent[0].to, model::frame_destination::fabric);
  EXPECT_EQ(o.sent[0].port, VQI_BASE + f.member);
  std::vector<std::size_t> expected(NPUS, 0);
  expected[OWNERS[f.member]] = 1;
  EXPECT_EQ(arrivals(), expected);
  EXPECT_EQ(seen.lagm, f.member);
  EXPECT_EQ(seen.port, PORT_BASE + f.member);
}

// The edges of the bundle bits: all set, and a mix among other bits.
INSTANTIATE_TEST_SUITE_P(Hashes, Flows,
                         ::testing::Values(flow{"bits_0xFFF_member_0_on_npu_1", 0x0F0000FF, 0},   // 4095 mod 5
                                           flow{"bits_0xBCD_member_1_on_npu_2", 0xFB1234CD, 1}),  // 3021 mod 5
                         [](const ::testing::TestParamInfo<flow>& p) { return p.param.name; });

// Member 3 moves from NPU 2 to NPU 1 while the frame crosses: NPU 2's copy is
// rewritten after ingress chose the member. The frame still reaches NPU 2,
// whose check of the member's owner drops it.
TEST_F(BundleAcrossFabric, AMemberThatChangedOwnerInFlightDropsAt0xE2) {
  std::vector<std::uint32_t> moved = OWNERS;
  moved[3] = 1;
  const model::packet_outcome o = receive(0x0A000003, [&] { write_bundle(2, moved); });
  ASSERT_EQ(o.sent.size(), 1u) << o.note;
  EXPECT_EQ(o.sent[0].port, VQI_BASE + 3);

  const std::vector<model::packet_outcome> at_owner = lc.harness().run(2);
  ASSERT_EQ(at_owner.size(), 1u);
  EXPECT_EQ(at_owner[0].global_counters, (std::vector<std::uint32_t>{DROP_LAG_MEMBER_NOT_LOCAL}));
  EXPECT_EQ(tables(2).stats().global(DROP_LAG_MEMBER_NOT_LOCAL), 1u);
  EXPECT_EQ(seen.lagm, 3u);
  EXPECT_EQ(seen.port, NOT_SEEN);
  EXPECT_EQ(arrivals(), (std::vector<std::size_t>{0, 0, 0}));
}

}  // namespace
