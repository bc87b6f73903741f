// The distribution headers: every view's fields at the positions of the
// field tables, in the line, baf, fabric and common forms.
#include <gtest/gtest.h>

#include "dist_hdr.h"
#include "header_bytes.h"

namespace {

using namespace ht;
using line = dist_hdr_line_st;
using baf = baf_hdr_ing_st;
using fab = dist_hdr_fabric_st;
using zp = dist_hdr_common_st::zp;
using common = dist_hdr_common_st::fields;

void expect_rows(const std::vector<field_row>& rows) {
  for (const field_row& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(r.got, r.want);
  }
}

TEST(DistHdrLayout, LinePartFields) {
  expect_rows({
      {"l3_info_status 0.3/5", ones<line::l3_info_status, line>(), {{0, 0x1F}}},
      {"frame_type 2.0/5", ones<line::frame_type, line>(), {{2, 0xF8}}},
      {"hdr_format 2.5", ones<line::hdr_format, line>(), {{2, 0x04}}},
      {"ifl24 2.6/10", ones<line::ifl24, line>(), {{2, 0x03}, {3, 0xFF}}},
      {"rsvd1 4.1", ones<line::rsvd1, line>(), {{4, 0x40}}},
      {"scoreboard 8.4/12", ones<line::scoreboard, line>(), {{8, 0x0F}, {9, 0xFF}}},
      {"head_type_last 10", ones<line::head_type_last, line>(), {{10, 0xFF}}},
      {"head_ptr_last 11", ones<line::head_ptr_last, line>(), {{11, 0xFF}}},
      {"head_ptr_d 12", ones<line::head_ptr_d, line>(), {{12, 0xFF}}},
      {"head_ptr_a 15", ones<line::head_ptr_a, line>(), {{15, 0xFF}}},
  });
}

TEST(DistHdrLayout, BafBaseView) {
  expect_rows({
      {"diag_pkt 0.1", ones<baf::diag_pkt, baf>(), {{0, 0x40}}},
      {"err_type 0.2/2", ones<baf::err_type, baf>(), {{0, 0x30}}},
      {"vlan_pbits 0.4/4", ones<baf::vlan_pbits, baf>(), {{0, 0x0F}}},
      {"traffic_type 1.0", ones<baf::traffic_type, baf>(), {{1, 0x80}}},
      {"l3_offset 1.1/7", ones<baf::l3_offset, baf>(), {{1, 0x7F}}},
      {"qfill_zone 2.0/2", ones<baf::qfill_zone, baf>(), {{2, 0xC0}}},
      {"l3_type 2.2/2", ones<baf::l3_type, baf>(), {{2, 0x30}}},
      {"port_bits_l3_lb_hash 5.0", ones<baf::port_bits_l3_lb_hash, baf>(), {{5, 0x80}}},
      {"port_bits_ext 5.1", ones<baf::port_bits_ext, baf>(), {{5, 0x40}}},
      {"port_bits_sat_encap 5.2/2", ones<baf::port_bits_sat_encap, baf>(), {{5, 0x30}}},
      {"port_bits_rt_l2 5.5", ones<baf::port_bits_rt_l2, baf>(), {{5, 0x04}}},
      {"port_bits_rt_l3 5.6", ones<baf::port_bits_rt_l3, baf>(), {{5, 0x02}}},
      {"port_bits_force_l2_ctrl_vector 6.0", ones<baf::port_bits_force_l2_ctrl_vector, baf>(), {{6, 0x80}}},
      {"port_bits_2_0 6.1/3", ones<baf::port_bits_2_0, baf>(), {{6, 0x70}}},
      {"logical_port 6.4/12", ones<baf::logical_port, baf>(), {{6, 0x0F}, {7, 0xFF}}},
      {"uidb_index 8-9", ones<baf::uidb_index, baf>(), {{8, 0xFF}, {9, 0xFF}}},
      {"decode_bits 10.3/13", ones<baf::decode_bits, baf>(), {{10, 0x1F}, {11, 0xFF}}},
      {"timestamp 12-15", ones<baf::timestamp, baf>(), {{12, 0xFF}, {13, 0xFF}, {14, 0xFF}, {15, 0xFF}}},
  });
}

TEST(DistHdrLayout, BafMarkViews) {
  expect_rows({
      {"l2_uidb 2.7", ones<baf::mark_common::l2_uidb, baf>(), {{2, 0x01}}},
      {"l3 rt_v4 2.4", ones<baf::mark_l3::rt_v4, baf>(), {{2, 0x08}}},
      {"l3 rt_mpls 2.6", ones<baf::mark_l3::rt_mpls, baf>(), {{2, 0x02}}},
      {"l3 line_status_up 3.0", ones<baf::mark_l3::line_status_up, baf>(), {{3, 0x80}}},
      {"l3 fast_ext_req 3.4", ones<baf::mark_l3::fast_ext_req, baf>(), {{3, 0x08}}},
      {"l3 ext_req 3.5", ones<baf::mark_l3::ext_req, baf>(), {{3, 0x04}}},
      {"l3 global_vrf 3.7", ones<baf::mark_l3::global_vrf, baf>(), {{3, 0x01}}},
      {"l3 uidb_maintenance_mode 4.0", ones<baf::mark_l3::uidb_maintenance_mode, baf>(), {{4, 0x80}}},
      {"l3 mark_11_4 4.1/7", ones<baf::mark_l3::mark_11_4, baf>(), {{4, 0x7F}}},
      {"l2 vpls 2.5", ones<baf::mark_l2::vpls, baf>(), {{2, 0x04}}},
      {"l2 uidb_maintenance_mode 3.4", ones<baf::mark_l2::uidb_maintenance_mode, baf>(), {{3, 0x08}}},
      {"l2 mark_13_12 3.6/2", ones<baf::mark_l2::mark_13_12, baf>(), {{3, 0x03}}},
      {"l2 mark_11_4 4", ones<baf::mark_l2::mark_11_4, baf>(), {{4, 0xFF}}},
      {"mark_bits_high 2.4/12", ones<baf::baf_override_common::mark_bits_high, baf>(), {{2, 0x0F}, {3, 0xFF}}},
      {"portbits 5.0/12", ones<baf::baf_override_common::portbits, baf>(), {{5, 0xFF}, {6, 0xF0}}},
  });
}

TEST(DistHdrLayout, BafDecodeViews) {
  expect_rows({
      {"v4 is_mcast 10.3", ones<baf::v4::is_mcast, baf>(), {{10, 0x10}}},
      {"v4 payloadlen_gte_4 10.7", ones<baf::v4::payloadlen_gte_4, baf>(), {{10, 0x01}}},
      {"v4 frame_gte_hdrtotlen 11.0", ones<baf::v4::frame_gte_hdrtotlen, baf>(), {{11, 0x80}}},
      {"v4 hdr_chksum_vld 11.5", ones<baf::v4::hdr_chksum_vld, baf>(), {{11, 0x04}}},
      {"v4 ttl_gt_1 11.7", ones<baf::v4::ttl_gt_1, baf>(), {{11, 0x01}}},
      {"v6 sip_is_link_local 10.4", ones<baf::v6::sip_is_link_local, baf>(), {{10, 0x08}}},
      {"v6 dip_is_link_local 10.5", ones<baf::v6::dip_is_link_local, baf>(), {{10, 0x04}}},
      {"v6 frame_gte_40 11.1", ones<baf::v6::frame_gte_40, baf>(), {{11, 0x40}}},
      {"v6 nxthdr_is_tcp 11.5", ones<baf::v6::nxthdr_is_tcp, baf>(), {{11, 0x04}}},
      {"mpls mpls_lt_5_labels 10.4", ones<baf::mpls::mpls_lt_5_labels, baf>(), {{10, 0x08}}},
      {"mpls mpls_num_labels 10.5/3", ones<baf::mpls::mpls_num_labels, baf>(), {{10, 0x07}}},
      {"mpls found_entropy_label 11.1", ones<baf::mpls::found_entropy_label, baf>(), {{11, 0x40}}},
      {"mpls entropy_label_offset 11.2/3", ones<baf::mpls::entropy_label_offset, baf>(), {{11, 0x38}}},
      {"mpls mpls_ttl_gt_1 11.7", ones<baf::mpls::mpls_ttl_gt_1, baf>(), {{11, 0x01}}},
  });
}

TEST(DistHdrLayout, BafFieldsStandSixteenBytesIntoTheLineHeader) {
  expect_rows({
      {"l3_offset", ones<line::l3_offset, line>(), {{17, 0x7F}}},
      {"l2_uidb", ones<line::l2_uidb, line>(), {{18, 0x01}}},
      {"l3 maintenance", ones<line::l3_uidb_maintenance_mode, line>(), {{20, 0x80}}},
      {"uidb_index", ones<line::uidb_index, line>(), {{24, 0xFF}, {25, 0xFF}}},
      {"is_mcast", ones<line::is_mcast, line>(), {{26, 0x10}}},
  });
}

TEST(DistHdrLayout, FabricAndCommonForms) {
  expect_rows({
      {"fabric reserved 1.0/13", ones<fab::reserved, fab>(), {{1, 0xFF}, {2, 0xF8}}},
      {"fabric mcast 4.1", ones<fab::mcast, fab>(), {{4, 0x40}}},
      {"fabric pktlen 4.2/14", ones<fab::pktlen, fab>(), {{4, 0x3F}, {5, 0xFF}}},
      {"fabric egpb_queue 7.5/7", ones<fab::egpb_queue, fab>(), {{7, 0x07}, {8, 0xF0}}},
      {"fabric head_ptr_b 14", ones<fab::head_ptr_b, fab>(), {{14, 0xFF}}},
      {"common dst_format 0.0/3", ones<common::dst_format, dist_hdr_common_st>(), {{0, 0xE0}}},
      {"common rsvd0 0.3/18", ones<common::rsvd0, dist_hdr_common_st>(), {{0, 0x1F}, {1, 0xFF}, {2, 0xF8}}},
      {"common ifl32 2.6/10", ones<common::ifl32, dist_hdr_common_st>(), {{2, 0x03}, {3, 0xFF}}},
      {"common rsvd2 8.4/12", ones<common::rsvd2, dist_hdr_common_st>(), {{8, 0x0F}, {9, 0xFF}}},
      {"common rsvd4 12-15",
       ones<common::rsvd4, dist_hdr_common_st>(),
       {{12, 0xFF}, {13, 0xFF}, {14, 0xFF}, {15, 0xFF}}},
      {"zp ingress 0.0", ones<zp::ingress, dist_hdr_common_st>(), {{0, 0x80}}},
      {"zp dst_format 0.1/2", ones<zp::dst_format, dist_hdr_common_st>(), {{0, 0x60}}},
      {"zp gpb_pkt_handle 6.0/13", ones<zp::gpb_pkt_handle, dist_hdr_common_st>(), {{6, 0xFF}, {7, 0xF8}}},
  });
}

}  // namespace
