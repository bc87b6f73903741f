// The distribution header: one golden line header written field by field and
// read back, then through the thread's accessors, and the accessors that do
// more than read their field.
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

class DistHdrAccessors : public ::testing::Test {
 protected:
  testkit::npu_harness h;

  // Runs fn on the thread with the header `hdr`.
  void with_header(const bytes& hdr, const std::function<void(env_t)>& fn) {
    h.on_thread([&](env_t env) {
      std::memcpy(env->dist_hdr, hdr.data(), sizeof env->dist_hdr);
      fn(env);
    });
  }
};

TEST_F(DistHdrAccessors, EachViewsAccessorsReadTheGoldenHeader) {
  with_header(golden_line, [](env_t env) {
    std::uint32_t entropy_offset = 0;
    const std::tuple<const char*, std::uint32_t, std::uint32_t> rows[] = {
        {"is_ingress", pkt_rx_is_ingress(env), 1},
        {"physical_port", pkt_get_rx_physical_port(env), 0x7E1},
        {"is_virt", pkt_rx_is_virt(env), 1},
        {"is_v6_mcast", pkt_rx_is_v6_mcast(env), 1},
        {"entropy label found", pkt_get_rx_entropy_label(env, &entropy_offset), 1},
        {"entropy label offset", entropy_offset, 6},
    };
    for (const auto& [name, got, want] : rows) EXPECT_EQ(got, want) << name;
  });
}

TEST_F(DistHdrAccessors, InjectPortsAreQueues80To83) {
  const std::pair<std::uint8_t, bool> queues[] = {{79, false}, {80, true}, {83, true}, {84, false}};
  for (const auto& [queue, inject] : queues) {
    // igpb_queue: the low 3 bits of byte 7 are its top bits, the top 4 of byte 8 its low bits.
    with_header(with(sizeof(dist_hdr_line_st),
                     {{7, static_cast<std::uint8_t>(queue >> 4)}, {8, static_cast<std::uint8_t>(queue << 4)}}),
                [&](env_t env) { EXPECT_EQ(pkt_is_rx_inject_port(env) != 0, inject) << int{queue}; });
  }
}

TEST_F(DistHdrAccessors, IpOffsetStepsOverTheLabelsOnlyAfterDisposition) {
  // l3_offset 14 at byte 17; two labels at byte 26 bits 2..0.
  with_header(with(sizeof(dist_hdr_line_st), {{17, 14}, {26, 0x02}}), [](env_t env) {
    *ps_put_mod_common_flags(env) = common_flags_st{};
    EXPECT_EQ(pkt_get_rx_ip_offset(env), 14u);
    common_flags_st::mpls_to_ip::set(*ps_put_mod_common_flags(env), 1);
    EXPECT_EQ(pkt_get_rx_ip_offset(env), 22u);
    *ps_put_mod_common_flags(env) = common_flags_st{};
  });
}

}  // namespace
