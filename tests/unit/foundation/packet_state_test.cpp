// The thread context: start of a thread and the per-packet and per-pass reset.
#include <gtest/gtest.h>

#include <cstring>

#include "arch_tie.h"
#include "dplane/infra/env_init.h"
#include "foundation_test_util.h"

namespace {

using namespace ft;

TEST(PacketLoop, EveryPacketStartsWithAFreshState) {
  testkit::npu_harness h;
  testkit::probe_vector(h, 0);
  std::vector<std::uint8_t*> buffers;
  for (std::uint16_t len : {100, 1234}) {
    SCOPED_TRACE("length " + std::to_string(len));
    h.on_thread([](env_t env) {
      std::memset(ps_put_mod_common_flags(env), 0xFF, sizeof(common_flags_st));
      std::memset(ps_put_mod_common_flags2(env), 0xFF, sizeof(common_flags2_st));
      ps_put_mod_inject_flags(env)->bits = 0xFF;
      *ps_put_mod_vrf_id(env) = 0xFFFFFFFF;
      *ps_put_mod_hw_np_port(env) = 7;
      *ps_put_mod_pkt_start(env) = nullptr;
    });
    const std::vector<std::uint8_t> frame = {1, 2, 3, 4, 5, 6, 7, 8};
    h.one(dist_hdr::line(0).set<dh::pktlen>(len), frame);
    EXPECT_EQ(testkit::take_probe_calls(), testkit::probe_calls{testkit::ran_at_vector(0)});
    h.on_thread([&](env_t env) {
      const std::uint8_t zeros[8] = {};
      EXPECT_EQ(std::memcmp(ps_get_common_flags(env), zeros, 8), 0);
      EXPECT_EQ(std::memcmp(ps_get_common_flags2(env), zeros, 4), 0);
      EXPECT_EQ(ps_get_inject_flags(env)->bits, 0);
      EXPECT_EQ(*ps_get_vrf_id(env), 0u);
      EXPECT_EQ(*ps_get_hw_np_port(env), 255);
      EXPECT_EQ(*ps_get_curr_pkt_len(env), len);
      // Packet memory follows the buffer the platform gave for this packet.
      EXPECT_EQ(*ps_get_pkt_mem_start(env), get_gpb_start_addr() + 4096);
      EXPECT_EQ(*ps_get_pkt_start(env), *ps_get_pkt_mem_start(env) + 160);
      EXPECT_EQ(std::memcmp(*ps_get_pkt_start(env), frame.data(), frame.size()), 0);
      buffers.push_back(*ps_get_pkt_mem_start(env));
    });
  }
  EXPECT_NE(buffers[0], buffers[1]);  // the model hands out its two buffers in turn
}

// A further pass keeps exactly the flags of the keep table, by rx_tx_adj_pwhe.
TEST(MultipassInit, KeepsExactlyTheFlagsOfTheKeepTable) {
  struct row {
    const char* name;
    std::uint32_t flags2_before;
    std::uint32_t word0, word1, flags2;
  };
  const row rows[] = {
      {"rx_tx_adj_pwhe set", 0xFFFFFFFF, 0xA0C00012, 0x00000023, 0x00206407},
      {"rx_tx_adj_pwhe clear", 0xFFFFFFFB, 0xA0400002, 0x00040003, 0x00200403},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    h.on_thread([&](env_t env) {
      std::memset(ps_put_mod_common_flags(env), 0xFF, sizeof(common_flags_st));
      reinterpret_cast<be_u32*>(ps_put_mod_common_flags2(env))->set(r.flags2_before);
      std::uint8_t* start = *ps_get_pkt_mem_start(env) + 200;
      *ps_put_mod_pkt_start(env) = start;
      ps_put_mod_inject_flags(env)->bits = 0x81;
      *ps_put_mod_vrf_id(env) = 42;

      internal_plat_per_packet_init(env, TRUE);

      const std::uint8_t* f = ps_get_common_flags(env)->bytes;
      EXPECT_EQ(word_at(f), r.word0);
      EXPECT_EQ(word_at(f + 4), r.word1);
      EXPECT_EQ(word_at(ps_get_common_flags2(env)->bytes), r.flags2);
      EXPECT_EQ(*ps_get_pkt_start(env), start);
      EXPECT_EQ(ps_get_inject_flags(env)->bits, 0x81);
      EXPECT_EQ(*ps_get_vrf_id(env), 42u);
    });
  }
}

// What a thread derives from its identity word at start.
TEST(ThreadStart, IdentityDerivedFields) {
  struct row {
    std::uint32_t identity;
    std::uint32_t stats_rep_offset;
    std::uint32_t tlu_policy;
    std::uint32_t stack_top;
  };
  const row rows[] = {{0, 0, 0x02000000, 0x4450000},         {3, 0xC00C, 0x02000000, 0x4450000},
                      {8, 0, 0x02000000, 0x444F140},         {0x50, 0, 0, 0x4446C80},
                      {0x9B, 0xC00C, 0x02000000, 0x444D3A0}, {0x10010, 0, 0, 0x444E280}};
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE("identity " + std::to_string(r.identity));
    h.on_thread([&](env_t env) {
      h.npu().thread(0).identity = r.identity;
      env_ps_initialize(env);
      EXPECT_EQ(*ps_get_stats_rep_offset(env), r.stats_rep_offset);
      EXPECT_EQ(*ps_get_tlu_alloc_policy_for_read(env), r.tlu_policy);
      EXPECT_EQ(*ps_get_thread_stack_top(env), r.stack_top);
      EXPECT_EQ(npu_get_thread_id(env), r.identity & 0xFFFF);
    });
  }
}

}  // namespace
