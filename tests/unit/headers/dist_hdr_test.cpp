// The distribution header: one golden line header written field by field and
// read back through the thread's accessors and the other forms' views, then
// the accessors that do more than read their field.
#include <gtest/gtest.h>

#include <cstring>

#include "dist_hdr.h"
#include "header_bytes.h"
#include "npu/zephra/pkt_rx.h"
#include "testkit/npu_harness.h"

namespace {

using namespace ht;
using line = dist_hdr_line_st;
using baf = baf_hdr_ing_st;
template <class F>
using in_baf = line::in_baf<F>;

// Every field a distinct value; the bytes worked out by hand from the field
// positions (byte.bit/width, bit 0 the most significant).
const bytes golden_line = {0xD5, 0x3C, 0x9E, 0xA5, 0xC5, 0xEE, 0xD5, 0xE5, 0x19, 0xC3, 0x0A,
                           0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x6A, 0x96, 0x75, 0xB5, 0xB3, 0x9A,
                           0x57, 0xE1, 0x43, 0x21, 0xB2, 0x74, 0xDE, 0xAD, 0xBE, 0xEF};

TEST(DistHdr, LineHeaderGoldenRoundTrip) {
  expect_round_trip<
      line, line::dst_format, line::l3_info_status, line::rt_result, line::frame_type, line::hdr_format, line::ifl24,
      line::error, line::rsvd1, line::pktlen, line::gpm_pkt_handle, line::igpb_queue, line::scoreboard,
      line::head_type_last, line::head_ptr_last, line::head_ptr_d, line::head_ptr_c, line::head_ptr_b, line::head_ptr_a,
      in_baf<baf::diag_pkt>, in_baf<baf::err_type>, in_baf<baf::vlan_pbits>, in_baf<baf::traffic_type>,
      in_baf<baf::l3_offset>, in_baf<baf::qfill_zone>, in_baf<baf::l3_type>, in_baf<baf::mark_l3::rt_v6>,
      in_baf<baf::mark_common::l2_uidb>, in_baf<baf::mark_l3::line_status_up>, in_baf<baf::mark_l3::ipv6_en>,
      in_baf<baf::mark_l3::mpls_en>, in_baf<baf::mark_l3::ext_req>, in_baf<baf::mark_l3::global_vrf>,
      in_baf<baf::mark_l3::uidb_maintenance_mode>, in_baf<baf::mark_l3::mark_11_4>, in_baf<baf::port_bits_l3_lb_hash>,
      in_baf<baf::port_bits_sat_encap>, in_baf<baf::port_bits_sat>, in_baf<baf::port_bits_rt_l3>,
      in_baf<baf::port_bits_2_0>, in_baf<baf::logical_port>, in_baf<baf::uidb_index>, in_baf<baf::da_bits>,
      in_baf<baf::rt_result_valid>, in_baf<baf::decode_bits>, in_baf<baf::timestamp>>(
      golden_line, {6,    0x15, 0x3C, 0x13, 1, 0x2A5, 1, 1,    0x5EE, 0x1ABC, 0x51,   0x9C3, 0x0A, 0x0B,   0x0C,
                    0x0D, 0x0E, 0x0F, 1,    2, 0xA,   1, 0x16, 1,     3,      1,      1,     1,    1,      1,
                    1,    1,    1,    0x33, 1, 1,     1, 1,    5,     0x7E1,  0x4321, 2,     1,    0x1274, 0xDEADBEEF});
}

// The fabric and common forms and the decode and mark views read the same
// bytes: their values follow from the golden bytes by hand.
TEST(DistHdr, OtherFormsReadTheGoldenBytesAtTheirPositions) {
  dist_hdr_fabric_st fab;
  dist_hdr_common_st common;
  baf rx;
  std::memcpy(&fab, golden_line.data(), sizeof fab);
  std::memcpy(&common, golden_line.data(), sizeof common);
  std::memcpy(&rx, golden_line.data() + DIST_HDR_BAF_OFFSET, sizeof rx);
  using cf = dist_hdr_common_st::fields;
  using zp = dist_hdr_common_st::zp;
  const std::tuple<const char*, std::uint32_t, std::uint32_t> rows[] = {
      {"fabric reserved 1.0/13", dist_hdr_fabric_st::reserved::get(fab), 0x793},
      {"fabric egpb_queue 7.5/7", dist_hdr_fabric_st::egpb_queue::get(fab), 0x51},
      {"common rsvd0 0.3/18", cf::rsvd0::get(common), 0x2A793},
      {"common rsvd4 12", cf::rsvd4::get(common), 0x0C0D0E0F},
      {"zp dst_format 0.1/2", zp::dst_format::get(common), 2},
      {"zp gpb_pkt_handle 6.0/13", zp::gpb_pkt_handle::get(common), 0x1ABC},
      {"mark_bits_high 2.4/12", baf::baf_override_common::mark_bits_high::get(rx), 0x5B5},
      {"portbits 5.0/12", baf::baf_override_common::portbits::get(rx), 0x9A5},
      {"v6 nxthdr_is_tcp 11.5", baf::v6::nxthdr_is_tcp::get(rx), 1},
  };
  for (const auto& [name, got, want] : rows) EXPECT_EQ(got, want) << name;
}

class DistHdrAccessors : public ::testing::Test {
 protected:
  testkit::npu_harness h;

