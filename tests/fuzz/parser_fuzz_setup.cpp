#include "fuzz/parser_fuzz_setup.h"

#include <cstdio>
#include <cstring>

#include "dplane/infra/lookup_tables.h"
#include "fuzz/parser_promises.h"
#include "fwc_uidb.h"

namespace fuzz {

namespace {

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

}  // namespace

parser_fixture::parser_fixture() {
  for (std::uint32_t port = 0; port < PORTS; ++port) {
    parser_.set_port(port, {ROUTER_MAC, port == INJECT_PORT ? 80u : 0u,
                            TABLE_BASE_PORT_CONFIG_ING + port * TABLE_STRIDE_PORT_CONFIG_ING});
  }
  for (const fixture_interface& i : INTERFACES) {
    model::parser_interface iface = i.iface;
    iface.marks_record = marks_of(iface.uidb_index);
    parser_.set_interface(i.key, iface);
    write_marks(mem_, i.iface.uidb_index, i.l2);
  }
}

dist_hdr_line_st parser_fixture::parse(std::uint32_t port, std::span<const std::uint8_t> frame) {
  const auto bytes = parser_.parse(mem_, port, frame);
  dist_hdr_line_st hdr;
  std::memcpy(hdr.bytes, bytes.data(), sizeof hdr.bytes);
  return hdr;
}

void parser_fixture::check(std::uint32_t port, std::span<const std::uint8_t> frame) {
  const dist_hdr_line_st hdr = parse(port, frame);
  if (const char* broken = broken_promise(port, frame, hdr)) {
    std::fprintf(stderr, "parser on port %u: %s\n", port, broken);
    __builtin_trap();
  }
}

}  // namespace fuzz
