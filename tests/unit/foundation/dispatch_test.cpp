// Dispatch of a packet to its handler: line vectors, fabric header types,
// host buffers, the rare formats and the exception vectors.
#include <gtest/gtest.h>

#include <set>

#include "foundation_test_util.h"

namespace {

using namespace ft;

// A line packet whose decode bits let every exception vector reach its body.
dist_hdr clean_line(std::uint32_t vector) {
  return dist_hdr::line(vector)
      .set<dh::ipv4_en>(1)
      .set<dh::ipv6_en>(1)
      .set<dh::mpls_en>(1)
      .set<dh::da_bits>(1)
      .set<dh::igpb_queue>(80);
}

// A frame of 64 bytes (or `size`), zero but for `head` at `offset`.
std::vector<std::uint8_t> frame_at(std::size_t offset, std::vector<std::uint8_t> head, std::size_t size = 64) {
  std::vector<std::uint8_t> f(size, 0);
  std::copy(head.begin(), head.end(), f.begin() + static_cast<std::ptrdiff_t>(offset));
  return f;
}

using testkit::ran_at_nph_type;
using testkit::ran_at_vector;

// Each wire vector runs the entry of its own row, with the port's global
// feature bit as argument; the probe stands in for the row's handler.
TEST(IngressDispatch, EachWireVectorRunsItsRow) {
  testkit::npu_harness h;
  for (std::uint32_t vector = 0; vector <= 12; ++vector) {
    for (boolean_t feature : {FALSE, TRUE}) {
      SCOPED_TRACE("vector " + std::to_string(vector) + " global feature " + std::to_string(feature));
      testkit::probe_vector(h, vector);
      expect_outcome(h.one(clean_line(vector).set<dh::port_bits_gbl_feature>(feature)), {"", {}});
      EXPECT_EQ(testkit::take_probe_calls(), testkit::probe_calls{ran_at_vector(vector, feature)});
    }
  }
}

// The fabric header types that have a handler; every other type of 0..63
// is a bad header.
const std::set<std::uint32_t> HANDLED_TYPES = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 12, 15, 16,
                                               17, 19, 21, 23, 25, 32, 33, 34, 35, 36, 37, 63};

// Every header type 0..63, through the fold of types onto table slots.
TEST(FabricDispatch, EveryHandledHeaderTypeRunsItsRowAndTheOthersDrop) {
  testkit::npu_harness h;
  for (std::uint8_t type = 0; type < 64; ++type) {
    SCOPED_TRACE("nph_type " + std::to_string(type));
    const bool handled = HANDLED_TYPES.contains(type);
    if (handled) testkit::probe_nph_type(h, type);
    expect_outcome(h.one(dist_hdr::fabric(), frame_at(8, {type})), handled ? expect_end{} : expect_end{"", {0x294}});
    EXPECT_EQ(testkit::take_probe_calls(),
              handled ? testkit::probe_calls{ran_at_nph_type(type)} : testkit::probe_calls{});
  }
}

// A traced header's mark and counter are checked with the traced drop.
TEST(FabricDispatch, CriticalInjectMarksThePacketBeforeItsHandler) {
  testkit::npu_harness h;
  testkit::probe_nph_type(h, 1);
  h.one(dist_hdr::fabric(), frame_at(8, {1, 0x80}));
  EXPECT_EQ(testkit::take_probe_calls(), testkit::probe_calls{ran_at_nph_type(1)});
  h.on_thread([&](env_t env) {
    const common_flags_st& f = *ps_get_common_flags(env);
    const inject_flags_st& inj = *ps_get_inject_flags(env);
    EXPECT_EQ((std::vector<std::uint32_t>{cf::critical_priority::get(f), cf::acl_lookup_miss::get(f),
                                          cf::qos_lookup_miss::get(f), inject_flags_st::injected_pkt::get(inj),
                                          inject_flags_st::critical_inject::get(inj)}),
              std::vector<std::uint32_t>(5, 1));
  });
}

const std::vector<std::uint8_t> IPV4 = frame_at(12, {0x08, 0x00});
const std::vector<std::uint8_t> IPV6 = frame_at(12, {0x86, 0xDD});

struct dispatch_row {
  const char* name;
  dist_hdr hdr;
  std::vector<std::uint8_t> frame;  // empty: the harness's own
  expect_end e;
  bool probe_ran = false;  // vector 0's row ran
  int mac_mismatch = -1;   // mac_mismatch_drop left for the body, -1 unchecked
};

// An IP packet at offset 14 to `dst`, on vector 7 (IPv4) or 8 (IPv6).
dist_hdr ip_line(std::uint32_t vector, std::uint32_t is_mcast, std::uint32_t da_bits) {
  return clean_line(vector).set<dh::is_mcast>(is_mcast).set<dh::da_bits>(da_bits).set<dh::l3_offset>(14);
}
std::vector<std::uint8_t> ip_frame(std::uint32_t vector, std::vector<std::uint8_t> dst) {
  return frame_at(vector == 7 ? 30 : 38, std::move(dst), 128);
}

