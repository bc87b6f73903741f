// The distribution-header accessors on a thread's header: each reads or
// writes the bytes of its field.
#include <gtest/gtest.h>

#include <cstring>

#include "header_bytes.h"
#include "npu/zephra/pkt_rx.h"
#include "testkit/npu_harness.h"

namespace {

using namespace ht;

class DistHdrAccessors : public ::testing::Test {
 protected:
  testkit::npu_harness h;

  // Runs fn on the thread with a header of zeros but for `set`.
  void with_header(const byte_map& set, const std::function<void(env_t)>& fn) {
    h.on_thread([&](env_t env) {
      std::memset(env->dist_hdr, 0, sizeof env->dist_hdr);
      for (const auto& [pos, v] : set) env->dist_hdr[pos] = v;
      fn(env);
    });
  }
  static byte_map header_of(env_t env) {
    byte_map m;
    for (std::size_t i = 0; i < sizeof env->dist_hdr; ++i) {
      if (env->dist_hdr[i]) m[i] = env->dist_hdr[i];
    }
    return m;
  }
};

TEST_F(DistHdrAccessors, FrameTypeReadsTwoBitsAndItsSetterWritesTheL3Type) {
  with_header({{2, 0xF8}}, [](env_t env) {
    EXPECT_EQ(pkt_get_rx_frame_type(env), 3u);
    pkt_set_rx_frame_type(env, 2);
    EXPECT_EQ(header_of(env), (byte_map{{2, 0xF8}, {18, 0x20}}));
    EXPECT_EQ(pkt_get_rx_l3_type(env), 2u);
  });
}

TEST_F(DistHdrAccessors, InjectPortsAreQueues80To83) {
  const std::pair<std::uint8_t, bool> queues[] = {{79, false}, {80, true}, {83, true}, {84, false}};
  for (const auto& [queue, inject] : queues) {
    // igpb_queue: the low 3 bits of byte 7 are its top bits, the top 4 of byte 8 its low bits.
    with_header({{7, static_cast<std::uint8_t>(queue >> 4)}, {8, static_cast<std::uint8_t>(queue << 4)}},
                [&](env_t env) {
                  EXPECT_EQ(pkt_get_rx_input_qid(env), queue);
                  EXPECT_EQ(pkt_is_rx_inject_port(env) != 0, inject) << int{queue};
                });
  }
}

TEST_F(DistHdrAccessors, IpOffsetStepsOverTheLabelsOnlyAfterDisposition) {
  // l3_offset 14 at byte 17; two labels at byte 26 bits 2..0.
  with_header({{17, 14}, {26, 0x02}}, [](env_t env) {
    *ps_put_mod_common_flags(env) = common_flags_st{};
    EXPECT_EQ(pkt_get_rx_l3_offset(env), 14u);
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

TEST_F(DistHdrAccessors, EntropyLabelSetterWritesBothFields) {
  with_header({}, [](env_t env) {
    std::uint32_t offset = 9;
    EXPECT_FALSE(pkt_get_rx_entropy_label(env, &offset));
    EXPECT_EQ(offset, 0u);
    pkt_set_rx_entropy_label(env, 5);
    EXPECT_EQ(header_of(env), (byte_map{{27, 0x68}}));
    EXPECT_TRUE(pkt_get_rx_entropy_label(env, &offset));
    EXPECT_EQ(offset, 5u);
  });
}

TEST_F(DistHdrAccessors, SettersWriteTheirFieldsOnly) {
  with_header({}, [](env_t env) {
    pkt_set_rx_physical_port(env, 0xABC);
    pkt_set_rx_uidb_index(env, 0x1234);
    pkt_set_rx_l3_offset(env, 0x7F);
    pkt_set_rx_rt_thread(env, 12);
    pkt_set_rt_thread_valid(env, TRUE);
    pkt_rx_set_l3_uidb_ext_needed(env, TRUE);
    pkt_rx_set_l3_fast_uidb_ext_needed(env, TRUE);
    pkt_set_rx_ipv6_ll_dip(env, TRUE);
    EXPECT_EQ(header_of(env), (byte_map{{1, 12}, {17, 0x7F}, {19, 0x0C}, {22, 0x0A}, {23, 0xBC}, {24, 0x12},
                                        {25, 0x34}, {26, 0x24}}));
    EXPECT_TRUE(pkt_rx_rt_thread_is_l2_control(env));
    EXPECT_TRUE(pkt_rx_l2_uidb_ext_req(env));
    EXPECT_TRUE(pkt_rx_ipv6_ll_dip(env));
    EXPECT_FALSE(pkt_rx_ipv6_ll_sip(env));
  });
}

TEST_F(DistHdrAccessors, ReadersOfTheMarksAndDecodeBits) {
  with_header({{16, 0x0A},
               {18, 0x04},
               {19, 0x11},
               {20, 0x80},
               {21, 0x40},
               {26, 0x10},
               {28, 0xDE},
               {29, 0xAD},
               {30, 0xBE},
               {31, 0xEF}},
              [](env_t env) {
                EXPECT_EQ(pkt_rx_vlan_pbits(env), 0xAu);
                EXPECT_TRUE(pkt_rx_l2_vpls_on(env));
                EXPECT_TRUE(pkt_rx_global_vrf(env));
                EXPECT_TRUE(pkt_rx_mpls_enabled(env));
                EXPECT_TRUE(pkt_rx_l3_uidb_maintenance_mode(env));
                EXPECT_TRUE(pkt_rx_port_bits_ext(env));
                EXPECT_TRUE(pkt_rx_is_v4_mcast(env));
                EXPECT_TRUE(pkt_rx_is_v6_mcast(env));
                EXPECT_FALSE(pkt_rx_l2_line_status_up(env));
                EXPECT_EQ(pkt_get_timestamp(env), 0xDEADBEEFu);
              });
}

}  // namespace
