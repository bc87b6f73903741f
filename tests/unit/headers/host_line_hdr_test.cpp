// The punt-inject extension, the line header and the host DMA receive header:
// one golden round trip each, the bytes worked out by hand from the field
// positions (byte.bit/width, bit 0 the most significant; "le" low byte first).
#include <gtest/gtest.h>

#include "header_bytes.h"
#include "line_hdr.h"
#include "pdma_hdr.h"
#include "platform/varn/line_hdr_access.h"
#include "punt_inject_hdr.h"

namespace {

using namespace ht;

TEST(PuntInjectHdr, ExtensionGoldenRoundTrip) {
  using e = varn_nph_punt_inject_ext_st;
  expect_round_trip<e, e::qos_info, e::flow_type, e::ext_fgid::extended_fgid_b23_14, e::ext_fgid::extended_fgid_b13_12,
                    e::lagm::lag_id, e::flags::li_enable, e::flags::nhid_punt, e::flags::hop_count,
                    e::hash_data::raw_hash, e::hash_data::nrldim, e::hash_data::rldim, e::input_if_handle>(
      {0x34, 0x12, 0x56, 0x00, 0xAD, 0xC8, 0x2A, 0x89, 0x00, 0x00,
       0xA1, 0xB2, 0xC3, 0xD4, 0x07, 0x3F, 0x11, 0x22, 0x33, 0x44},
      {0x1234, 0x56, 0x2B7, 2, 0x2A, 1, 1, 1, 0xA1B2C3D4, 0x07, 0x3F, 0x11223344});
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

TEST(HostDmaHdr, ReceiveHeaderGoldenRoundTrip) {
  using fh = fhpdma_bufhdr_type;
  expect_round_trip<fh, fh::issu_vbit, fh::traffic_type, fh::pkt_type, fh::queue_number, fh::pktlen>(
      {0xA3, 0x06, 0x3F, 0xFF}, {1, 2, 3, 6, 0x3FFF});
}

}  // namespace
