#include "fuzz/parser_fuzz_setup.h"

#include <cstdlib>
#include <cstring>

#include "dplane/infra/lookup_tables.h"
#include "fwc_uidb.h"
#include "model/parser_vector.h"

namespace fuzz {

namespace {

constexpr model::mac_address ROUTER_MAC = {0x02, 0, 0, 0, 0, 0x01};

std::uint32_t marks_of(std::uint16_t index) {
  return TABLE_BASE_UIDB_MARK_BITS_ING + index * TABLE_STRIDE_UIDB_MARK_BITS_ING;
}

void write_marks(model::table_memory& mem, std::uint16_t index, bool l2) {
  mark_bits_st marks{};
  if (l2) {
    mark_bits_st::l2::l2_uidb::set(marks, 1);
    mark_bits_st::l2::vpls::set(marks, 1);
  } else {
    using m = mark_bits_st::l3;
    for (auto set : {&m::rt_v4::set<mark_bits_st>, &m::rt_v6::set<mark_bits_st>, &m::rt_mpls::set<mark_bits_st>,
                     &m::ipv4_en::set<mark_bits_st>, &m::ipv6_en::set<mark_bits_st>, &m::mpls_en::set<mark_bits_st>,
                     &m::line_status_up::set<mark_bits_st>}) {
      set(marks, 1);
    }
  }
  mem.write(mem.translate(marks_of(index)), {marks.bytes, sizeof marks.bytes});
}

// A clean vector carries a frame whose Ethernet and L3 headers lie in it.
bool clean(std::uint32_t vector) {
  return vector == model::VECTOR_IPV4_UNICAST || vector == model::VECTOR_IPV4_MULTICAST ||
         vector == model::VECTOR_IPV6_UNICAST || vector == model::VECTOR_IPV6_MULTICAST || vector == model::VECTOR_MPLS;
}

}  // namespace

parser_fixture::parser_fixture() {
  for (std::uint32_t port = 0; port < PORTS; ++port) {
    parser_.set_port(
        port, {ROUTER_MAC, port == 3 ? 80u : 0u, TABLE_BASE_PORT_CONFIG_ING + port * TABLE_STRIDE_PORT_CONFIG_ING});
  }
  parser_.set_interface({0, 0, {}}, {1, false, marks_of(1)});
  parser_.set_interface({1, 1, {100, 0}}, {2, false, marks_of(2)});
  parser_.set_interface({1, 2, {200, 300}}, {3, false, marks_of(3)});
  parser_.set_interface({2, 0, {}}, {4, true, marks_of(4)});
  for (std::uint16_t index = 1; index <= 4; ++index) write_marks(mem_, index, index == 4);
}

void parser_fixture::check(std::uint32_t port, std::span<const std::uint8_t> frame) {
  const auto bytes = parser_.parse(mem_, port, frame);
  dist_hdr_line_st hdr;
  std::memcpy(hdr.bytes, bytes.data(), sizeof hdr.bytes);
  const std::uint32_t l3_offset = dist_hdr_line_st::l3_offset::get(hdr);
  if (clean(dist_hdr_line_st::rt_result::get(hdr)) && l3_offset + 4 > frame.size()) std::abort();
  if (dist_hdr_line_st::pktlen::get(hdr) != frame.size() % (1u << 14)) std::abort();
}

}  // namespace fuzz
