// The member choice at egress: the fabric header's, the inject header's or
// the packet state's member number, or a fresh hash, by the caller's thread
// bits and the packet's flags; and the drops when no member fits.
#include "dplane/infra/lookup.h"
#include "dplane/lag/lag_egr.h"
#include "dplane/lag/lag_egr_drop.h"
#include "lag_test_util.h"
#include "platform/shared/placeholder.h"
#include "testkit/routed_port.h"

namespace {

using namespace lag_test;
using cf = common_flags_st;

// The first interface the control side adds gets UIDB index 1.
constexpr std::uint32_t UIDB = 1;
constexpr std::uint16_t BUNDLE = 40;
constexpr std::size_t HEADER_LAGM_BYTE = 14;
constexpr std::size_t INJECT_LAGM_BYTE = 16 + 8 + 6;  // behind a line form's 16 bytes, in the extension
// Bits 27..24 are 0xB and the low byte 0xCD: the bundle bits are 0xBCD.
constexpr std::uint32_t RAW_HASH = 0xFB1234CD;

// Packet state a case sets.
enum state : std::uint32_t {
  GRE_OVER_MPLS = 1,
  LB_HASH_EN = 2,    // bundle_lb_hash_en of the interface
  USE_LAG_SEL = 4,   // of the pass's GRE encapsulation
  RAW_HASH_SET = 8,  // use_ps_raw_hash
  INJECTED = 16,
  SR_TE = 32,  // ing_te_nh_bkup_egr_sr_te_thread
  NO_BUNDLE = 64,
  REMOTE_MEMBERS = 128,  // the members are another NPU's
  TRUNCATING = 256,      // the bundle hashes the low byte alone
};

struct outcome {
  lag_egr_result_e result = LAG_EGR_NO_MEMBER;
  std::uint32_t drop = 0;
  std::uint32_t port = 0;
};

class EgressChoice : public BundleTest {
 protected:
  void set_up_interface(std::uint32_t st = 0) {
    ctrl::l3_interface cfg;
    cfg.bundle_id = BUNDLE;
    uidb_l3_egr_fields_st::bundle_lb_hash_en::set(cfg.egress, (st & LB_HASH_EN) != 0);
    uidb_l3_egr_fields_st::ipv4_nf_en::set(cfg.egress, 1);
    testkit::add_routed_port(h.tables(), 1, cfg);
  }
  static std::vector<std::uint8_t> packet(std::uint8_t header_lagm, std::uint8_t inject_lagm = 0) {
    std::vector<std::uint8_t> bytes(64, 0);
    bytes[HEADER_LAGM_BYTE] = header_lagm;
    bytes[INJECT_LAGM_BYTE] = inject_lagm;
    return bytes;
  }
  static void set_state(env_t env, std::uint32_t st, std::uint8_t ps_lagm) {
    cf::use_ps_raw_hash::set(*ps_put_mod_common_flags(env), (st & RAW_HASH_SET) != 0);
    cf::ing_te_nh_bkup_egr_sr_te_thread::set(*ps_put_mod_common_flags(env), (st & SR_TE) != 0);
    common_flags2_st::gre_over_mpls::set(*ps_put_mod_common_flags2(env), (st & GRE_OVER_MPLS) != 0);
    inject_flags_st::injected_pkt::set(*ps_put_mod_inject_flags(env), (st & INJECTED) != 0);
    multipass_param_t::u::gre_encap::egr::flags::use_lag_sel::set(*ps_put_mod_multipass_param(env),
                                                                  (st & USE_LAG_SEL) != 0);
    lagm_st::lag_id::set(*ps_put_mod_lagm(env), ps_lagm);
    *ps_put_mod_l3_raw_hash(env) = RAW_HASH;
  }
  outcome choose(std::uint32_t thread_bits, std::uint32_t st, std::vector<std::uint8_t> bytes,
                 std::uint8_t ps_lagm = 0) {
    outcome o;
    run(
        [&](env_t env) {
          lookup_request_ID_UIDB_L3_EGR__COMM(env, UIDB);
          lookup_wait_ID_UIDB_L3_EGR__COMM(env);
          set_state(env, st, ps_lagm);
          o.result = l3_egr_lag_process(env, thread_bits, &o.drop);
          o.port = *ps_get_egr_port_id(env);
        },
        std::move(bytes));
    return o;
  }
};

// Nine members: the hash's 0xBCD (3021) chooses member 6; the fabric header
// says 2, the inject header 3, the packet state 4; member number 11 or 63 is
// past the list.
struct selection_case {
  const char* name;
  std::uint32_t thread_bits;
  std::uint32_t state;
  std::uint8_t header_lagm;
  int member;  // -1: no member, with drop
  std::uint32_t drop = DROP_LAG_EGR_INVALID;
};

class EgressSelection : public EgressChoice, public ::testing::WithParamInterface<selection_case> {};

TEST_P(EgressSelection, ChoosesTheMemberByThreadBitsAndState) {
  const selection_case& c = GetParam();
  set_up_interface(c.state);
  if (!(c.state & NO_BUNDLE)) add(BUNDLE, bundle_of(9, !(c.state & REMOTE_MEMBERS), c.state & TRUNCATING));
  add(BUNDLE + 1, bundle_of(3));  // the next bundle's members stand behind this one's block
  const outcome o = choose(c.thread_bits, c.state, packet(c.header_lagm, 3), 4);
  if (c.member < 0) {
    EXPECT_EQ(o.result, LAG_EGR_NO_MEMBER);
    EXPECT_EQ(o.drop, c.drop);
  } else {
    EXPECT_EQ(o.result, LAG_EGR_PORT_SET);
    EXPECT_EQ(o.port, PORT_BASE + static_cast<std::uint32_t>(c.member));
  }
}

INSTANTIATE_TEST_SUITE_P(
    ThreadBits, EgressSelection,
    ::testing::Values(selection_case{"header_member", 0x00, 0, 2, 2}, selection_case{"hash_bit", 0x10, 0, 2, 6},

                      selection_case{"optional_hash_without_reason", 0x30, 0, 2, 6},
                      selection_case{"optional_hash_interface_keeps_member", 0x30, LB_HASH_EN, 2, 2},
                      selection_case{"optional_hash_pass_keeps_member", 0x30, USE_LAG_SEL, 2, 2},
                      selection_case{"always_beats_optional", 0x70, LB_HASH_EN, 2, 6},
                      selection_case{"interface_needs_the_optional_bit", 0x10, LB_HASH_EN, 2, 6},

                      selection_case{"gre_over_mpls_hashes_0xBCD", 0x00, GRE_OVER_MPLS, 2, 6},
                      selection_case{"inject_member", 0x08, 0, 2, 3},
                      selection_case{"raw_hash_injected_hashes_the_member", 0x01, RAW_HASH_SET | INJECTED, 11, 2},
                      selection_case{"raw_hash_not_injected_keeps_the_member", 0x01, RAW_HASH_SET, 11, -1},
                      selection_case{"raw_hash_without_its_bit", 0x00, RAW_HASH_SET | INJECTED, 11, -1},
                      selection_case{"sr_te_takes_the_packet_state", 0x00, SR_TE, 2, 4},
                      selection_case{"sr_te_leaves_the_hash", 0x10, SR_TE, 2, 6},
                      selection_case{"truncating_hashes_0xCD", 0x10, TRUNCATING, 2, 0xCD % 9},
                      selection_case{"truncating_keeps_the_member_number", 0x00, TRUNCATING, 8, 8},
                      selection_case{"bundle_not_valid", 0x00, NO_BUNDLE, 1, -1},
                      selection_case{"last_member_number_past_the_list", 0x00, 0, 63, -1},
                      selection_case{"member_on_another_npu", 0x00, REMOTE_MEMBERS, 1, -1, DROP_LAG_MEMBER_NOT_LOCAL}),
    [](const ::testing::TestParamInfo<selection_case>& p) { return p.param.name; });

// The drops of a failed choice, rows of one list: the reason is counted
// after the flow-export step of the path's family, if it has one.
TEST_F(EgressChoice, EachFamilysDropCountsTheReasonAfterItsFlowExport) {
  set_up_interface();
  add(BUNDLE, bundle_of(2, false));
  const std::pair<func_rc_e (*)(env_t, std::uint32_t), std::int32_t> cases[] = {
      {l3_egr_lag_drop_ipv4, UNBUILT_ipv4_egr_netflow_part_1}, {l3_egr_lag_drop_l2flood, -1}};
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    func_rc_e rc = RC_FAIL;
    const model::packet_outcome o = run(
        [&](env_t env) {
          lookup_request_ID_UIDB_L3_EGR__COMM(env, UIDB);
          std::uint32_t drop = 0;
          ASSERT_EQ(l3_egr_lag_process(env, 0, &drop), LAG_EGR_NO_MEMBER);
          rc = cases[i].first(env, drop);
        },
        packet(1));
    EXPECT_EQ(rc, RC_PKT_DROP);
    EXPECT_EQ(o.global_counters, (std::vector<std::uint32_t>{DROP_LAG_MEMBER_NOT_LOCAL}));
    EXPECT_EQ(o.placeholder, cases[i].second);
  }
  EXPECT_EQ(counter(DROP_LAG_MEMBER_NOT_LOCAL), std::size(cases));
}

}  // namespace
