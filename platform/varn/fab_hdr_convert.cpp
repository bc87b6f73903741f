#include "fab_hdr_convert.h"

#include <cstring>

#include "dplane/infra/ps.h"
#include "fab_hdr_access.h"
#include "punt_inject_hdr.h"

namespace {

using dc3 = dc3_nph_st;
using cmp = varn_fab_nph_generic_st;
using fpga = varn_punt_inject_fpga_encap_st;
using fpga_hdr = varn_dc3_nph_punt_inject_fpga_st;

constexpr std::uint8_t FIXED_BYTES_0_3[] = {0xC0, 0x00, 0x40, 0x00};
constexpr std::uint8_t FIXED_BYTES_20_23[] = {0x00, 0x00, 0x10, 0x00};
constexpr std::size_t FIXED_WORD_20 = 20;
// Where the extension runs stand in the dc3 form.
constexpr std::size_t DC3_PART1 = 10;
constexpr std::size_t DC3_PART2 = 24;
constexpr std::size_t DC3_PART3 = 30;
// dc3_plen: the length with the 32-byte header, less 28.
constexpr std::uint32_t PLEN_FROM_COMPRESSED_LENGTH = 20;
constexpr std::uint32_t MGID_LOW_MASK = 0x7FFF;
constexpr std::uint8_t FPGA_DMAC[] = {0x01, 0x56, 0x47, 0x50, 0x00};
constexpr std::uint8_t FPGA_SMAC[] = {0x00, 0x4E, 0x65, 0x7A, 0x00};
constexpr std::uint32_t ETHERTYPE_VLAN = 0x8100;

void to_dc3(const cmp& c, std::uint32_t packet_length, dc3& d) {
  std::memset(d.bytes, 0, sizeof d.bytes);
  std::memcpy(d.bytes, FIXED_BYTES_0_3, sizeof FIXED_BYTES_0_3);
  std::memcpy(d.bytes + FIXED_WORD_20, FIXED_BYTES_20_23, sizeof FIXED_BYTES_20_23);
  std::memcpy(d.bytes + DC3_NPH_COMMON_OFFSET, cmp::nph_com::data(c), cmp::nph_com::size);
  std::memcpy(d.bytes + DC3_PART1, cmp::part1::data(c), cmp::part1::size);
  std::memcpy(d.bytes + DC3_PART2, cmp::part2::data(c), cmp::part2::size);
  std::memcpy(d.bytes + DC3_PART3, cmp::part3::data(c), cmp::part3::size);
  dc3::dc3_version::set(d, cmp::c3_header_ver::get(c));
  dc3::dc3_plen::set(d, packet_length - PLEN_FROM_COMPRESSED_LENGTH);
  dc3::dc3_de::set(d, cmp::de::get(c));
  dc3::dc3_cos::set(d, cmp::cos::get(c));
  const std::uint32_t group = cmp::multicast_group::get(c);
  const std::uint32_t di_extra = cmp::di_extra::get(c);
  dc3::dc3_mgid_14_0::set(d, group & MGID_LOW_MASK);
  dc3::dc3_mgid_15::set(d, group >> 15);
  dc3::dc3_mgid_16::set(d, di_extra & 1);
  dc3::dc3_mgid_17::set(d, di_extra >> 1);
  dc3::dc3_mgid_18::set(d, cmp::mgid_b18::get(c));
  dc3::dc3_sfp_valid::set(d, !cmp::multicast_flag::get(c));
  dc3::dc3_fgid_or_sfp::set(d, cmp::fgid_or_sfp::get(c));
  dc3::dc3_rbh::set(d, cmp::rbh::get(c));
}

void to_compressed(const dc3& d, cmp& c) {
  std::memset(c.bytes, 0, sizeof c.bytes);
  cmp::c3_header_ver::set(c, dc3::dc3_version::get(d));
  cmp::multicast_flag::set(c, !dc3::dc3_sfp_valid::get(d));
  cmp::fgid_or_sfp::set(c, dc3::dc3_fgid_or_sfp::get(d));
  cmp::multicast_group::set(c, (dc3::dc3_mgid_15::get(d) << 15) | dc3::dc3_mgid_14_0::get(d));
  cmp::di_extra::set(c, (dc3::dc3_mgid_17::get(d) << 1) | dc3::dc3_mgid_16::get(d));
  cmp::de::set(c, dc3::dc3_de::get(d));
  cmp::cos::set(c, dc3::dc3_cos::get(d));
  cmp::rbh::set(c, dc3::dc3_rbh::get(d));
  std::memcpy(cmp::nph_com::data(c), d.bytes + DC3_NPH_COMMON_OFFSET, cmp::nph_com::size);
  std::memcpy(cmp::part1::data(c), d.bytes + DC3_PART1, cmp::part1::size);
  std::memcpy(cmp::part2::data(c), d.bytes + DC3_PART2, cmp::part2::size);
  std::memcpy(cmp::part3::data(c), d.bytes + DC3_PART3, cmp::part3::size);
}

}  // namespace

