// A chassis of two NPUs for the fabric tests: a test handler on NPU 0 runs
// the test's body on a line packet whose payload counts up from 0xA0; VQI
// DEST_VQI is served by NPU 1.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "npu/zephra/pkt_buf.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/fab_hdr_write.h"
#include "testkit/dispatch_probe.h"

namespace fabric_test {

inline constexpr std::uint32_t FAB_HDR_BYTES = 32;
inline constexpr std::uint32_t DEST_VQI = 0x123;

inline std::vector<std::uint8_t> payload_of(std::uint32_t len) {
  std::vector<std::uint8_t> p(len);
  for (std::uint32_t i = 0; i < len; ++i) p[i] = static_cast<std::uint8_t>(0xA0 + i);
  return p;
}

// A cleared IPv4 unicast fabric header at fab, to DEST_VQI.
inline void write_unicast_header(std::uint8_t* fab) {
  for (std::uint32_t i = 0; i < FAB_HDR_BYTES; ++i) fab[i] = 0;
  dc3_nph_st::nph_type::set(fab_as<dc3_nph_st>(fab), NPH_TYPE_IPV4_UNI);
  plat_fab_hdr_write_vqi_voq(fab, DEST_VQI);
}

inline const dc3_nph_st& header_of(const std::vector<std::uint8_t>& frame) {
  return *reinterpret_cast<const dc3_nph_st*>(frame.data());
}

class FabricFixture : public ::testing::Test {
 protected:
  FabricFixture() { EXPECT_EQ(h.chassis_tables().map_vqi(DEST_VQI, 1), ctrl::error::none); }

  // Sends one line packet with a payload of len bytes through body on NPU 0.
  model::packet_outcome send_through(std::uint32_t len, std::function<void(env_t)> body) {
    testkit::probe_vector(h, testkit::TEST_VECTOR, std::move(body));
    h.send(testkit::line_packet(7).set<dist_hdr_line_st::pktlen>(len), payload_of(len));
    const auto out = h.run(0);
    EXPECT_EQ(out.size(), 1u);
    return out.empty() ? model::packet_outcome{} : out[0];
  }

  testkit::npu_harness h{2, 1};
};

}  // namespace fabric_test
