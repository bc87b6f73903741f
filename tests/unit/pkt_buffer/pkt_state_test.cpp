// The packet window: the saved header and the interface's marks taken into
// the distribution header.
#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <vector>

#include "dplane/infra/lookup_tables.h"
#include "npu/zephra/pkt_buf.h"
#include "testkit/npu_harness.h"

namespace {

using bytes = std::vector<std::uint8_t>;

class PktState : public ::testing::Test {
 protected:
  testkit::npu_harness h;

  // A 100-byte packet counting 0, 1, 2, ... at its arrival place.
  static std::uint8_t* arrive(env_t env) {
    std::memset(env->dist_hdr, 0, sizeof env->dist_hdr);
    dist_hdr_line_st::pktlen::set(pkt_rx_line_hdr_mod(env), 100);
    std::uint8_t* start = *ps_get_pkt_mem_start(env) + PKT_START_OFFSET;
    std::iota(start, start + 100, std::uint8_t{0});
    *ps_put_mod_pkt_start(env) = start;
    *ps_put_mod_curr_pkt_len(env) = 100;
    *ps_put_mod_common_flags(env) = common_flags_st{};
    return start;
  }
  static bytes saved(env_t env, std::size_t n) {
    const std::uint8_t* save = env_get_pkt_ing_save_area_start(env);
    return {save, save + n};
  }
};

TEST_F(PktState, SavingTheSameLengthTwiceCopiesOnce) {
  h.on_thread([](env_t env) {
    std::uint8_t* start = arrive(env);
    *ps_put_mod_l2_hdr_len(env) = 0x00010016;
    pkt_ing_save_hdr_inline(env, 20, nullptr);
    EXPECT_EQ(saved(env, 24), bytes(start, start + 24));  // whole units of 8
    EXPECT_EQ(*ps_get_saved_pkt_hdr_len(env), 20);
    EXPECT_EQ(*ps_get_saved_pkt_l2_hdr_len(env), 0x16);
    EXPECT_EQ(*ps_get_saved_pkt_orig_start(env), start);
    start[0] = 0xEE;
    pkt_ing_save_hdr(env, 20, nullptr);
    EXPECT_EQ(saved(env, 1), bytes{0x00});
    pkt_ing_save_hdr(env, 30, nullptr);
    EXPECT_EQ(saved(env, 32), bytes(start, start + 32));
  });
}

TEST_F(PktState, MarkBitsComeFromTheInterfaceRecordIntoTheBafPart) {
  model::table_memory& mem = h.npu().memory();
  mem.write_u32(mem.translate(TABLE_BASE_UIDB_MARK_BITS_ING + 5 * 4), 0x00ABCDEF);
  h.on_thread([](env_t env) {
    std::memset(env->dist_hdr, 0x5C, 16);
    const std::uint8_t baf[8] = {0x12, 0x34, 0x56, 0x78, 0xFF, 0xFF, 0xFF, 0xFF};
    std::memcpy(env->dist_hdr + 16, baf, sizeof baf);
    pkt_update_ing_mark_bits(env, 5);
    EXPECT_EQ(bytes(env->dist_hdr, env->dist_hdr + 16), bytes(16, 0x5C));
    // Word 0 takes the marks' bits 23..12 low; word 1 bits 11..4 on top, and
    // keeps the bits of 0x008FFFFF.
    EXPECT_EQ(bytes(env->dist_hdr + 16, env->dist_hdr + 24), (bytes{0x12, 0x34, 0x5A, 0xBC, 0xDE, 0x8F, 0xFF, 0xFF}));
  });
}

}  // namespace
