// The parser's IPv4 checks. A header it cannot read whole leaves every
// decode bit clear.
#include "ipv4.h"
#include "parser_l3.h"

namespace model {

namespace {

using v4 = baf_hdr_ing_st::v4;

constexpr std::uint32_t MIN_IHL = 5;
constexpr std::uint32_t WORD_BYTES = 4;
constexpr std::uint32_t MIN_PAYLOAD = 4;
constexpr std::uint8_t IP_PROTO_GRE = 47;
constexpr std::uint32_t BROADCAST = 0xFFFFFFFF;
constexpr std::uint32_t GROUP_MAC_BITS = 0x7FFFFF;  // a group's low 23 bits go into its MAC

// The bits a packet needs for a clean vector.
constexpr std::uint32_t SANE_BITS =
    be_word_mask<DECODE_WORD, v4::hdrlen_vld, v4::frame_gte_hdrlen, v4::frame_gte_hdrtotlen, v4::hdr_chksum_vld,
                 v4::no_ip_options, v4::addr_sane, v4::ttl_gt_1>();

bool in_prefix(std::uint32_t addr, std::uint32_t prefix, unsigned len) {
  return (addr >> (32 - len)) == (prefix >> (32 - len));
}

bool checksum_holds(std::span<const std::uint8_t> hdr) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i + 1 < hdr.size(); i += 2) sum += static_cast<std::uint32_t>(hdr[i] << 8 | hdr[i + 1]);
  while (sum > 0xFFFF) sum = (sum & 0xFFFF) + (sum >> 16);
  return sum == 0xFFFF;
}

// A DHCP client's 0.0.0.0 to 255.255.255.255 passes; otherwise no source
// may be broadcast, multicast or loopback, and no destination 0.0.0.0.
bool addresses_sane(std::uint32_t src, std::uint32_t dst) {
  if (src == 0 && dst == BROADCAST) return true;
  if (src == BROADCAST || in_prefix(src, 0xE0000000, 4) || in_prefix(src, 0x7F000000, 8)) return false;
  return dst != 0;
}

mac_address group_mac_of(std::uint32_t group) {
  const std::uint32_t low = group & GROUP_MAC_BITS;
  return {0x01,
          0x00,
          0x5E,
          static_cast<std::uint8_t>(low >> 16),
          static_cast<std::uint8_t>(low >> 8),
          static_cast<std::uint8_t>(low)};
}

void set_header_bits(const ipv4_hdr_st& ip, std::span<const std::uint8_t> l3, baf_hdr_ing_st& baf) {
  const std::uint32_t ihl = ipv4_hdr_st::ihl::get(ip);
  const std::uint32_t hdr_len = ihl * WORD_BYTES;
  const std::uint32_t total = ip.total_length.get();
  v4::hdrlen_vld::set(baf, ipv4_hdr_st::version::get(ip) == 4 && ihl >= MIN_IHL && total >= hdr_len);
  v4::frame_gte_hdrlen::set(baf, l3.size() >= hdr_len);
  v4::frame_gte_hdrtotlen::set(baf, l3.size() >= total);
  v4::hdr_chksum_vld::set(baf, ihl >= MIN_IHL && l3.size() >= hdr_len && checksum_holds(l3.first(hdr_len)));
  v4::no_ip_options::set(baf, ihl == MIN_IHL);
  v4::payloadlen_gte_4::set(baf, total >= hdr_len + MIN_PAYLOAD);
  v4::ttl_gt_1::set(baf, ip.ttl > 1);
}

void set_address_bits(const ipv4_hdr_st& ip, baf_hdr_ing_st& baf) {
  const std::uint32_t src = ip.src_addr.get();
  const std::uint32_t dst = ip.dst_addr.get();
  v4::is_mcast::set(baf, in_prefix(dst, 0xE0000000, 4));
  v4::addr_bootp_dhcp::set(baf, src == 0 && dst == BROADCAST);
  v4::addr_sane::set(baf, addresses_sane(src, dst));
}

void set_payload_bits(const ipv4_hdr_st& ip, baf_hdr_ing_st& baf) {
  v4::no_more_frags::set(baf, !ipv4_hdr_st::more_fragments::get(ip));
  v4::frag_offset_0::set(baf, ipv4_hdr_st::fragment_offset::get(ip) == 0);
  v4::not_gre::set(baf, ip.protocol != IP_PROTO_GRE);
}

}  // namespace

l3_verdict decode_ipv4(std::span<const std::uint8_t> l3, baf_hdr_ing_st& baf) {
  l3_verdict out;
  if (l3.size() < IPV4_HDR_BYTES) return out;
  const auto& ip = *reinterpret_cast<const ipv4_hdr_st*>(l3.data());
  set_header_bits(ip, l3, baf);
  set_address_bits(ip, baf);
  set_payload_bits(ip, baf);
  out.sane = decode_bits_all_set(baf, SANE_BITS);
  out.multicast = v4::is_mcast::get(baf);
  if (out.multicast) out.group_mac = group_mac_of(ip.dst_addr.get());
  return out;
}

}  // namespace model
