// Dispatch of a packet to its handler: line vectors, fabric header types,
// host buffers, the rare formats and the exception vectors.
#include <gtest/gtest.h>

#include <set>

#include "ctrl/counters.h"
#include "testkit/routed_port.h"
#include "foundation_test_util.h"

namespace {

using namespace ft;

struct expect_end {
  std::string handler;  // unbuilt handler reached, empty for none
  counters glb;         // global counters bumped while the packet was held
};

void expect_outcome(const model::packet_outcome& o, const expect_end& e) {
  EXPECT_EQ(o.end, model::packet_end::freed);
  EXPECT_EQ(reached(o), e.handler);
  EXPECT_EQ(o.global_counters, e.glb);
}

// A line packet whose decode bits let every exception vector reach its body.
dist_hdr clean_line(std::uint32_t vector) {
  return dist_hdr::line(vector)
      .set<dh::ipv4_en>(1)
      .set<dh::ipv6_en>(1)
      .set<dh::mpls_en>(1)
      .set<dh::da_bits>(1)
      .set<dh::igpb_queue>(80);
}

std::vector<std::uint8_t> fabric_frame(std::uint8_t byte8, std::uint8_t byte9 = 0) {
  std::vector<std::uint8_t> f(64, 0);
  f[8] = byte8;
  f[9] = byte9;
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

// Vectors above the wire range leave the table alone: 13 and 14 have their
// own bodies, the others are unknown.
TEST(IngressDispatch, VectorsAboveTheWireRangeSkipTheTable) {
  const std::vector<std::pair<std::uint32_t, expect_end>> cases = {
      {13, {"plat_process_inject", {}}},
      {14, {"punt_ptp_followup", {}}},
      {15, {"", {0x295}}},
      {16, {"", {0x295}}},
      {127, {"", {0x295}}},
      {255, {"", {0x295}}},
  };
  testkit::npu_harness h;
  for (const auto& [vector, e] : cases) {
    SCOPED_TRACE("vector " + std::to_string(vector));
    testkit::probe_vector(h, vector);
    expect_outcome(h.one(clean_line(vector)), e);
    EXPECT_TRUE(testkit::take_probe_calls().empty());
  }
}

TEST(IngressDispatch, InvalidVectorIsADecodeMissWhateverItsValue) {
  struct row {
    std::uint32_t vector;
    std::uint32_t l2_uidb;
    expect_end e;
  };
  const row rows[] = {
      {0, 1, {"", {0x295}}},
      {0, 0, {"l2_ctrl_ing", {}}},
      {13, 0, {"l2_ctrl_ing", {}}},
      {200, 1, {"", {0x295}}},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE("vector " + std::to_string(r.vector) + " l2_uidb " + std::to_string(r.l2_uidb));
    expect_outcome(h.one(clean_line(r.vector).set<dh::rt_result_valid>(0).set<dh::l2_uidb>(r.l2_uidb)), r.e);
  }
}

TEST(IngressDispatch, SubscriberIntakeOnlyWithoutMpls) {
  testkit::npu_harness h;
  testkit::probe_vector(h, 0);
  expect_outcome(h.one(dist_hdr::line(0).set<dh::read_bng_uidb_ext>(1)), {"handle_subscriber_packets", {}});
  EXPECT_TRUE(testkit::take_probe_calls().empty());
  expect_outcome(h.one(dist_hdr::line(0).set<dh::read_bng_uidb_ext>(1).set<dh::mpls_en>(1)), {"", {}});
  EXPECT_EQ(testkit::take_probe_calls(), testkit::probe_calls{ran_at_vector(0)});
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
    expect_outcome(h.one(dist_hdr::fabric(), fabric_frame(type)), handled ? expect_end{} : expect_end{"", {0x294}});
    EXPECT_EQ(testkit::take_probe_calls(),
              handled ? testkit::probe_calls{ran_at_nph_type(type)} : testkit::probe_calls{});
  }
}

// Types that are forms of one traffic kind share one handler.
TEST(FabricDispatch, FormsOfOneKindShareTheirHandler) {
  const std::vector<std::vector<std::uint32_t>> kinds = {
      {1, 19, 32}, {3, 23, 34}, {5, 33}, {7, 37}, {15, 63},
  };
  testkit::npu_harness h;
  h.on_thread([&](env_t) {
    for (const auto& types : kinds) {
      for (std::uint32_t type : types) {
        SCOPED_TRACE("nph_type " + std::to_string(type));
        EXPECT_EQ(nph_ep_entry(nph_type_to_ep_table_index(type)), nph_ep_entry(nph_type_to_ep_table_index(types[0])));
      }
    }
  });
}

TEST(FabricDispatch, ErroredFrameIsDroppedBeforeItsType) {
  testkit::npu_harness h;
  expect_outcome(h.one(dist_hdr::fabric().set<dh::error>(1), fabric_frame(1)), {"", {0x297}});
}

TEST(FabricDispatch, TraceAndCriticalInjectMarkThePacketBeforeItsHandler) {
  struct row {
    const char* name;
    std::uint8_t ptrace;
    std::uint8_t critical;
  };
  const row rows[] = {{"trace", 1, 0}, {"critical inject", 0, 1}, {"both", 1, 1}};
  testkit::npu_harness h;
  testkit::probe_nph_type(h, 1);
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    const auto o = h.one(dist_hdr::fabric(), fabric_frame(static_cast<std::uint8_t>(r.ptrace << 6 | 1),
                                                          static_cast<std::uint8_t>(r.critical << 7)));
    EXPECT_EQ(testkit::take_probe_calls(), testkit::probe_calls{ran_at_nph_type(1)});
    EXPECT_EQ(has_counter(o, 0x66), r.ptrace == 1);
    h.on_thread([&](env_t env) {
      const common_flags_st& f = *ps_get_common_flags(env);
      EXPECT_EQ(cf::pkt_trace_on::get(f), r.ptrace);
      EXPECT_EQ(cf::critical_priority::get(f), r.critical);
      EXPECT_EQ(cf::acl_lookup_miss::get(f), r.critical);
      EXPECT_EQ(cf::qos_lookup_miss::get(f), r.critical);
      const inject_flags_st& inj = *ps_get_inject_flags(env);
      EXPECT_EQ(inject_flags_st::injected_pkt::get(inj), r.critical);
      EXPECT_EQ(inject_flags_st::critical_inject::get(inj), r.critical);
    });
  }
}