  // Runs fn on the thread with a header of zeros but for `set`.
  void with_header(const byte_map& set, const std::function<void(env_t)>& fn) {
    with_header(with(sizeof(dist_hdr_line_st), set), fn);
  }
  void with_header(const bytes& hdr, const std::function<void(env_t)>& fn) {
    h.on_thread([&](env_t env) {
      std::memcpy(env->dist_hdr, hdr.data(), sizeof env->dist_hdr);
      fn(env);
    });
  }
  static byte_map header_of(env_t env) { return nonzero(env->dist_hdr); }
};

TEST_F(DistHdrAccessors, EachViewsAccessorsReadTheGoldenHeader) {
  with_header(golden_line, [](env_t env) {
    std::uint32_t entropy_offset = 0;
    const std::tuple<const char*, std::uint32_t, std::uint32_t> rows[] = {
        {"frame_type: its low two bits", pkt_get_rx_frame_type(env), 3},
        {"is_ingress", pkt_rx_is_ingress(env), 1},
        {"physical_port", pkt_get_rx_physical_port(env), 0x7E1},
        {"is_virt", pkt_rx_is_virt(env), 1},
        {"l3_uidb_ext_needed", pkt_rx_l3_uidb_ext_needed(env), 1},
        {"is_v6_mcast", pkt_rx_is_v6_mcast(env), 1},
        {"entropy label found", pkt_get_rx_entropy_label(env, &entropy_offset), 1},
        {"entropy label offset", entropy_offset, 6},
    };
    for (const auto& [name, got, want] : rows) EXPECT_EQ(got, want) << name;
  });
}

TEST_F(DistHdrAccessors, FrameTypeSetterAlsoWritesTheL3Type) {
  with_header(byte_map{{2, 0xF8}}, [](env_t env) {
    pkt_set_rx_frame_type(env, 2);
    EXPECT_EQ(header_of(env), (byte_map{{2, 0xF8}, {18, 0x20}}));
    EXPECT_EQ(pkt_get_rx_l3_type(env), 2u);
  });
}

TEST_F(DistHdrAccessors, InjectPortsAreQueues80To83) {
  const std::pair<std::uint8_t, bool> queues[] = {{79, false}, {80, true}, {83, true}, {84, false}};
  for (const auto& [queue, inject] : queues) {
    // igpb_queue: the low 3 bits of byte 7 are its top bits, the top 4 of byte 8 its low bits.
    with_header(byte_map{{7, static_cast<std::uint8_t>(queue >> 4)}, {8, static_cast<std::uint8_t>(queue << 4)}},
                [&](env_t env) { EXPECT_EQ(pkt_is_rx_inject_port(env) != 0, inject) << int{queue}; });
  }
}

TEST_F(DistHdrAccessors, IpOffsetStepsOverTheLabelsOnlyAfterDisposition) {
  // l3_offset 14 at byte 17; two labels at byte 26 bits 2..0.
  with_header(byte_map{{17, 14}, {26, 0x02}}, [](env_t env) {
    *ps_put_mod_common_flags(env) = common_flags_st{};
    EXPECT_EQ(pkt_get_rx_ip_offset(env), 14u);
    common_flags_st::mpls_to_ip::set(*ps_put_mod_common_flags(env), 1);
    EXPECT_EQ(pkt_get_rx_ip_offset(env), 22u);
    *ps_put_mod_common_flags(env) = common_flags_st{};
  });
}

TEST_F(DistHdrAccessors, RacetrackNeedsThePortBitAndTheMark) {
  const std::pair<byte_map, bool> cases[] = {
      {{{21, 0x04}}, false}, {{{18, 0x08}}, false}, {{{21, 0x04}, {18, 0x08}}, true}};
  for (const auto& [set, racetrack] : cases) {
    with_header(set, [&](env_t env) { EXPECT_EQ(pkt_rx_r2_racetrack(env) != 0, racetrack); });
  }
}

TEST_F(DistHdrAccessors, SettersWriteTheirFieldsOnly) {
  with_header(byte_map{}, [](env_t env) {
    pkt_set_rx_physical_port(env, 0xABC);
    pkt_set_rx_uidb_index(env, 0x1234);
    pkt_set_rx_l3_offset(env, 0x7F);
    pkt_set_rx_rt_thread(env, 12);
    pkt_set_rt_thread_valid(env, TRUE);
    pkt_rx_set_l3_uidb_ext_needed(env, TRUE);
    pkt_rx_set_l3_fast_uidb_ext_needed(env, TRUE);
    pkt_set_rx_ipv6_ll_dip(env, TRUE);
    pkt_set_rx_entropy_label(env, 5);
    EXPECT_EQ(
        header_of(env),
        (byte_map{
            {1, 12}, {17, 0x7F}, {19, 0x0C}, {22, 0x0A}, {23, 0xBC}, {24, 0x12}, {25, 0x34}, {26, 0x24}, {27, 0x68}}));
    EXPECT_TRUE(pkt_rx_rt_thread_is_l2_control(env));
    EXPECT_TRUE(pkt_rx_l2_uidb_ext_req(env));
  });
}

}  // namespace
