// The header of a packet to a line port: 6 bytes for the traffic manager and
// 8 for the egress port, with the frame right behind; and the time shim that
// may stand ahead of the frame.
#pragma once

#include "be_types.h"

struct tm_zp_hdr_type {
  std::uint8_t bytes[6];
  using queue_id = be_bits<0, 0, 16>;
  using rsvd1 = be_bits<2, 0, 2>;
  using stored_length = be_bits<2, 2, 14>;
  using rsvd2 = be_bits<4, 0, 2>;
  using scheduling_length = be_bits<4, 2, 14>;
};
static_assert(sizeof(tm_zp_hdr_type) == 6);

struct l2_egress_bufhdr_type {
  std::uint8_t bytes[8];
  using shim_exists = be_bits<0, 0, 1>;
  using diag_pkt = be_bits<0, 1, 1>;
  using rsvd1 = be_bits<0, 2, 3>;
  using tsr_protocol = be_bits<0, 5, 3>;
  using tsr_offset = be_bits<1, 0, 8>;
  using followup = be_bits<2, 0, 1>;
  using rsvd2 = be_bits<2, 1, 1>;
  using rewrite = be_bits<2, 2, 1>;
  using update_mode = be_bits<2, 3, 1>;
  using chksumen = be_bits<2, 4, 1>;
  using ts_index = be_bits<2, 5, 11>;
  using timestamp = be_bits<4, 0, 32>;
};
static_assert(sizeof(l2_egress_bufhdr_type) == 8);

inline constexpr std::size_t LINE_HDR_BYTES = 14;

// The whole line header; the egress part's fields at their place in it.
struct line_hdr_st {
  std::uint8_t bytes[LINE_HDR_BYTES];
  using queue_id = tm_zp_hdr_type::queue_id;
  using stored_length = tm_zp_hdr_type::stored_length;
  using scheduling_length = tm_zp_hdr_type::scheduling_length;

  template <class F>
  using in_egress = be_bits_at<F, sizeof(tm_zp_hdr_type)>;
  using shim_exists = in_egress<l2_egress_bufhdr_type::shim_exists>;
  using diag_pkt = in_egress<l2_egress_bufhdr_type::diag_pkt>;
  using tsr_protocol = in_egress<l2_egress_bufhdr_type::tsr_protocol>;
  using tsr_offset = in_egress<l2_egress_bufhdr_type::tsr_offset>;
  using followup = in_egress<l2_egress_bufhdr_type::followup>;
  using rewrite = in_egress<l2_egress_bufhdr_type::rewrite>;
  using update_mode = in_egress<l2_egress_bufhdr_type::update_mode>;
  using chksumen = in_egress<l2_egress_bufhdr_type::chksumen>;
  using ts_index = in_egress<l2_egress_bufhdr_type::ts_index>;
  using timestamp = in_egress<l2_egress_bufhdr_type::timestamp>;
};
static_assert(sizeof(line_hdr_st) == 14);

struct time_shim_type {
  std::uint8_t bytes[12];
  using correction_field_hi = be_bits<0, 0, 32>;
  using correction_field_lo = be_bits<4, 0, 16>;
  using udp_chksum = be_bits<6, 0, 16>;
  using signature = be_bits<8, 0, 32>;
};
static_assert(sizeof(time_shim_type) == 12);
