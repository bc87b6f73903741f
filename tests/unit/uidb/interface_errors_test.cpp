// Bad input to the control side's interface calls: each is refused with its
// typed error, and the tables, the marks and the parser's map stay as they
// were.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <vector>

#include "ctrl/page_descriptors.h"
#include "dplane/infra/lookup_tables.h"
#include "pktlib/packet_builder.h"
#include "testkit/line_card.h"
#include "testkit/param_names.h"

namespace {

using bytes = std::vector<std::uint8_t>;
using testkit::line_card;

constexpr std::uint32_t PORT = 5;

struct row {
  const char* what;
  std::function<ctrl::error(ctrl::interfaces&)> call;
  ctrl::error want;
};
void PrintTo(const row& r, std::ostream* os) { *os << r.what; }

ctrl::line_port port_at(std::uint32_t port) {
  ctrl::line_port p;
  p.port = port;
  return p;
}
ctrl::l3_interface l3(std::uint32_t handle) { return line_card::routed(handle, true, true, true); }
ctrl::l2_interface l2(std::uint32_t handle) {
  ctrl::l2_interface c;
  c.if_handle = handle;
  return c;
}

using attempt = std::function<ctrl::error(ctrl::interfaces&)>;
using tag_list = std::vector<ctrl::vlan_tag>;
attempt port_with(std::uint32_t queue, std::uint32_t sat_encap) {
  return [=](ctrl::interfaces& i) {
    ctrl::line_port p = port_at(6);
    p.input_queue = queue;
    p.bits.sat_encap = sat_encap;
    return i.add_port(p);
  };
}
attempt subinterface(tag_list t, std::uint32_t handle = 0x20) {
  return [=](ctrl::interfaces& i) { return i.add_vlan_subinterface(PORT, t, l3(handle)).err; };
}
attempt l2_port(tag_list t) {
  return [=](ctrl::interfaces& i) { return i.add_l2_port(PORT, t, l2(0x20)).err; };
}

const std::vector<row>& rows() {
  using ctrl::error;
  static const std::vector<row> r = {
      {"a port set up twice", [](auto& i) { return i.add_port(port_at(PORT)); }, error::exists},
      {"port 4096", [](auto& i) { return i.add_port(port_at(4096)); }, error::out_of_range},
      {"input queue 128", port_with(128, 0), error::out_of_range},
      {"satellite encapsulation 4", port_with(0, 4), error::out_of_range},
      {"an interface on a port not set up", [](auto& i) { return i.add_physical_port(6, l3(0x20)).err; },
       error::not_found},
      {"a second physical port interface", [](auto& i) { return i.add_physical_port(PORT, l3(0x20)).err; },
       error::exists},
      {"VLAN 4096", subinterface({{0x8100, 4096}}), error::out_of_range},
      {"a tag type that is no tag", subinterface({{0x0800, 7}}), error::unsupported},
      {"a sub-interface without tags", subinterface({}), error::bad_size},
      {"three tags", subinterface({{0x8100, 1}, {0x8100, 2}, {0x8100, 3}}), error::bad_size},
      {"an L2 port with three tags", l2_port({{0x8100, 1}, {0x8100, 2}, {0x8100, 3}}), error::bad_size},
      {"VLAN 100 twice", subinterface({{0x8100, 100}}), error::exists},
      {"an L2 port on VLAN 100's tags", l2_port({{0x88a8, 100}}), error::exists},
      {"a handle in use", subinterface({{0x8100, 7}}, 0x10), error::exists},
      {"an update of no interface", [](auto& i) { return i.update(99, l3(0x10)); }, error::not_found},
      {"an L3 interface updated as L2", [](auto& i) { return i.update(1, l2(0x10)); }, error::unsupported},
      {"an update to another's handle", [](auto& i) { return i.update(1, l3(0x11)); }, error::exists},
  };
  return r;
}

class InterfaceErrors : public ::testing::TestWithParam<row> {
 protected:
  void SetUp() override {
    card.add_port(PORT);
    ASSERT_EQ(card.ifs().add_physical_port(PORT, l3(0x10)).uidb_index, 1);
    ASSERT_EQ(card.ifs().add_vlan_subinterface(PORT, {{0x8100, 100}}, l3(0x11)).uidb_index, 2);
  }

  // What a reader can see: the parser's headers for frames on the port and
  // the next one, the records and marks of the first indices, and the port
  // records.
  bytes state() {
    bytes out;
    const auto add = [&](const std::uint8_t* p, std::size_t n) { out.insert(out.end(), p, p + n); };
    for (std::uint32_t port : {PORT, PORT + 1}) {
      for (int tags = 0; tags < 3; ++tags) {
        pkt::builder b = pkt::builder().eth(testkit::PEER_MAC, testkit::ROUTER_MAC);
        for (int t = 0; t < tags; ++t) b.vlan(0x8100, static_cast<std::uint16_t>(100 - t * 93));
        auto hdr = card.parse(port, b.ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1")).udp(1, 2).build());
        dist_hdr_line_st::gpm_pkt_handle::set(hdr, 0);  // a count of frames, not of settings
        add(hdr.bytes, sizeof hdr.bytes);
      }
    }
    model::table_memory& mem = card.npu().memory();
    const auto read = [&](std::uint32_t addr, std::size_t n) {
      bytes b(n);
      mem.read(mem.translate(addr), b);
      out.insert(out.end(), b.begin(), b.end());
    };
    for (std::uint32_t idx = 0; idx < 4; ++idx) {
      read(*ctrl::paged_record_address(card.npu(), TPD_IDX_UIDB_L3_ING, idx), 32);
      read(*ctrl::paged_record_address(card.npu(), TPD_IDX_UIDB_L3_EGR, idx), 32);
      read(TABLE_BASE_UIDB_MARK_BITS_ING + idx * TABLE_STRIDE_UIDB_MARK_BITS_ING, 4);
    }
    for (std::uint32_t port : {PORT, PORT + 1}) {
      read(TABLE_BASE_PORT_CONFIG_ING + port * TABLE_STRIDE_PORT_CONFIG_ING, 16);
    }
    return out;
  }

  line_card card;
};

TEST_P(InterfaceErrors, BadInputIsRefusedAndChangesNothing) {
  const bytes before = state();
  const std::size_t free_buckets = card.tables().hashes().free_buckets();
  EXPECT_EQ(GetParam().call(card.ifs()), GetParam().want);
  EXPECT_EQ(state(), before);
  EXPECT_EQ(card.tables().hashes().free_buckets(), free_buckets);
}

INSTANTIATE_TEST_SUITE_P(Calls, InterfaceErrors, ::testing::ValuesIn(rows()), testkit::described<row>);

}  // namespace
