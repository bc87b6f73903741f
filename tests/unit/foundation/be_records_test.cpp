// Big-endian records: the value types, sub-byte fields, flag-word numbering,
// and the positions of the fields that the platform and the program share.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <vector>

#include "be_types.h"
#include "dist_hdr.h"
#include "dplane/infra/ps_records.h"
#include "fab_hdr.h"
#include "fwc_port.h"
#include "pdma_hdr.h"

namespace {

template <class T>
std::vector<std::uint8_t> bytes_of(const T& v) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&v);
  return {p, p + sizeof(T)};
}

using bytes = std::vector<std::uint8_t>;

TEST(ByteOrder, BigEndianValuesFirstLittleEndianValuesLast) {
  be_u16 a;
  a = 0x1234;
  be_u24 b;
  b = 0xFF123456;  // only 24 bits are kept
  be_u64 c;
  c = 0x0102030405060708;
  le_u16 d;
  d = 0x1234;
  le_u32 e;
  e = 0x12345678;
  EXPECT_EQ(bytes_of(a), (bytes{0x12, 0x34}));
  EXPECT_EQ(bytes_of(b), (bytes{0x12, 0x34, 0x56}));
  EXPECT_EQ(b.get(), 0x123456u);
  EXPECT_EQ(bytes_of(c), (bytes{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(c.get(), 0x0102030405060708u);
  EXPECT_EQ(bytes_of(d), (bytes{0x34, 0x12}));
  EXPECT_EQ(bytes_of(e), (bytes{0x78, 0x56, 0x34, 0x12}));
  EXPECT_EQ(e.get(), 0x12345678u);
}

struct rec6 {
  std::uint8_t b[6];
};

// Sets field F to v in a record of `fill` bytes; the neighbours must survive.
template <class F>
bytes set_in(std::uint8_t fill, std::uint32_t v) {
  rec6 r;
  std::fill(std::begin(r.b), std::end(r.b), fill);
  F::set(r, v);
  EXPECT_EQ(F::get(r), v);
  return bytes_of(r);
}

TEST(SubByteFields, FieldsAcrossByteBoundaries) {
  EXPECT_EQ((set_in<be_bits<0, 0, 3>>(0, 5)), (bytes{0xA0, 0, 0, 0, 0, 0}));
  EXPECT_EQ((set_in<be_bits<4, 2, 14>>(0, 0x2345)), (bytes{0, 0, 0, 0, 0x23, 0x45}));
  EXPECT_EQ((set_in<be_bits<4, 2, 14>>(0xFF, 0)), (bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xC0, 0x00}));
  EXPECT_EQ((set_in<be_bits<1, 3, 20>>(0xFF, 0xABCDE)), (bytes{0xFF, 0xF5, 0x79, 0xBD, 0xFF, 0xFF}));
  EXPECT_EQ((set_in<be_bits<0, 4, 24>>(0, 0x123456)), (bytes{0x01, 0x23, 0x45, 0x60, 0, 0}));
  EXPECT_EQ((set_in<be_bits<1, 4, 32>>(0xFF, 0xDEADBEEF)), (bytes{0xFF, 0xFD, 0xEA, 0xDB, 0xEE, 0xFF}));
}

TEST(SubByteFields, FlagWordsNumberBitsFromTheLeastSignificant) {
  using cf = common_flags_st;
  common_flags_st f{};
  cf::l3_type::set(f, 3);
  cf::keep_gpm::set(f, 1);
  cf::gpm_allocated::set(f, 2);
  EXPECT_EQ(bytes_of(f), (bytes{0x20, 0, 0, 0, 0, 0, 0x06, 0x02}));
  EXPECT_EQ((be_word_mask<0, cf::keep_gpm, cf::pkt_trace_on, cf::fast_switch>()), 0x20400001u);
  EXPECT_EQ((be_word_mask<4, cf::l3_type, cf::gpm_allocated>()), 0x00000603u);
}

// Every field set to all ones in an empty record: the bytes it must touch.
template <class F, class R>
std::map<std::size_t, std::uint8_t> ones() {
  R rec{};
  F::set(rec, static_cast<std::uint32_t>(F::mask));
  std::map<std::size_t, std::uint8_t> nonzero;
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  for (std::size_t i = 0; i < sizeof(R); ++i) {
    if (p[i]) nonzero[i] = p[i];
  }
  return nonzero;
}

TEST(RecordLayout, SharedFieldsStandWhereThePlatformPutsThem) {
  using dh = dist_hdr_line_st;
  struct row {
    const char* name;
    std::map<std::size_t, std::uint8_t> got, want;
  };
  const row rows[] = {
      {"dst_format", ones<dh::dst_format, dh>(), {{0, 0xE0}}},
      {"rt_result", ones<dh::rt_result, dh>(), {{1, 0xFF}}},
      {"error", ones<dh::error, dh>(), {{4, 0x80}}},
      {"pktlen", ones<dh::pktlen, dh>(), {{4, 0x3F}, {5, 0xFF}}},
      {"gpm_pkt_handle", ones<dh::gpm_pkt_handle, dh>(), {{6, 0xFF}, {7, 0xF8}}},
      {"igpb_queue", ones<dh::igpb_queue, dh>(), {{7, 0x07}, {8, 0xF0}}},
      {"l3_offset", ones<dh::l3_offset, dh>(), {{17, 0x7F}}},
      {"l2_uidb", ones<dh::l2_uidb, dh>(), {{18, 0x01}}},
      {"l3_type", ones<dh::l3_type, dh>(), {{18, 0x30}}},
      {"read_bng_uidb_ext", ones<dh::read_bng_uidb_ext, dh>(), {{19, 0x02}}},
      {"mpls_en", ones<dh::mpls_en, dh>(), {{19, 0x10}}},
      {"ipv6_en", ones<dh::ipv6_en, dh>(), {{19, 0x20}}},
      {"ipv4_en", ones<dh::ipv4_en, dh>(), {{19, 0x40}}},
      {"l2 maintenance", ones<dh::l2_uidb_maintenance_mode, dh>(), {{19, 0x08}}},
      {"l3 maintenance", ones<dh::l3_uidb_maintenance_mode, dh>(), {{20, 0x80}}},
      {"port_bits_sat", ones<dh::port_bits_sat, dh>(), {{21, 0x08}}},
      {"port_bits_gbl_feature", ones<dh::port_bits_gbl_feature, dh>(), {{21, 0x01}}},
      {"logical_port", ones<dh::logical_port, dh>(), {{22, 0x0F}, {23, 0xFF}}},
      {"uidb_index", ones<dh::uidb_index, dh>(), {{24, 0xFF}, {25, 0xFF}}},
      {"da_bits", ones<dh::da_bits, dh>(), {{26, 0xC0}}},
      {"rt_result_valid", ones<dh::rt_result_valid, dh>(), {{26, 0x20}}},
      {"is_mcast", ones<dh::is_mcast, dh>(), {{26, 0x10}}},
      {"nph_type", ones<dc3_nph_st::nph_type, dc3_nph_st>(), {{8, 0x3F}}},
      {"ptrace", ones<dc3_nph_st::ptrace, dc3_nph_st>(), {{8, 0x40}}},
      {"critical_inject", ones<dc3_nph_st::critical_inject, dc3_nph_st>(), {{9, 0x80}}},
      {"issu_vbit", ones<fhpdma_bufhdr_type::issu_vbit, fhpdma_bufhdr_type>(), {{0, 0x80}}},
      {"pdma pkt_type", ones<fhpdma_bufhdr_type::pkt_type, fhpdma_bufhdr_type>(), {{0, 0x03}}},
      {"sat_port_unicast_state",
       ones<ingress_port_fields_part1_st::sat_port_unicast_state, ingress_port_fields_part1_st>(),
       {{6, 0x10}}},
  };
  for (const row& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(r.got, r.want);
  }
}

}  // namespace
