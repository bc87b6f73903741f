// The records of one interface as the control side fills and writes them:
// the typed settings of an interface, the feature settings as the records
// hold them, and the fields that the control side owns written over those.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "fwc_uidb.h"
#include "model/npu.h"

namespace ctrl {

// What an L3 interface routes and how.
struct l3_interface {
  std::uint32_t if_handle = 0;
  bool ipv4 = false;
  bool ipv6 = false;
  bool mpls = false;
  std::uint16_t vrf = 0;  // table_id; 0 is the global table
  bool line_up = true;
  std::uint16_t mtu = 1500;
  // The bundle the interface is (ctrl/bundles.h): both records get
  // bundle_int, and the egress record's output is the bundle, not the port.
  std::optional<std::uint16_t> bundle_id;
  // Feature settings, as the records hold them. The fields above, the
  // coherency bits, the handle, the port and the tags are written over them;
  // an extension that is present sets its request bit.
  uidb_l3_ing_fields_st ingress{};
  uidb_l3_egr_fields_st egress{};
  uidb_ext_l3_egr_st egress_ext{};
  std::optional<uidb_ext_l3_ing_st> ingress_ext;
  std::optional<uidb_ext_l3_fast_ing_st> ingress_fast_ext;
  std::optional<uidb_ext_l3_fast_egr_st> egress_fast_ext;
  std::optional<uidb_bng_ext_l3_ing_st> subscriber_ext;
};

enum class l2_service { cross_connect, bridge };

// An L2 attachment: a cross-connect or a bridge port.
struct l2_interface {
  std::uint32_t if_handle = 0;
  l2_service service = l2_service::bridge;
  std::uint16_t bd_id = 0;  // of a bridge port
  bool line_up = true;
  uidb_l2_ing_st ingress{};
  uidb_l2_egr_st egress{};
  std::optional<uidb_ext_l2_ing_st> ingress_ext;
  std::optional<uidb_ext_l2_egr_st> egress_ext;
};

struct vlan_tag {
  std::uint16_t tpid = 0x8100;
  std::uint16_t vid = 0;
};

// The statistics blocks of an interface (stats_p of each direction): the
// first entry of each, as the program counts it.
struct interface_stats {
  std::uint32_t ingress = 0;
  std::uint32_t egress = 0;
};

// Where an interface sits: its line port, the port's handle, the tags that
// select the interface, and the statistics blocks it was given.
struct interface_place {
  std::uint32_t port = 0;
  std::uint32_t port_if_handle = 0;
  std::vector<vlan_tag> tags;
  interface_stats stats;
};

// The marks that the parser copies into the receive header.
mark_bits_st marks_of(const l3_interface& cfg, bool maintenance);
mark_bits_st marks_of(const l2_interface& cfg, bool maintenance);

// Every record of the interface at uidb_index, each in one write; an absent
// extension is written as zeros. The page descriptors must be installed.
void write_records(model::npu& n, std::uint32_t uidb_index, const interface_place& at, const l3_interface& cfg);
void write_records(model::npu& n, std::uint32_t uidb_index, const interface_place& at, const l2_interface& cfg);
void write_marks(model::npu& n, std::uint32_t uidb_index, const mark_bits_st& marks);
// Where the marks of uidb_index stand; the parser reads them from there.
std::uint32_t marks_address(std::uint32_t uidb_index);
// Zeros every record and the marks of uidb_index.
void clear_records(model::npu& n, std::uint32_t uidb_index);

}  // namespace ctrl