std::uint32_t plat_fab_convert_compressed_location_to_dc3(env_t, std::uint8_t* location, std::uint32_t packet_length) {
  cmp c;
  std::memcpy(c.bytes, location, sizeof c.bytes);
  dc3 d;
  to_dc3(c, packet_length, d);
  std::memcpy(location - COMPRESSED_TO_DC3_GROWTH, d.bytes, sizeof d.bytes);
  return COMPRESSED_TO_DC3_GROWTH;
}

void plat_fab_convert_compressed_to_dc3(env_t env) {
  std::uint8_t*& pkt_start = *ps_put_mod_pkt_start(env);
  std::uint16_t& len = *ps_put_mod_curr_pkt_len(env);
  plat_fab_convert_compressed_location_to_dc3(env, pkt_start, len);
  pkt_start -= COMPRESSED_TO_DC3_GROWTH;
  len = static_cast<std::uint16_t>(len + COMPRESSED_TO_DC3_GROWTH);
}

void plat_fab_convert_dc3_to_compressed(env_t env) {
  std::uint8_t*& pkt_start = *ps_put_mod_pkt_start(env);
  dc3 d;
  std::memcpy(d.bytes, pkt_start, sizeof d.bytes);
  cmp c;
  to_compressed(d, c);
  pkt_start += COMPRESSED_TO_DC3_GROWTH;
  std::memcpy(pkt_start, c.bytes, sizeof c.bytes);
  std::uint16_t& len = *ps_put_mod_curr_pkt_len(env);
  len = static_cast<std::uint16_t>(len - COMPRESSED_TO_DC3_GROWTH);
}

std::uint32_t plat_fab_convert_compressed_location_to_dc3_fpga(env_t env, std::uint8_t* location,
                                                               std::uint32_t packet_length, std::uint32_t dmac_lsb,
                                                               std::uint32_t npu_id, std::uint32_t vlan_id) {
  std::uint8_t* hdr = location - plat_fab_convert_compressed_location_to_dc3(env, location, packet_length);
  std::uint8_t* start = hdr - sizeof(fpga);
  std::memmove(start, hdr, DC3_NPH_BYTES);
  plat_build_punt_inject_fpga_encap(start + fpga_hdr::fpga_offset, dmac_lsb, npu_id, vlan_id);
  return static_cast<std::uint32_t>(location - start);
}

void plat_build_punt_inject_fpga_encap(void* encap, std::uint32_t dmac_lsb, std::uint32_t npu_id,
                                       std::uint32_t vlan_id) {
  fpga& e = *static_cast<fpga*>(encap);
  std::memset(e.bytes, 0, sizeof e.bytes);
  std::uint8_t* dst = fpga::dst_mac::data(e);
  std::memcpy(dst, FPGA_DMAC, sizeof FPGA_DMAC);
  dst[sizeof FPGA_DMAC] = static_cast<std::uint8_t>(dmac_lsb);
  std::uint8_t* src = fpga::src_mac::data(e);
  std::memcpy(src, FPGA_SMAC, sizeof FPGA_SMAC);
  src[sizeof FPGA_SMAC] = static_cast<std::uint8_t>(npu_id);
  fpga::tpid::set(e, ETHERTYPE_VLAN);
  fpga::vlan_id::set(e, vlan_id);
}
