#include "line_parser.h"

#include <algorithm>
#include <cstring>

#include "ethernet.h"
#include "fwc_port.h"
#include "fwc_uidb.h"
#include "parser_frame.h"
#include "parser_vector.h"

namespace model {

namespace {

using line = dist_hdr_line_st;
using baf = baf_hdr_ing_st;

constexpr std::uint16_t ETHERTYPE_MPLS_MULTICAST = 0x8848;
constexpr std::uint32_t MARK_LOW_BITS = 8;

std::uint32_t da_bits_of(std::span<const std::uint8_t> frame, const parser_port* port) {
  if (frame[0] & 1) return da_is_control_group(frame.data()) ? DA_BITS_CONTROL_MULTICAST : DA_BITS_MULTICAST;
  const bool ours = port && std::equal(port->router_mac.begin(), port->router_mac.end(), frame.begin());
  return ours ? DA_BITS_UNICAST : DA_BITS_FOREIGN_UNICAST;
}

// The L2 and L3 findings of a whole Ethernet header.
void decode_frame(std::span<const std::uint8_t> frame, const ethernet_view& eth, const parser_port* port, baf& b,
                  frame_class& f) {
  baf::vlan_pbits::set(b, eth.outer_pbits);
  baf::l3_offset::set(b, eth.l3_offset);
  baf::da_bits::set(b, da_bits_of(frame, port));
  const auto l3 = frame.subspan(eth.l3_offset);
  switch (eth.ethertype) {
    case ETHERTYPE_IPV4:
      baf::l3_type::set(b, bufhdr_l3_type_ipv4_e);
      f.l3 = decode_ipv4(l3, b);
      break;
    case ETHERTYPE_IPV6:
      baf::l3_type::set(b, bufhdr_l3_type_ipv6_e);
      f.l3 = decode_ipv6(l3, b);
      break;
    case ETHERTYPE_MPLS:
    case ETHERTYPE_MPLS_MULTICAST:
      baf::l3_type::set(b, bufhdr_l3_type_mpls_e);
      f.l3 = decode_mpls(l3, eth.ethertype == ETHERTYPE_MPLS_MULTICAST, b);
      break;
    default:
      break;
  }
  f.to_group_mac = std::equal(f.l3.group_mac.begin(), f.l3.group_mac.end(), frame.begin());
}

template <class R>
R read_record(const table_memory& mem, std::uint32_t addr) {
  R rec{};
  mem.read(mem.translate(addr), {reinterpret_cast<std::uint8_t*>(&rec), sizeof rec});
  return rec;
}

// The interface's 20 marks, high bits first.
void copy_marks(const table_memory& mem, const parser_interface& i, baf& b) {
  const auto rec = read_record<mark_bits_st>(mem, i.marks_record);
  const std::uint32_t marks = mark_bits_st::marks::get(rec);
  baf::baf_override_common::mark_bits_high::set(b, marks >> MARK_LOW_BITS);
  baf::baf_override_common::mark_bits_low::set(b, marks);
}

void copy_port_bits(const table_memory& mem, const parser_port& port, baf& b) {
  const auto rec = read_record<ingress_port_fields_part1_st>(mem, port.port_record);
  baf::baf_override_common::portbits::set(b, ingress_port_fields_part1_st::port_bits::get(rec));
}

}  // namespace

void line_parser::set_port(std::uint32_t port, const parser_port& p) {
  std::lock_guard lock(mutex_);
  ports_[port] = p;
}

void line_parser::remove_port(std::uint32_t port) {
  std::lock_guard lock(mutex_);
  ports_.erase(port);
}

void line_parser::set_interface(const parser_if_key& key, const parser_interface& i) {
  std::lock_guard lock(mutex_);
  interfaces_[key] = i;
}

void line_parser::remove_interface(const parser_if_key& key) {
  std::lock_guard lock(mutex_);
  interfaces_.erase(key);
}

// The most specific key first: the frame's first two tags, then fewer. A
// key with fewer tags than the frame takes it only if it takes further tags.
const parser_interface* line_parser::find_interface(std::uint32_t port, std::uint32_t tags,
                                                    const std::array<std::uint16_t, 2>& vids) const {
  for (std::uint32_t n = std::min<std::uint32_t>(tags, 2) + 1; n-- > 0;) {
    parser_if_key key{port, n, {}};
    std::copy_n(vids.begin(), n, key.vids.begin());
    const auto it = interfaces_.find(key);
    if (it != interfaces_.end() && (n == tags || it->second.takes_further_tags)) return &it->second;
  }
  return nullptr;
}

std::array<std::uint8_t, DIST_HDR_BYTES> line_parser::parse(const table_memory& mem, std::uint32_t port,
                                                            std::span<const std::uint8_t> frame) {
  std::lock_guard lock(mutex_);
  const auto p = ports_.find(port);
  const parser_port* settings = p == ports_.end() ? nullptr : &p->second;
  baf b{};
  const frame_class f = classify(mem, port, frame, settings, b);
  const vector_choice v = choose_vector(b, f);
  baf::rt_result_valid::set(b, v.valid);

  line hdr{};
  line::dst_format::set(hdr, DST_FORMAT_LINE);
  line::rt_result::set(hdr, v.vector);
  line::frame_type::set(hdr, baf::l3_type::get(b));
  line::pktlen::set(hdr, static_cast<std::uint32_t>(frame.size()));
  line::gpm_pkt_handle::set(hdr, next_handle_++);
  line::igpb_queue::set(hdr, settings ? settings->input_queue : 0);
  std::array<std::uint8_t, DIST_HDR_BYTES> out{};
  std::memcpy(out.data(), hdr.bytes, DIST_HDR_BAF_OFFSET);
  std::memcpy(out.data() + DIST_HDR_BAF_OFFSET, b.bytes, sizeof b.bytes);
  return out;
}

// Everything of the baf part but the vector's validity, and what the vector
// rules read besides.
frame_class line_parser::classify(const table_memory& mem, std::uint32_t port, std::span<const std::uint8_t> frame,
                                  const parser_port* settings, baf_hdr_ing_st& b) const {
  baf::logical_port::set(b, port);
  if (settings) copy_port_bits(mem, *settings, b);
  const ethernet_view eth = walk_ethernet(frame);
  frame_class f;
  f.ethertype = eth.ethertype;
  f.inject_port = settings && settings->input_queue >= INJECT_QUEUE_FIRST && settings->input_queue <= INJECT_QUEUE_LAST;
  if (!eth.complete) return f;
  decode_frame(frame, eth, settings, b, f);
  const parser_interface* i = settings ? find_interface(port, eth.tags, eth.vids) : nullptr;
  if (i) {
    f.placed = true;
    baf::uidb_index::set(b, i->uidb_index);
    copy_marks(mem, *i, b);
  }
  return f;
}

}  // namespace model
