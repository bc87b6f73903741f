// A bundle across three NPUs, written through the control side on each, with
// members on NPUs 1 and 2: a UDP frame from a line port of NPU 0 takes the
// member its flow hash chooses, crosses to that member's NPU only, and takes
// the member's port there.
#include <gtest/gtest.h>

#include <vector>

#include "dplane/infra/drop.h"
#include "dplane/lag/lag_egr.h"
#include "dplane/lag/lag_ing.h"
#include "fab_hdr.h"
#include "npu/zephra/xmit_fab.h"
#include "platform/varn/fab_hdr_access.h"
#include "testkit/bundles.h"
#include "testkit/dispatch_probe.h"
#include "testkit/fabric_path.h"
#include "testkit/line_card.h"

namespace {

using testkit::VQI_BASE;

constexpr std::uint32_t NPUS = 3;
constexpr std::uint32_t IN_PORT = 1;
constexpr std::uint32_t IF_HANDLE = 0x101;
constexpr std::uint32_t BUNDLE = 21;
constexpr std::uint32_t NOT_SEEN = ~0u;
// The NPU that owns each member: members 0 and 2 on NPU 1, 1, 3 and 4 on
// NPU 2. Member i goes to VQI VQI_BASE + i and port PORT_BASE + i.
const std::vector<std::uint32_t> OWNERS = {1, 2, 1, 2, 2};

class BundleAcrossFabric : public ::testing::Test {
 protected:
  BundleAcrossFabric() {
    lc.add_port(IN_PORT);
    EXPECT_EQ(lc.ifs().add_physical_port(IN_PORT, testkit::line_card::routed(IF_HANDLE, true, false, false)).err,
              ctrl::error::none);
    for (std::uint32_t n = 0; n < NPUS; ++n) write_bundle(n, OWNERS);
    for (std::uint32_t i = 0; i < OWNERS.size(); ++i) {
      EXPECT_EQ(lc.harness().chassis_tables().map_vqi(VQI_BASE + i, OWNERS[i]), ctrl::error::none);
    }
    testkit::probe_nph_type(lc.harness(), NPH_TYPE_IPV4_UNI, [this](env_t env) { egress(env); });
  }

  // The bundle as NPU n holds it: only the members it owns are local.
  void write_bundle(std::uint32_t n, const std::vector<std::uint32_t>& owners) {
    ctrl::bundle b = testkit::bundle_of(static_cast<std::uint32_t>(owners.size()), false);
    for (std::size_t i = 0; i < owners.size(); ++i) b.members[i].local = owners[i] == n;
    EXPECT_EQ(lc.harness().tables(n).lags().write(BUNDLE, b), ctrl::error::none);
  }

  // The egress side turns the header's member into this NPU's port; the send
  // to it comes with the IPv4 egress path. A member not this NPU's drops.
  void egress(env_t env) {
    seen_lagm = plat_get_l3_uni_lag_egr(plat_fab_hdr_of(env));
    std::uint32_t drop = 0;
    if (base_egr_lag_process(env, BUNDLE, seen_lagm, FALSE, &drop) != LAG_EGR_PORT_SET) {
      drop_packet(env, drop);
      return;
    }
    seen_port = *ps_get_egr_port_id(env);
    drop_packet_no_counter(env);
  }

  // A UDP frame from IN_PORT whose flow hash is raw_hash: ingress chooses the
  // member into the unicast header and sends.
  model::packet_outcome receive(std::uint32_t raw_hash) {
    testkit::probe_vector(lc.harness(), testkit::TEST_VECTOR, [raw_hash](env_t env) {
      std::uint8_t* fab = testkit::write_ipv4_uni_header(env, IF_HANDLE);
      if (lag_process_l3_ing(env, fab, BUNDLE, raw_hash) != RC_SUCCESS) return;
      testkit::prep_uni_send(env, fab, testkit::l3_len(env));
      npu_pkt_tx_request_ing(env);
    });
    return lc.receive(IN_PORT, testkit::udp_frame(8));
  }

  // The frames each NPU took from the fabric.
  std::vector<std::size_t> arrivals() {
    std::vector<std::size_t> counts;
    for (std::uint32_t n = 0; n < NPUS; ++n) counts.push_back(lc.harness().run(n).size());
    return counts;
  }

  testkit::line_card lc{NPUS};
  std::uint32_t seen_lagm = NOT_SEEN;
  std::uint32_t seen_port = NOT_SEEN;
};

// The bundle bits (bits 27..24 and the low byte) modulo 5 give the member:
// 0xFFF is 4095, member 0 on NPU 1; 0xBCD is 3021, member 1 on NPU 2.
TEST_F(BundleAcrossFabric, FlowsCrossToTheNpuOfTheirMemberAndTakeItsPort) {
  for (const auto& [raw_hash, member] : {std::pair{0x0F0000FFu, 0u}, std::pair{0xFB1234CDu, 1u}}) {
    SCOPED_TRACE(member);
    const model::packet_outcome o = receive(raw_hash);
    ASSERT_EQ(o.sent.size(), 1u) << o.note;
    EXPECT_EQ(o.sent[0].to, model::frame_destination::fabric);
    EXPECT_EQ(o.sent[0].port, VQI_BASE + member);
    std::vector<std::size_t> expected(NPUS, 0);
    expected[OWNERS[member]] = 1;
    EXPECT_EQ(arrivals(), expected);
    EXPECT_EQ(seen_lagm, member);
    EXPECT_EQ(seen_port, testkit::PORT_BASE + member);
  }
}

}  // namespace