TEST(HostInject, QueueAndFrameDecideVector13) {
  struct row {
    std::uint32_t queue;
    std::uint32_t l3_type;
    std::uint16_t ethertype;
    expect_end e;
  };
  const row rows[] = {
      {79, 0, 0x0800, {"", {0x220}}},
      {80, 0, 0x86DD, {"plat_process_inject", {}}},
      {83, 0, 0x0000, {"plat_process_inject", {}}},
      {84, 0, 0x0800, {"", {0x220}}},
      {79, 1, 0x0800, {"", {0x220}}},
      {81, 1, 0x0800, {"process_inject_ipv4", {}}},
      {82, 2, 0x86DD, {"", {0x220}}},
      {80, 3, 0x0000, {"", {0x220}}},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE("queue " + std::to_string(r.queue) + " l3_type " + std::to_string(r.l3_type));
    std::vector<std::uint8_t> frame(64, 0);
    frame[12] = static_cast<std::uint8_t>(r.ethertype >> 8);
    frame[13] = static_cast<std::uint8_t>(r.ethertype);
    expect_outcome(h.one(dist_hdr::line(13).set<dh::igpb_queue>(r.queue).set<dh::l3_type>(r.l3_type), frame), r.e);
  }
}

TEST(HostBuffers, PdmaFormatsDispatchOnTheBufferHeader) {
  struct row {
    std::uint8_t byte0;  // issu_vbit, then pkt_type in the low two bits
    expect_end e;
  };
  const row rows[] = {
      {0x80, {"", {0x20F}}},
      {0x81, {"", {0x20F}}},
      {0x00, {"", {}}},
      {0x01, {"process_tbpg", {}}},
      {0x02, {"process_fab_traffic_gen", {}}},
      {0x03, {"", {0x28F}}},
  };
  testkit::npu_harness h;
  for (std::uint32_t format : {3u, 5u, 7u}) {
    for (const row& r : rows) {
      SCOPED_TRACE("format " + std::to_string(format) + " byte0 " + std::to_string(r.byte0));
      std::vector<std::uint8_t> buf(64, 0);
      buf[0] = r.byte0;
      expect_outcome(h.one(dist_hdr::format(format), buf), r.e);
    }
  }
}

