// The vector rules, in the order they are tried; docs/parser.md tells them.
#include "parser_vector.h"

#include <algorithm>
#include <array>

namespace model {

namespace {

using baf = baf_hdr_ing_st;
using mark3 = baf_hdr_ing_st::mark_l3;
using mark2 = baf_hdr_ing_st::mark_l2;

// Link control frames by ethertype: ARP, slow protocols, LLDP, CFM, PTP,
// PPPoE discovery and session, EAPOL (two types), E-LMI, and 802.3 frames
// whose type is a length (LLC), with the jumbo LLC type.
constexpr std::array<std::uint16_t, 11> CONTROL_ETHERTYPES = {0x0806, 0x8809, 0x88CC, 0x8902, 0x88F7, 0x8863,
                                                              0x8864, 0x876F, 0x888E, 0x88EE, 0x8870};
constexpr std::uint16_t FIRST_ETHERTYPE = 0x0600;

struct l3_vectors {
  std::uint32_t clean;
  std::uint32_t clean_multicast;
  std::uint32_t exception;
};
constexpr l3_vectors IPV4_VECTORS = {VECTOR_IPV4_UNICAST, VECTOR_IPV4_MULTICAST, VECTOR_IPV4_EXCEPTION};
constexpr l3_vectors IPV6_VECTORS = {VECTOR_IPV6_UNICAST, VECTOR_IPV6_MULTICAST, VECTOR_IPV6_EXCEPTION};
// Labelled multicast has no clean vector of its own.
constexpr l3_vectors MPLS_VECTORS = {VECTOR_MPLS, VECTOR_MPLS_EXCEPTION, VECTOR_MPLS_EXCEPTION};

bool is_control_frame(const baf& b, const frame_class& f) {
  if (baf::da_bits::get(b) == DA_BITS_CONTROL_MULTICAST || f.ethertype < FIRST_ETHERTYPE) return true;
  return std::find(CONTROL_ETHERTYPES.begin(), CONTROL_ETHERTYPES.end(), f.ethertype) != CONTROL_ETHERTYPES.end();
}

// A clean vector needs the protocol routed and on, the record not being
// changed, a header that passes every check, and a destination MAC that
// fits: this router's for unicast, the group's own for multicast.
std::uint32_t l3_vector(const baf& b, const frame_class& f, bool routed, const l3_vectors& v) {
  if (!routed || mark3::uidb_maintenance_mode::get(b) || !f.l3.sane) return v.exception;
  if (f.l3.multicast) return f.to_group_mac ? v.clean_multicast : v.exception;
  return baf::da_bits::get(b) == DA_BITS_UNICAST ? v.clean : v.exception;
}

vector_choice l3_interface_vector(const baf& b, const frame_class& f) {
  switch (baf::l3_type::get(b)) {
    case bufhdr_l3_type_ipv4_e:
      return {true, l3_vector(b, f, mark3::rt_v4::get(b) && mark3::ipv4_en::get(b), IPV4_VECTORS)};
    case bufhdr_l3_type_ipv6_e:
      return {true, l3_vector(b, f, mark3::rt_v6::get(b) && mark3::ipv6_en::get(b), IPV6_VECTORS)};
    case bufhdr_l3_type_mpls_e:
      return {true, l3_vector(b, f, mark3::rt_mpls::get(b) && mark3::mpls_en::get(b), MPLS_VECTORS)};
    default:
      break;
  }
  if (is_control_frame(b, f)) return {true, VECTOR_L2_CONTROL};
  return {false, VECTOR_UNPLACED};
}

vector_choice l2_interface_vector(const baf& b) {
  if (baf::da_bits::get(b) == DA_BITS_CONTROL_MULTICAST) return {true, VECTOR_L2_CONTROL};
  const bool vpls = mark2::vpls::get(b);
  if (mark2::uidb_maintenance_mode::get(b)) return {true, vpls ? VECTOR_VPLS_EXCEPTION : VECTOR_VPWS_EXCEPTION};
  return {true, vpls ? VECTOR_VPLS : VECTOR_VPWS};
}

}  // namespace

vector_choice choose_vector(const baf_hdr_ing_st& b, const frame_class& f) {
  if (f.inject_port) return {true, VECTOR_INJECT};
  if (!f.placed) return {true, VECTOR_UNPLACED};
  if (baf::port_bits_force_l2_ctrl_vector::get(b)) return {true, VECTOR_L2_CONTROL};
  if (baf::mark_common::l2_uidb::get(b)) return l2_interface_vector(b);
  return l3_interface_vector(b, f);
}

}  // namespace model
