#include "pkt_decode.h"

#include <cstddef>
#include <cstring>

#include "dplane/infra/ps.h"
#include "ethernet.h"
#include "ipv4.h"
#include "ipv6.h"
#include "pkt_rx.h"

namespace {

// The port bits from port_bits_sat_encap (5.2) through port_bits_2_0 (to 6.3).
using decode_cleared_port_bits = be_bits<5, 2, 10>;

constexpr std::uint32_t L3_OFFSET_MASK = 0x7F;
constexpr std::uint32_t MPLS_WALK_LABELS = 4;
constexpr std::uint32_t MPLS_LABEL_GAL = 13;

bool is_ipv6_link_local(const std::uint8_t* addr) { return addr[0] == 0xFE && (addr[1] & 0xC0) == 0x80; }

void decode_lengths(env_t env) {
  baf_hdr_ing_st& baf = pkt_rx_baf_mod(env);
  baf_hdr_ing_st::l3_offset::set(baf, *ps_get_l2_hdr_len(env) & L3_OFFSET_MASK);
  decode_cleared_port_bits::set(baf, 0);
  *ps_put_mod_curr_pkt_len(env) = static_cast<std::uint16_t>(*ps_get_l2_frame_len(env));
}

void decode_ipv4(baf_hdr_ing_st& baf, const std::uint8_t* l3) {
  const auto& ip = *reinterpret_cast<const ipv4_hdr_st*>(l3);
  baf_hdr_ing_st::l3_type::set(baf, bufhdr_l3_type_ipv4_e);
  baf_hdr_ing_st::v4::is_mcast::set(baf, (ip.dst_addr.get() >> 28) == 0xE);
}

void decode_ipv6(baf_hdr_ing_st& baf, const std::uint8_t* l3) {
  const std::uint8_t* src = l3 + offsetof(ipv6_hdr_st, src_addr);
  const std::uint8_t* dst = l3 + offsetof(ipv6_hdr_st, dst_addr);
  baf_hdr_ing_st::l3_type::set(baf, bufhdr_l3_type_ipv6_e);
  baf_hdr_ing_st::v6::dip_is_multicast::set(baf, dst[0] == 0xFF);
  baf_hdr_ing_st::v6::sip_is_link_local::set(baf, is_ipv6_link_local(src));
  baf_hdr_ing_st::v6::dip_is_link_local::set(baf, is_ipv6_link_local(dst));
}

}  // namespace

std::uint32_t pkt_decode_da_bits(const std::uint8_t* dst_mac) {
  if (!(dst_mac[0] & 1)) return DA_BITS_UNICAST;
  return da_is_control_group(dst_mac) ? DA_BITS_CONTROL_MULTICAST : DA_BITS_MULTICAST;
}

void npu_ing_pkt_decode(env_t env, const std::uint8_t* pkt_start, boolean_t vlan_parse_only) {
  decode_lengths(env);
  if (vlan_parse_only) return;
  baf_hdr_ing_st& baf = pkt_rx_baf_mod(env);
  baf_hdr_ing_st::da_bits::set(baf, pkt_decode_da_bits(pkt_start));
  const std::uint8_t* l3 = pkt_start + *ps_get_l2_hdr_len(env);
  be_u16 ethertype;
  std::memcpy(ethertype.b, l3 - sizeof ethertype.b, sizeof ethertype.b);
  switch (ethertype.get()) {
    case ETHERTYPE_IPV4:
      return decode_ipv4(baf, l3);
    case ETHERTYPE_IPV6:
      return decode_ipv6(baf, l3);
    case ETHERTYPE_MPLS:
      baf_hdr_ing_st::l3_type::set(baf, bufhdr_l3_type_mpls_e);
      return npu_ing_mpls_populate_baf(env, reinterpret_cast<const mpls_hdr_st*>(l3), &baf);
    default:
      baf_hdr_ing_st::l3_type::set(baf, bufhdr_l3_type_other_e);
  }
}

void npu_ing_vxlan_pkt_decode(env_t env, const std::uint8_t* pkt_start) {
  decode_lengths(env);
  baf_hdr_ing_st& baf = pkt_rx_baf_mod(env);
  decode_ipv4(baf, pkt_start + *ps_get_l2_hdr_len(env));
  baf_hdr_ing_st::v4::no_more_frags::set(baf, 1);
  baf_hdr_ing_st::v4::frag_offset_0::set(baf, 1);
  baf_hdr_ing_st::v4::not_gre::set(baf, 1);
  baf_hdr_ing_st::v4::payloadlen_gte_4::set(baf, 1);
}

void npu_ing_mpls_populate(env_t env, const mpls_hdr_st* label) {
  npu_ing_mpls_populate_baf(env, label, &pkt_rx_baf_mod(env));
}

// Walks at most four labels; a stack whose bottom lies deeper counts 0.
void npu_ing_mpls_populate_baf(env_t, const mpls_hdr_st* label, baf_hdr_ing_st* baf_hdr) {
  using m = baf_hdr_ing_st::mpls;
  std::uint32_t count = 0;
  const mpls_hdr_st* last = label;
  for (std::uint32_t i = 0; i < MPLS_WALK_LABELS && count == 0; ++i) {
    last = label + i;
    if (mpls_hdr_st::eos::get(*last)) count = i + 1;
  }
  baf_hdr_ing_st& baf = *baf_hdr;
  m::mpls_outer_label_gt_15::set(baf, (be_detail::load_be<4>(label->bytes) >> 16) != 0);
  m::mpls_ttl_gt_1::set(baf, mpls_hdr_st::ttl::get(*label) > 1);
  m::mpls_num_labels::set(baf, count);
  m::mpls_lt_5_labels::set(baf, 1);
  m::mpls_gt_1_label::set(baf, count >= 2);
  m::mpls_inner_label_not_gal::set(baf, count != 0 && mpls_hdr_st::label::get(*last) != MPLS_LABEL_GAL);
}
