// The control side changes routes while an NPU thread searches: every
// search sees each change whole or not at all.
#include <atomic>
#include <thread>

#include "npu/zephra/plu.h"

#include "search_test_util.h"

namespace {

using namespace st;

constexpr int CHANGES = 200;

// The leaf of a /8, /24 or /32, by its length: the tag tells which.
std::uint8_t tag_of(std::uint32_t length) { return static_cast<std::uint8_t>(length); }

TEST(PluConcurrency, SearchesSeeEachChangeWholeOrNotAtAll) {
  testkit::npu_harness h;
  ASSERT_EQ(h.tables().routes().add_prefix(ctrl::ipv4_prefix({0}, 0x0A000000, 8), leaf_of(tag_of(8))),
            ctrl::error::none);
  std::atomic<bool> done{false};
  std::thread control([&] {
    for (int i = 0; i < CHANGES; ++i) {
      const std::uint32_t net = 0x0A000000 | (static_cast<std::uint32_t>(i % 64) << 16);
      h.tables().routes().add_prefix(ctrl::ipv4_prefix({0}, net, 24), leaf_of(tag_of(24)));
      h.tables().routes().add_prefix(ctrl::ipv4_prefix({0}, net | 5, 32), leaf_of(tag_of(32)));
      h.tables().routes().replace_prefix(ctrl::ipv4_prefix({0}, net | 5, 32), leaf_of(tag_of(32)));
      h.tables().routes().delete_prefix(ctrl::ipv4_prefix({0}, net, 24));
      h.tables().routes().delete_prefix(ctrl::ipv4_prefix({0}, net | 5, 32));
    }
    done = true;
  });
  h.on_thread([&](env_t env) {
    for (std::uint32_t k = 0; !done; ++k) {
      plu_ipv4_global_unicast_addr(env, 0x0A000000 | ((k % 64) << 16) | (k % 2 ? 5 : 9), REQ, RESP);
      const auto r = record_at<plu_result_st>(env, RESP);
      ASSERT_EQ(plu_result_st::result_type::get(r), PLU_RESULT_MATCH);
      const std::uint32_t length = plu_result_st::prefix_len::get(r);
      const std::uint8_t* leaf = plu_result_st::leaf_data::data(r);
      for (std::uint32_t b = 0; b < PLU_LEAF_DATA_BYTES; ++b) ASSERT_EQ(leaf[b], tag_of(length)) << "byte " << b;
    }
  });
  control.join();
  EXPECT_EQ(h.npu().plu().routes(), 1u);
}

}  // namespace
