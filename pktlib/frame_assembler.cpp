#include "pktlib/frame_assembler.h"

#include <stdexcept>
#include <string>
#include <type_traits>

#include "pktlib/byte_order.h"
#include "pktlib/checksum.h"
#include "pktlib/ip_serializer.h"

namespace pkt {
namespace {

// Writes a value one off the correct checksum: in ones' complement sums +-1
// is never equivalent to it. 0 is avoided because UDP reads it as "none".
void corrupt_checksum(std::vector<std::uint8_t>& bytes, std::size_t at) {
  std::uint16_t wrong = static_cast<std::uint16_t>((bytes[at] << 8 | bytes[at + 1]) ^ 1);
  if (wrong == 0) wrong = 2;
  store_be16(bytes, at, wrong);
}

bool is_transport(const layer_fields& fields) {
  return std::holds_alternative<udp_layer>(fields) || std::holds_alternative<tcp_layer>(fields) ||
         std::holds_alternative<icmp_layer>(fields) || std::holds_alternative<icmpv6_layer>(fields);
}

[[noreturn]] void unknown_next(const layer& self, const layer* next, const char* field, const char* setter) {
  throw std::invalid_argument(std::string("no ") + field + " is known for " +
                              (next ? layer_name(next->fields) : "nothing") + " after " + layer_name(self.fields) +
                              "; set one with " + setter + "()");
}

std::uint16_t next_ethertype(const layer& self, const layer* next) {
  if (self.next_protocol) return *self.next_protocol;
  if (next) {
    if (auto type = ethertype_of(next->fields)) return *type;
  }
  unknown_next(self, next, "ethertype", "ethertype");
}

std::uint8_t next_ip_protocol(const layer& self, const layer* next) {
  if (self.next_protocol) return static_cast<std::uint8_t>(*self.next_protocol);
  if (next) {
    if (auto protocol = ip_protocol_of(next->fields)) return *protocol;
  } else if (std::holds_alternative<ipv6_layer>(self.fields)) {
    return ip_protocol::no_next_header;
  }
  unknown_next(self, next, "IP protocol", "protocol");
}

// Writes one layer in front of the bytes already assembled behind it.
struct layer_writer {
  const layer& self;
  const layer* next;
  std::span<const std::uint8_t> inner;

  std::vector<std::uint8_t> operator()(const eth_layer& l) const {
    std::vector<std::uint8_t> out(l.dst.begin(), l.dst.end());
    out.insert(out.end(), l.src.begin(), l.src.end());
    append_be(out, next_ethertype(self, next), 2);
    return with_inner(std::move(out));
  }

  // The tag's TPID sits in the field of the header before it; the tag ends
  // with the type of what follows it.
  std::vector<std::uint8_t> operator()(const vlan_layer& l) const {
    std::vector<std::uint8_t> out;
    append_be(out, static_cast<std::uint16_t>(l.pcp << 13 | (l.dei ? 1 : 0) << 12 | l.vid), 2);
    append_be(out, next_ethertype(self, next), 2);
    return with_inner(std::move(out));
  }

  std::vector<std::uint8_t> operator()(const mpls_layer& l) const {
    const bool bottom_of_stack = !next || !std::holds_alternative<mpls_layer>(next->fields);
    std::vector<std::uint8_t> out;
    append_be(out, l.label << 12 | std::uint32_t{l.tc} << 9 | std::uint32_t{bottom_of_stack} << 8 | l.ttl, 4);
    return with_inner(std::move(out));
  }

  std::vector<std::uint8_t> operator()(const ipv4_layer& l) const {
    return ip_with_transport(serialize_ipv4(l, next_ip_protocol(self, next), transport_fields(), inner));
  }

  std::vector<std::uint8_t> operator()(const ipv6_layer& l) const {
    return ip_with_transport(serialize_ipv6(l, next_ip_protocol(self, next), transport_fields(), inner));
  }

  std::vector<std::uint8_t> operator()(const gre_layer& l) const {
    const gre_options& o = l.options;
    std::vector<std::uint8_t> out;
    append_be(out, (o.checksum ? 0x8000 : 0) | (o.key ? 0x2000 : 0) | (o.seq ? 0x1000 : 0), 2);
    append_be(out, next_ethertype(self, next), 2);
    if (o.checksum) append_be(out, 0, 4);  // checksum and reserved word
    if (o.key) append_be(out, *o.key, 4);
    if (o.seq) append_be(out, *o.seq, 4);
    out = with_inner(std::move(out));
    if (o.checksum) store_be16(out, 4, internet_checksum(out));
    return out;
  }

  std::vector<std::uint8_t> operator()(const vxlan_layer& l) const {
    constexpr std::uint32_t vni_valid_flag = 0x08000000;
    std::vector<std::uint8_t> out;
    append_be(out, vni_valid_flag, 4);
    append_be(out, l.vni << 8, 4);
    return with_inner(std::move(out));
  }

  std::vector<std::uint8_t> operator()(const raw_layer& l) const { return with_inner(l.bytes); }

  // Transport layers are written by the IP layer in front of them.
  template <class L>
  std::vector<std::uint8_t> operator()(const L&) const {
    static_assert(std::is_same_v<L, udp_layer> || std::is_same_v<L, tcp_layer> || std::is_same_v<L, icmp_layer> ||
                  std::is_same_v<L, icmpv6_layer>);
    return {inner.begin(), inner.end()};
  }

  std::vector<std::uint8_t> with_inner(std::vector<std::uint8_t> header) const {
    header.insert(header.end(), inner.begin(), inner.end());
    return header;
  }

  const layer_fields* transport_fields() const { return next && is_transport(next->fields) ? &next->fields : nullptr; }

  std::vector<std::uint8_t> ip_with_transport(ip_bytes ip) const {
    if (transport_fields() && next->bad_checksum) {
      corrupt_checksum(ip.bytes, ip.payload_offset + *checksum_offset(next->fields));
    }
    return std::move(ip.bytes);
  }
};

}  // namespace

std::vector<std::uint8_t> assemble_frame(std::span<const layer> layers) {
  std::vector<std::uint8_t> frame;
  for (std::size_t i = layers.size(); i-- > 0;) {
    const layer& self = layers[i];
    const layer* next = i + 1 < layers.size() ? &layers[i + 1] : nullptr;
    frame = std::visit(layer_writer{self, next, frame}, self.fields);
    if (self.bad_checksum && !is_transport(self.fields)) corrupt_checksum(frame, *checksum_offset(self.fields));
  }
  return frame;
}

}  // namespace pkt
