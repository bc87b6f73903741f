// The fabric header families: each header written through its accessors and
// compared with the bytes worked out by hand from the field positions, then
// read back. Byte-reversed fields stand low byte first.
#include <gtest/gtest.h>

#include <vector>

#include "header_bytes.h"
#include "platform/varn/fab_hdr_access.h"
#include "platform/varn/fab_hdr_write.h"

namespace {

using namespace ht;

using setter = void (*)(void*, std::uint32_t);
template <class F, class R = dc3_nph_st>
void field(void* fab, std::uint32_t value) {
  F::set(fab_as<R>(fab), value);
}
constexpr setter TYPE = field<dc3_nph_st::nph_type>, LENGTH = field<dc3_nph_st::nph_length>;

// A zeroed header of `size` bytes with each setter's value written in turn.
bytes written(std::size_t size, const std::vector<setter>& setters, const std::vector<std::uint32_t>& values) {
  bytes h(size, 0);
  for (std::size_t i = 0; i < setters.size(); ++i) setters[i](h.data(), values.at(i));
  return h;
}

TEST(FabHdrGolden, FixedPartRoundTripAndTheLengthCodeAmongItsFlags) {
  using d = dc3_nph_st;
  const bytes golden =
      (bytes{0xDA, 0x00, 0x84, 0x8D, 0x73, 0x0A, 0xA3, 0x45, 0x61, 0xAC, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
             0x00, 0x00, 0x00, 0x00, 0xAB, 0x38, 0x75, 0xA6, 0x00, 0x00, 0x00, 0x00, 0x00, 0x5D, 0x00, 0xC7});
  expect_round_trip<d, d::dc3_eos, d::dc3_version, d::dc3_pkt_type, d::dc3_hl, d::dc3_plen, d::dc3_de, d::dc3_cos,
                    d::dc3_mgid_15, d::dc3_mgid_18, d::dc3_mgid_17, d::dc3_mgid_16, d::dc3_mgid_14_0, d::ptrace,
                    d::nph_type, d::critical_inject, d::remote_rack, d::nph_length, d::dc3_seq_no, d::dc3_src_port,
                    d::dc3_sfp_valid, d::dc3_fgid_or_sfp, d::dc3_rbh, d::dc3_checksum>(
      golden, {1, 5,    0xA, 2, 0x1235,        1,    0x13,  1, 1,     0,    1,   0x2345,
               1, 0x21, 1,   1, NPH_LENGTH_32, 0x55, 0x9C3, 1, 0x5A6, 0x5D, 0xC7});
  EXPECT_EQ(nph_length_bytes(plat_fab_get_nph_length(golden.data())), 32u);
  EXPECT_EQ(plat_get_fab_hdr_len_l2_uni(golden.data()), 32u);
}

TEST(FabHdrGolden, MulticastGroupBit18StandsTwiceAndLeavesTheLength) {
  bytes h = written(44, {TYPE, LENGTH}, {NPH_TYPE_IPV4_MC, NPH_LENGTH_44});
  plat_fab_hdr_write_mgid_common(h.data(), 0x48005);                   // bits 18, 15, 2 and 0
  EXPECT_EQ(h, with(44, {{5, 0x0A}, {7, 0x05}, {8, 0x02}, {9, 82}}));  // dc3_mgid_15, dc3_mgid_18
  EXPECT_EQ(plat_get_fab_hdr_len_ipmc(h.data()), 44u);
  plat_fab_hdr_write_mgid_common(h.data(), 0x30000);  // bits 17 and 16
  EXPECT_EQ(h, with(44, {{5, 0x01}, {6, 0x80}, {8, 0x02}, {9, 18}}));
  plat_fab_hdr_clear_mgid_common(h.data());
  EXPECT_EQ(h, with(44, {{8, 0x02}, {9, 0x12}}));
}

TEST(FabHdrGolden, FabricGroupSpreadsOverTheFixedPartAndTheExtension) {
  bytes h = written(44, {plat_fab_hdr_write_vqi_voq}, {0xFFFF});
  EXPECT_EQ(h, with(44, {{22, 0x17}, {23, 0xFF}}));  // 11 bits and sfp_valid
  plat_fab_hdr_write_fgid_common(h.data(), 0xABCDEF);
  // Low 12 bits 0xDEF; bits 13..12 = 0; bits 23..14 = 0x2AF.
  EXPECT_EQ(h, with(44, {{14, 0xAB}, {15, 0xC0}, {22, 0x0D}, {23, 0xEF}}));
}

// The bridge domain's bit 15 stands in dc3_mgid_15; the wide form holds all
// 24 bits, low byte first, behind the base header.
TEST(FabHdrGolden, BridgeDomainOfTheL2UnicastForms) {
  bytes h = written(32, {TYPE, LENGTH, plat_set_fab_hdr_l2_uni_bd_id}, {NPH_TYPE_L2_UNI, NPH_LENGTH_32, 0x9234});
  EXPECT_EQ(h, with(32, {{5, 0x08}, {6, 0x34}, {7, 0x12}, {8, 0x07}, {9, 0x0C}}));
  EXPECT_EQ(plat_get_fab_hdr_l2_uni_bd_id(h.data()), 0x9234u);
  h = written(38, {TYPE, LENGTH, plat_set_fab_hdr_l2_uni_bd_id}, {NPH_TYPE_L2_UNI_PLUS, NPH_LENGTH_38, 0x123456});
  EXPECT_EQ(h, with(38, {{8, 0x25}, {9, 0x0F}, {35, 0x56}, {36, 0x34}, {37, 0x12}}));
  EXPECT_EQ(plat_get_fab_hdr_l2_uni_bd_id(h.data()), 0x123456u);
}

// Checksum vectors summed by hand: fifteen words of bytes 0..29, byte 30,
// the three folds, the complement.
TEST(FabHdrChecksum, KnownVectors) {
  struct row {
    const char* name;
    bytes header;
    std::uint8_t checksum;
  };
  bytes ones(32, 0xFF);
  ones[31] = 0;
  const row rows[] = {
      // 0xC000 + 0x4000 + 0x0200 + 0x0212 + 0x0005 + 0x10 = 0x10427 -> 0x27 + 0x04 + 1 = 0x2C
      {"multicast header", with(32, {{0, 0xC0}, {2, 0x40}, {4, 0x02}, {8, 0x02}, {9, 0x12}, {23, 0x05}, {30, 0x10}}),
       0xD3},
      {"all ones", ones, 0x00},  // fifteen 0xFFFF and 0xFF = 0xF00F0 -> 0xF0 + 0x00 + 0xF = 0xFF
      // 3 x 0xFFFF + 0x0002 = 0x2FFFF -> 0xFF + 0xFF + 2 = 0x200 -> 0x00 + 2 = 2
      {"second fold carries", with(32, {{0, 0xFF}, {1, 0xFF}, {2, 0xFF}, {3, 0xFF}, {4, 0xFF}, {5, 0xFF}, {7, 0x02}}),
       0xFD},
      {"checksum byte left out", with(32, {{31, 0x77}}), 0xFF},
  };
  for (row r : rows) {
    SCOPED_TRACE(r.name);
    dc3_set_checksum(r.header.data());
    EXPECT_EQ(r.header[31], r.checksum);
  }
}

}  // namespace
