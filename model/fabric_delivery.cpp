#include "fabric_delivery.h"

#include "chassis.h"
#include "dist_hdr_builder.h"
#include "fab_hdr.h"

namespace model {

namespace {

constexpr std::uint32_t VQI_MASK = 0x7FF;

void arrive(chassis& fabric, std::uint32_t npu_id, const std::vector<std::uint8_t>& frame, bool replicated) {
  arriving_packet pkt;
  pkt.dist_hdr = dist_hdr_builder::fabric()
                     .set<dist_hdr_fabric_st::pktlen>(static_cast<std::uint32_t>(frame.size()))
                     .set<dist_hdr_fabric_st::mcast>(replicated ? 1 : 0)
                     .bytes();
  pkt.bytes = frame;
  fabric.at(npu_id).enqueue(std::move(pkt));
}

}  // namespace

std::uint32_t fabric_header_fgid(const std::uint8_t* fab) {
  using ext = ext_fgid_fields::ext_fgid;
  const auto& hdr = *reinterpret_cast<const dc3_nph_st*>(fab);
  return (ext::extended_fgid_b23_14::get(hdr) << 14) | (ext::extended_fgid_b13_12::get(hdr) << 12) |
         dc3_nph_st::dc3_fgid_or_sfp::get(hdr);
}

void deliver_to_fabric(npu& from, sent_frame& frame, std::string& note) {
  if (frame.bytes.size() < sizeof(dc3_nph_st)) {
    note += "fabric frame shorter than its header; ";
    return;
  }
  chassis& fabric = from.owner_chassis();
  const auto& hdr = *reinterpret_cast<const dc3_nph_st*>(frame.bytes.data());
  if (!dc3_nph_st::dc3_sfp_valid::get(hdr)) {
    frame.port = fabric_header_fgid(frame.bytes.data());
    const std::vector<std::uint32_t> group = fabric.npus_of_group(frame.port);
    if (group.empty()) note += "fabric group " + std::to_string(frame.port) + " maps to no NPU; ";
    for (std::uint32_t npu_id : group) arrive(fabric, npu_id, frame.bytes, true);
    return;
  }
  frame.port = dc3_nph_st::dc3_fgid_or_sfp::get(hdr) & VQI_MASK;
  const auto dest = fabric.npu_of_vqi(frame.port);
  if (!dest) {
    note += "VQI " + std::to_string(frame.port) + " maps to no NPU; ";
    return;
  }
  arrive(fabric, *dest, frame.bytes, false);
}

}  // namespace model
