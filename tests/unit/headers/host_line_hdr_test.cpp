// The compressed fabric, punt-inject, line, time shim and host DMA headers:
// one golden round trip each, the bytes worked out by hand from the field
// positions (byte.bit/width, bit 0 the most significant; "le" low byte first).
#include <gtest/gtest.h>

#include "header_bytes.h"
#include "line_hdr.h"
#include "pdma_hdr.h"
#include "platform/varn/fab_hdr_convert.h"
#include "platform/varn/line_hdr_access.h"
#include "punt_inject_hdr.h"

namespace {

using namespace ht;

TEST(CompressedHdr, IpUnicastGoldenRoundTrip) {
  using c = varn_fab_nph_ip_uni_st;
  expect_round_trip<c, c::c3_header_ver, c::fgid_or_sfp, c::multicast_group, c::di_extra, c::de, c::cos, c::rbh,
                    c::ptrace, c::nph_type, c::critical_inject, c::nph_length, c::qos_info, c::vrf, c::lagm::lag_id,
                    c::input_if_handle, c::raw_hash, c::nrldim::member_id, c::rldim::member_id>(
      {0xA9, 0xAB, 0x01, 0x02, 0x71, 0x5A, 0x41, 0x8C, 0x34, 0x12, 0x0B, 0x0A,
       0x05, 0x00, 0x11, 0x22, 0x33, 0x44, 0xAA, 0xBB, 0xCC, 0xDD, 0x03, 0x3F},
      {5, 0x9AB, 0x0102, 1, 1, 0x11, 0x5A, 1, 1, 1, 12, 0x1234, 0x0A0B, 5, 0x11223344, 0xAABBCCDD, 3, 0x3F});
}

TEST(PuntInjectHdr, ExtensionGoldenRoundTrip) {
  using e = varn_nph_punt_inject_ext_st;
  expect_round_trip<e, e::qos_info, e::flow_type, e::ext_fgid::extended_fgid_b23_14, e::ext_fgid::extended_fgid_b13_12,
                    e::lagm::lag_id, e::flags::li_enable, e::flags::nhid_punt, e::flags::hop_count,
                    e::hash_data::raw_hash, e::hash_data::nrldim, e::hash_data::rldim, e::input_if_handle>(
      {0x34, 0x12, 0x56, 0x00, 0xAD, 0xC8, 0x2A, 0x89, 0x00, 0x00,
       0xA1, 0xB2, 0xC3, 0xD4, 0x07, 0x3F, 0x11, 0x22, 0x33, 0x44},
      {0x1234, 0x56, 0x2B7, 2, 0x2A, 1, 1, 1, 0xA1B2C3D4, 0x07, 0x3F, 0x11223344});
}

TEST(PuntInjectHdr, BufferHeaderGoldenRoundTrip) {
  using b = varn_punt_inject_buffhdr_st;
  expect_round_trip<b, b::sid, b::pkt_dir, b::is_ironwing, b::act_rp_punt, b::punt_reason, b::punt_subreason,
                    b::layer2_type, b::network_start_offset, b::pkt_type, b::feature_hdr_len, b::l2_proto_flags,
                    b::srv6, b::ts, b::already_forwarded, b::pkt_len, b::table_id_or_xconnect_id, b::src_vqi,
                    b::output_if_handle, b::np_port, b::trace_pkt, b::card_type>(
      {0x01, 0x02, 0xC0, 0x23, 0x24, 0x25, 0x26, 0x27, 0x28, 0x29, 0x89, 0x05, 0xDC, 0x0A,
       0x0B, 0x0C, 0x0D, 0x17, 0x18, 0x00, 0x00, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x4C},
      {0x01, 0x02, 1, 1,      0x23,       0x24,   0x25,       0x26,   0x27, 0x28, 0x29,
       1,    1,    1, 0x05DC, 0x0A0B0C0D, 0x1718, 0x21222324, 0x2526, 1,    0xC});
}

TEST(LineHdr, TrafficManagerAndEgressPartsGoldenRoundTrip) {
  using l = line_hdr_st;
  // 1528 = 0x5F8 and 1518 = 0x5EE, each 14 bits below 2 reserved bits.
  expect_round_trip<l, l::queue_id, l::stored_length, l::scheduling_length, l::shim_exists, l::diag_pkt,
                    l::tsr_protocol, l::tsr_offset, l::followup, l::rewrite, l::chksumen, l::ts_index, l::timestamp>(
      {0x12, 0x34, 0x05, 0xF8, 0x05, 0xEE, 0xC5, 0x2A, 0xAF, 0xFF, 0xCA, 0xFE, 0xF0, 0x0D},
      {0x1234, 1528, 1518, 1, 1, 5, 0x2A, 1, 1, 1, 0x7FF, 0xCAFEF00D});
  EXPECT_EQ(plat_get_line_tx_encap_len(14), 28u);  // the line header ahead of the frame
}

TEST(TimeShimAndHostDma, GoldenRoundTrips) {
  using s = time_shim_type;
  expect_round_trip<s, s::correction_field_hi, s::correction_field_lo, s::udp_chksum, s::signature>(
      {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, {0x01020304, 0x0506, 0x0708, 0x090A0B0C});
  using th = thpdma_bufhdr_type;
  expect_round_trip<th, th::diagpkt, th::rsvd2, th::th_pdma_q_num, th::pdma_pktlen>({0x55, 0x5B, 0x23, 0x45},
                                                                                    {1, 0x155, 0xB, 0x2345});
  using fh = fhpdma_bufhdr_type;
  expect_round_trip<fh, fh::issu_vbit, fh::traffic_type, fh::pkt_type, fh::queue_number, fh::pktlen>(
      {0xA3, 0x06, 0x3F, 0xFF}, {1, 2, 3, 6, 0x3FFF});
}

}  // namespace
