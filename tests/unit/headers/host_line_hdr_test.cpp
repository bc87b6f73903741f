// The compressed, punt-inject, line, time shim and host DMA headers: fields
// at the positions of the field tables.
#include <gtest/gtest.h>

#include <array>

#include "header_bytes.h"
#include "line_hdr.h"
#include "pdma_hdr.h"
#include "platform/varn/fab_hdr_convert.h"
#include "platform/varn/line_hdr_access.h"
#include "punt_inject_hdr.h"

namespace {

using namespace ht;
using cmp = varn_fab_nph_generic_st;
using ext = varn_nph_punt_inject_ext_st;
using buf = varn_punt_inject_buffhdr_st;

void expect_rows(const std::vector<field_row>& rows) {
  for (const field_row& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(r.got, r.want);
  }
}

TEST(CompressedHdrLayout, BufferHeaderAndCommonBytes) {
  expect_rows({
      {"c3_header_ver 0.0/3", ones<cmp::c3_header_ver, cmp>(), {{0, 0xE0}}},
      {"multicast_flag 0.3", ones<cmp::multicast_flag, cmp>(), {{0, 0x10}}},
      {"fgid_or_sfp 0.4/12", ones<cmp::fgid_or_sfp, cmp>(), {{0, 0x0F}, {1, 0xFF}}},
      {"multicast_group 2-3", ones<cmp::multicast_group, cmp>(), {{2, 0xFF}, {3, 0xFF}}},
      {"di_extra 4.0/2", ones<cmp::di_extra, cmp>(), {{4, 0xC0}}},
      {"de 4.2", ones<cmp::de, cmp>(), {{4, 0x20}}},
      {"cos 4.3/5", ones<cmp::cos, cmp>(), {{4, 0x1F}}},
      {"rbh 5", ones<cmp::rbh, cmp>(), {{5, 0xFF}}},
      {"nph_type 6.2/6", ones<cmp::nph_type, cmp>(), {{6, 0x3F}}},
      {"nph_length 7.3/5", ones<cmp::nph_length, cmp>(), {{7, 0x1F}}},
      {"compressed vrf 10-11", ones<varn_fab_nph_ip_uni_st::vrf, varn_fab_nph_ip_uni_st>(), {{10, 0xFF}, {11, 0xFF}}},
      {"compressed rldim 23.2/6",
       ones<varn_fab_nph_ip_uni_st::rldim::member_id, varn_fab_nph_ip_uni_st>(),
       {{23, 0x3F}}},
  });
}

TEST(PuntInjectHdrLayout, ExtensionAndBufferHeader) {
  expect_rows({
      {"ext qos_info 0-1", ones<ext::qos_info, ext>(), {{0, 0xFF}, {1, 0xFF}}},
      {"ext flow_type 2", ones<ext::flow_type, ext>(), {{2, 0xFF}}},
      {"ext fgid b23_14 4.0/10", ones<ext::ext_fgid::extended_fgid_b23_14, ext>(), {{4, 0xFF}, {5, 0xC0}}},
      {"ext lag_id 6.2/6", ones<ext::lagm::lag_id, ext>(), {{6, 0x3F}}},
      {"ext li_enable 7.0", ones<ext::flags::li_enable, ext>(), {{7, 0x80}}},
      {"ext nhid_punt 7.4", ones<ext::flags::nhid_punt, ext>(), {{7, 0x08}}},
      {"ext hop_count 7.7", ones<ext::flags::hop_count, ext>(), {{7, 0x01}}},
      {"ext raw_hash 10-13", ones<ext::hash_data::raw_hash, ext>(), {{10, 0xFF}, {11, 0xFF}, {12, 0xFF}, {13, 0xFF}}},
      {"ext nhid 10-12", ones<ext::nhid_data::nhid, ext>(), {{10, 0xFF}, {11, 0xFF}, {12, 0xFF}}},
      {"ext out_label_msb 13-14", ones<ext::nhid_data::out_label_msb, ext>(), {{13, 0xFF}, {14, 0xFF}}},
      {"ext rldim 15", ones<ext::hash_data::rldim, ext>(), {{15, 0xFF}}},
      {"ext input_if_handle 16-19",
       ones<ext::input_if_handle, ext>(),
       {{16, 0xFF}, {17, 0xFF}, {18, 0xFF}, {19, 0xFF}}},
      {"buf act_rp_punt 2.1", ones<buf::act_rp_punt, buf>(), {{2, 0x40}}},
      {"buf punt_reason 3", ones<buf::punt_reason, buf>(), {{3, 0xFF}}},
      {"buf feature_hdr_len 8", ones<buf::feature_hdr_len, buf>(), {{8, 0xFF}}},
      {"buf ts 10.4", ones<buf::ts, buf>(), {{10, 0x08}}},
      {"buf already_forwarded 10.7", ones<buf::already_forwarded, buf>(), {{10, 0x01}}},
      {"buf pkt_len 11-12", ones<buf::pkt_len, buf>(), {{11, 0xFF}, {12, 0xFF}}},
      {"buf table_id 13-16",
       ones<buf::table_id_or_xconnect_id, buf>(),
       {{13, 0xFF}, {14, 0xFF}, {15, 0xFF}, {16, 0xFF}}},
      {"buf src_vqi 17-18", ones<buf::src_vqi, buf>(), {{17, 0xFF}, {18, 0xFF}}},
      {"buf output_if_handle 21-24",
       ones<buf::output_if_handle, buf>(),
       {{21, 0xFF}, {22, 0xFF}, {23, 0xFF}, {24, 0xFF}}},
      {"buf np_port 25-26", ones<buf::np_port, buf>(), {{25, 0xFF}, {26, 0xFF}}},
      {"buf trace_pkt 27.1", ones<buf::trace_pkt, buf>(), {{27, 0x40}}},
      {"buf card_type 27.4/4", ones<buf::card_type, buf>(), {{27, 0x0F}}},
  });
}

TEST(PuntInjectHdrLayout, FpgaEncapsulation) {
  varn_punt_inject_fpga_encap_st e;
  e.bytes[0] = 0xAA;  // everything is written
  plat_build_punt_inject_fpga_encap(&e, 84, 3, 0xF064);
  EXPECT_EQ(bytes_of(e),
            (bytes{0x01, 0x56, 0x47, 0x50, 0x00, 84, 0x00, 0x4E, 0x65, 0x7A, 0x00, 3, 0x81, 0x00, 0x00, 0x64}));
}

TEST(LineHdrLayout, TrafficManagerAndEgressParts) {
  line_hdr_st h{};
  line_hdr_st::queue_id::set(h, 0x1234);
  line_hdr_st::stored_length::set(h, 1514 + LINE_HDR_BYTES);
  line_hdr_st::scheduling_length::set(h, 1518);
  line_hdr_st::shim_exists::set(h, 1);
  line_hdr_st::tsr_protocol::set(h, 5);
  line_hdr_st::tsr_offset::set(h, 0x2A);
  line_hdr_st::followup::set(h, 1);
  line_hdr_st::chksumen::set(h, 1);
  line_hdr_st::ts_index::set(h, 0x7FF);
  line_hdr_st::timestamp::set(h, 0xCAFEF00D);
  // 1528 = 0x5F8, 1518 = 0x5EE, each 14 bits below 2 reserved bits.
  EXPECT_EQ(bytes_of(h), (bytes{0x12, 0x34, 0x05, 0xF8, 0x05, 0xEE, 0x85, 0x2A, 0x8F, 0xFF, 0xCA, 0xFE, 0xF0, 0x0D}));
  EXPECT_EQ(plat_get_line_tx_encap_len(14), 28u);
}

TEST(TimeShimAndHostDmaLayout, Fields) {
  time_shim_type s{};
  time_shim_type::correction_field_hi::set(s, 0x01020304);
  time_shim_type::correction_field_lo::set(s, 0x0506);
  time_shim_type::udp_chksum::set(s, 0x0708);
  time_shim_type::signature::set(s, 0x090A0B0C);
  EXPECT_EQ(bytes_of(s), (bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  expect_rows({
      {"th diagpkt 0.1", ones<thpdma_bufhdr_type::diagpkt, thpdma_bufhdr_type>(), {{0, 0x40}}},
      {"th rsvd2 0.2/10", ones<thpdma_bufhdr_type::rsvd2, thpdma_bufhdr_type>(), {{0, 0x3F}, {1, 0xF0}}},
      {"th q_num 1.4/4", ones<thpdma_bufhdr_type::th_pdma_q_num, thpdma_bufhdr_type>(), {{1, 0x0F}}},
      {"th pdma_pktlen 2.2/14", ones<thpdma_bufhdr_type::pdma_pktlen, thpdma_bufhdr_type>(), {{2, 0x3F}, {3, 0xFF}}},
      {"fh traffic_type 0.2/2", ones<fhpdma_bufhdr_type::traffic_type, fhpdma_bufhdr_type>(), {{0, 0x30}}},
      {"fh queue_number 1.4/4", ones<fhpdma_bufhdr_type::queue_number, fhpdma_bufhdr_type>(), {{1, 0x0F}}},
      {"fh pktlen 2.2/14", ones<fhpdma_bufhdr_type::pktlen, fhpdma_bufhdr_type>(), {{2, 0x3F}, {3, 0xFF}}},
  });
}

}  // namespace