TEST(SlowDispatch, RecycleAndLoopbackFormats) {
  testkit::npu_harness h;
  expect_outcome(h.one(dist_hdr::format(0)), {"recycle_rx", {}});
  expect_outcome(h.one(dist_hdr::format(1)), {"npu_handle_special_dst_format", {}});
  expect_outcome(h.one(dist_hdr::format(4)), {"npu_handle_special_dst_format", {}});
}

// ---- exception vectors ----

TEST(ExceptionVectors, MaintenanceModeDropsByTheUidbKindOfTheVector) {
  enum class bit { l2, l3 };
  struct row {
    std::uint32_t vector;
    bit maintenance;
    expect_end e;
  };
  const row rows[] = {
      {7, bit::l3, {"", {0x5D2}}},     {8, bit::l3, {"", {0x5D2}}},  {9, bit::l3, {"", {0x5D2}}},
      {10, bit::l2, {"", {0x5D2}}},    {11, bit::l2, {"", {0x5D2}}}, {7, bit::l2, {"ipv4_ing_nonperf", {}}},
      {10, bit::l3, {"vpws_ing", {}}},
  };
  testkit::npu_harness h;
  for (const row& r : rows) {
    SCOPED_TRACE("vector " + std::to_string(r.vector));
    dist_hdr hdr = clean_line(r.vector);
    if (r.maintenance == bit::l2) hdr.set<dh::l2_uidb_maintenance_mode>(1);
    if (r.maintenance == bit::l3) hdr.set<dh::l3_uidb_maintenance_mode>(1);
    expect_outcome(h.one(hdr), r.e);
  }
}

// The interface of the exception tests: an interface drop counts in entry 8
// of its statistics block.
ctrl::interface_added set_up_interface(testkit::npu_harness& h) { return testkit::add_routed_port(h.tables(), 1); }

TEST(ExceptionVectors, DisabledProtocolIsAnInterfaceDrop) {
  testkit::npu_harness h;
  const ctrl::interface_added ifc = set_up_interface(h);
  const auto on_ifc = [&](std::uint32_t vector) { return clean_line(vector).set<dh::uidb_index>(ifc.uidb_index); };
  expect_outcome(h.one(on_ifc(7).set<dh::ipv4_en>(0).set<dh::pktlen>(100)), {"", {0x589}});
  expect_outcome(h.one(on_ifc(8).set<dh::ipv6_en>(0).set<dh::pktlen>(200)), {"", {0x596}});
  expect_outcome(h.one(on_ifc(9).set<dh::mpls_en>(0).set<dh::pktlen>(300)), {"", {0x5A8}});
  const model::stats_entry drops = h.tables().stats().entry(ifc.stats.ingress + 8);
  EXPECT_EQ(drops.packets, 3u);
  EXPECT_EQ(drops.bytes, 600u);
}

TEST(ExceptionVectors, MplsNeedsADestinationMacOfClass1Or3) {
  const std::pair<std::uint32_t, expect_end> rows[] = {
      {0, {"", {0x190}}},
      {1, {"mpls_ing_nonperf", {}}},
      {2, {"", {0x190}}},
      {3, {"mpls_ing_nonperf", {}}},
  };
  testkit::npu_harness h;
  const std::uint16_t uidb = set_up_interface(h).uidb_index;
  for (const auto& [da, e] : rows) {
    SCOPED_TRACE("da_bits " + std::to_string(da));
    expect_outcome(h.one(clean_line(9).set<dh::da_bits>(da).set<dh::uidb_index>(uidb)), e);
  }
}

// IP exception packets: the multicast test picks the body, the MAC class
// decides mac_mismatch_drop for the body to act on. (IPv4 unicast of another
// class consults its interface record; that case stands with the interface tables.)
struct ip_exception_row {
  const char* name;
  std::uint32_t vector;
  std::uint32_t is_mcast;
  std::uint32_t da_bits;
  std::vector<std::uint8_t> dst;  // destination address
  std::string handler;
  std::uint32_t mac_mismatch;
};