// The paths a packet takes without the wire vectors' table, each at its
// edges: the vectors above the wire range, subscriber intake, host inject and
// host buffers, the rare formats, and the exception vectors' refusals and
// bodies: for IP the multicast scope picks the body, the MAC class decides
// mac_mismatch_drop for the body to act on. The decode miss, MPLS and
// maintenance drops are proved with real frames by the ingress decode
// scenario; IPv4 unicast of another class stands with the interface tables.
TEST(Dispatch, EachPathEndsInItsHandlerOrItsCounter) {
  testkit::npu_harness h;
  const auto inject = [](std::uint32_t queue, std::uint32_t l3_type) {
    return dist_hdr::line(13).set<dh::igpb_queue>(queue).set<dh::l3_type>(l3_type);
  };
  const dispatch_row rows[] = {
      {"vector 14", clean_line(14), {}, {"punt_ptp_followup", {}}},
      {"vector 255", clean_line(255), {}, {"", {0x295}}},
      {"subscriber", dist_hdr::line(0).set<dh::read_bng_uidb_ext>(1), {}, {"handle_subscriber_packets", {}}},
      {"subscriber over MPLS", dist_hdr::line(0).set<dh::read_bng_uidb_ext>(1).set<dh::mpls_en>(1), {}, {}, true},
      {"inject queue 79", inject(79, 0), IPV4, {"", {0x220}}},
      {"inject queue 80", inject(80, 0), IPV6, {"plat_process_inject", {}}},
      {"inject queue 83", inject(83, 0), frame_at(0, {}), {"plat_process_inject", {}}},
      {"inject queue 84", inject(84, 0), IPV4, {"", {0x220}}},
      {"inject IPv6 of an IPv6 frame", inject(82, 2), IPV6, {"", {0x220}}},
      {"inject of L3 type 3", inject(80, 3), frame_at(0, {}), {"", {0x220}}},
      {"host buffer 3, old version", dist_hdr::format(3), frame_at(0, {0x81}), {"", {0x20F}}},
      {"host buffer 5, type 0", dist_hdr::format(5), frame_at(0, {0x00}), {"", {}}},
      {"host buffer 7, type 1", dist_hdr::format(7), frame_at(0, {0x01}), {"process_tbpg", {}}},
      {"host buffer 3, type 2", dist_hdr::format(3), frame_at(0, {0x02}), {"process_fab_traffic_gen", {}}},
      {"host buffer 5, type 3", dist_hdr::format(5), frame_at(0, {0x03}), {"", {0x28F}}},
      {"recycle", dist_hdr::format(0), {}, {"recycle_rx", {}}},
      {"loopback format 1", dist_hdr::format(1), {}, {"npu_handle_special_dst_format", {}}},
      {"errored fabric frame", dist_hdr::fabric().set<dh::error>(1), frame_at(8, {1}), {"", {0x297}}},
      {"vector 7, L2 maintenance", clean_line(7).set<dh::l2_uidb_maintenance_mode>(1), {}, {"ipv4_ing_nonperf", {}}},
      {"vector 10, L3 maintenance", clean_line(10).set<dh::l3_uidb_maintenance_mode>(1), {}, {"vpws_ing", {}}},
      {"v4 224.0.0.255", ip_line(7, 1, 0), ip_frame(7, {224, 0, 0, 255}), {"ipv4_ing_nonperf", {}}, false, 0},
      {"v4 224.0.1.1", ip_line(7, 1, 0), ip_frame(7, {224, 0, 1, 1}), {"ipm4_ing_nonperf", {}}},
      {"v4 unicast, class 3", ip_line(7, 0, 3), ip_frame(7, {10, 0, 0, 1}), {"ipv4_ing_nonperf", {}}, false, 0},
      {"v6 ff02::1", ip_line(8, 1, 1), ip_frame(8, {0xFF, 0x02}), {"ipv6_ing_nonperf", {}}, false, 0},
      {"v6 ff0e::1", ip_line(8, 1, 0), ip_frame(8, {0xFF, 0x0E}), {"ipm6_ing_nonperf", {}}},
      {"v6 unicast, class 0", ip_line(8, 0, 0), ip_frame(8, {0x20, 0x01}), {"ipv6_ing_nonperf", {}}, false, 1},
  };
  testkit::probe_vector(h, 0);
  for (const dispatch_row& r : rows) {
    SCOPED_TRACE(r.name);
    expect_outcome(h.one(r.hdr, r.frame), r.e);
    EXPECT_EQ(testkit::take_probe_calls(),
              r.probe_ran ? testkit::probe_calls{ran_at_vector(0)} : testkit::probe_calls{});
    if (r.mac_mismatch >= 0) {
      EXPECT_EQ(cf::mac_mismatch_drop::get(flags_after(h)), static_cast<std::uint32_t>(r.mac_mismatch));
    }
  }
}

}  // namespace
