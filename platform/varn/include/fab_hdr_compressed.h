// The compressed fabric header of host-bound and host-sourced packets: the
// 6-byte fabric_buffhdr_st, the NPH common bytes, and the 16 extension bytes
// in one run. Positions count from the start of the header.
#pragma once

#include "fab_hdr.h"

struct fabric_buffhdr_fields {
  using c3_header_ver = be_bits<0, 0, 3>;
  using multicast_flag = be_bits<0, 3, 1>;
  using fgid_or_sfp = be_bits<0, 4, 12>;
  using multicast_group = be_bits<2, 0, 16>;
  using di_extra = be_bits<4, 0, 2>;  // top bit: MGID bit 17, low bit: MGID bit 16
  using de = be_bits<4, 2, 1>;
  using cos = be_bits<4, 3, 5>;
  using rbh = be_bits<5, 0, 8>;
};

struct fabric_buffhdr_st : fabric_buffhdr_fields {
  std::uint8_t bytes[6];
};
static_assert(sizeof(fabric_buffhdr_st) == 6);

inline constexpr std::size_t COMPRESSED_NPH_COMMON_OFFSET = 6;
inline constexpr std::size_t COMPRESSED_EXT_OFFSET = 8;
inline constexpr std::size_t COMPRESSED_HDR_BYTES = 24;
// A compressed header grows by this much in its dc3 form.
inline constexpr std::size_t COMPRESSED_TO_DC3_GROWTH = DC3_NPH_BYTES - COMPRESSED_HDR_BYTES;

struct varn_fab_nph_generic_fields : fabric_buffhdr_fields {
  template <class F>
  using in_common = be_bits_at<F, COMPRESSED_NPH_COMMON_OFFSET>;
  using ptrace = in_common<varn_nph_common_st::nph_info::ptrace>;
  using nph_type = in_common<varn_nph_common_st::nph_info::nph_type>;
  using critical_inject = in_common<varn_nph_common_st::nph_flags::critical_inject>;
  using mgid_b18 = in_common<varn_nph_common_st::nph_flags::mgid_b18>;
  using nph_length = in_common<varn_nph_common_st::nph_flags::nph_length>;
  using nph_com = be_byte_run<COMPRESSED_NPH_COMMON_OFFSET, 2>;
  // Extension bytes 0..9, 10..14 and 15.
  using part1 = be_byte_run<8, 10>;
  using part2 = be_byte_run<18, 5>;
  using part3 = be_byte_run<23, 1>;
};

struct varn_fab_nph_generic_st : varn_fab_nph_generic_fields {
  std::uint8_t bytes[COMPRESSED_HDR_BYTES];
};
static_assert(sizeof(varn_fab_nph_generic_st) == 24);

// Unicast IP in compressed form: the fields of the dc3 form, at the place
// their extension byte takes in the run.
struct varn_fab_nph_ip_uni_fields : varn_fab_nph_generic_fields {
  using qos_info = le_bytes<8, 2>;
  using vrf = le_bytes<10, 2>;
  using lagm = lagm_byte<12>;
  using input_if_handle = be_bits<14, 0, 32>;
  using raw_hash = be_bits<18, 0, 32>;
  using nrldim = member_byte<22>;
  using rldim = member_byte<23>;
};

struct varn_fab_nph_ip_uni_st : varn_fab_nph_ip_uni_fields {
  std::uint8_t bytes[24];
};
static_assert(sizeof(varn_fab_nph_ip_uni_st) == 24);

struct varn_fab_nph_ipv4_abf_uni_st : varn_fab_nph_ip_uni_fields {
  std::uint8_t bytes[32];
  using ipv4_nh_addr = be_bits<24, 0, 32>;
  using abf_vrf = le_bytes<28, 2>;
  using svi_uidb_index = be_bits<30, 0, 8>;
};
static_assert(sizeof(varn_fab_nph_ipv4_abf_uni_st) == 32);

struct varn_fab_nph_ipv6_abf_uni_st : varn_fab_nph_ip_uni_fields {
  std::uint8_t bytes[44];
  using ipv6_nh_addr = be_byte_run<24, 16>;
  using abf_vrf = le_bytes<40, 2>;
  using svi_uidb_index = be_bits<42, 0, 8>;
};
static_assert(sizeof(varn_fab_nph_ipv6_abf_uni_st) == 44);