TEST(ExceptionVectors, IpMulticastScopeAndMacClassSelectTheBody) {
  constexpr std::uint32_t l3_offset = 14;
  const ip_exception_row rows[] = {
      {"v4 224.0.0.1", 7, 1, 0, {224, 0, 0, 1}, "ipv4_ing_nonperf", 0},
      {"v4 224.0.0.255", 7, 1, 0, {224, 0, 0, 255}, "ipv4_ing_nonperf", 0},
      {"v4 224.0.1.1", 7, 1, 0, {224, 0, 1, 1}, "ipm4_ing_nonperf", 0},
      {"v4 239.1.1.1", 7, 1, 0, {239, 1, 1, 1}, "ipm4_ing_nonperf", 0},
      {"v4 unicast, class 1", 7, 0, 1, {10, 0, 0, 1}, "ipv4_ing_nonperf", 0},
      {"v4 unicast, class 3", 7, 0, 3, {10, 0, 0, 1}, "ipv4_ing_nonperf", 0},
      {"v6 ff02::1", 8, 1, 1, {0xFF, 0x02}, "ipv6_ing_nonperf", 0},
      {"v6 ff12::1, class 0", 8, 1, 0, {0xFF, 0x12}, "ipv6_ing_nonperf", 1},
      {"v6 ff0e::1", 8, 1, 0, {0xFF, 0x0E}, "ipm6_ing_nonperf", 0},
      {"v6 ff05::1", 8, 1, 1, {0xFF, 0x05}, "ipm6_ing_nonperf", 0},
      {"v6 unicast, class 0", 8, 0, 0, {0x20, 0x01}, "ipv6_ing_nonperf", 1},
      {"v6 unicast, class 1", 8, 0, 1, {0x20, 0x01}, "ipv6_ing_nonperf", 0},
  };
  testkit::npu_harness h;
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    std::vector<std::uint8_t> frame(128, 0);
    const std::uint32_t dst_offset = l3_offset + (r.vector == 7 ? 16 : 24);
    std::copy(r.dst.begin(), r.dst.end(), frame.begin() + dst_offset);
    const auto hdr =
        clean_line(r.vector).set<dh::is_mcast>(r.is_mcast).set<dh::da_bits>(r.da_bits).set<dh::l3_offset>(l3_offset);
    expect_outcome(h.one(hdr, frame), {r.handler, {}});
    if (r.handler.rfind("ipm", 0) != 0) {
      EXPECT_EQ(cf::mac_mismatch_drop::get(flags_after(h)), r.mac_mismatch);
    }
  }
}

}  // namespace

namespace {

using namespace ft;

// The placeholder mechanism on its own, through whichever placeholders the
// lists hold: the first and the last number.
TEST(Placeholder, EndCountsThePacketUnderItsNameAndEndsEveryPass) {
  if (UNBUILT_HANDLER_COUNT == 0) GTEST_SKIP() << "every handler is built";
  EXPECT_EQ(unbuilt_handler_name(UNBUILT_HANDLER_COUNT), nullptr);
  testkit::npu_harness h;
  for (std::uint32_t id : {0u, UNBUILT_HANDLER_COUNT - 1}) {
    ASSERT_NE(unbuilt_handler_name(id), nullptr);
    SCOPED_TRACE(unbuilt_handler_name(id));
    testkit::probe_vector(h, 0, [id](env_t env) {
      cf::do_multipass::set(*ps_put_mod_common_flags(env), 1);
      unbuilt_handler_end(env, static_cast<unbuilt_handler_e>(id));
    });
    const model::packet_outcome o = h.one(dist_hdr::line(0));
    EXPECT_EQ(o.end, model::packet_end::freed);
    EXPECT_EQ(reached(o), unbuilt_handler_name(id));
    EXPECT_TRUE(o.global_counters.empty());
    EXPECT_EQ(h.npu().placeholder_count(static_cast<std::int32_t>(id)), 1u);
    EXPECT_EQ(cf::do_multipass::get(flags_after(h)), 0u) << "no further pass of an ended packet";
  }
}

TEST(Placeholder, StepCountsThePacketWhichGoesOn) {
  if (UNBUILT_HANDLER_COUNT == 0) GTEST_SKIP() << "every handler is built";
  testkit::npu_harness h;
  bool went_on = false;
  testkit::probe_vector(h, 0, [&](env_t env) {
    unbuilt_step_reached(env, static_cast<unbuilt_handler_e>(0));
    went_on = true;
    drop_packet_no_counter(env);
  });
  const model::packet_outcome o = h.one(dist_hdr::line(0));
  EXPECT_TRUE(went_on);
  EXPECT_EQ(o.end, model::packet_end::freed);
  EXPECT_EQ(h.npu().placeholder_count(0), 1u);
}

}  // namespace
