// Line ports and the interfaces on them, as the control side sets them up:
// a physical port's own routed interface, VLAN sub-interfaces, and L2 ports.
// Each interface gets a UIDB index, a statistics block per direction, its
// records, its marks, its entry in the interface-handle table and its place
// in the parser's (port, tags) map; its removal gives the index and the
// blocks back.
// Every call checks its input first and changes nothing when it fails. One
// control thread calls these.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>

#include "ctrl/error.h"
#include "ctrl/hash_tables.h"
#include "ctrl/index_pool.h"
#include "ctrl/uidb_records.h"
#include "model/npu.h"

namespace ctrl {

// The bits of a port that the receive header carries.
struct port_bits {
  bool l3_lb_hash = false;  // hash the L3 header of L2 frames
  bool ext = false;         // paths read the port record for each frame
  std::uint32_t sat_encap = 0;
  bool sat = false;  // a satellite port
  bool rt_l2 = false;
  bool rt_l3 = false;
  bool gbl_feature = false;
  bool force_l2_ctrl_vector = false;
};

inline constexpr std::uint32_t MAX_LINE_PORT = 0xFFF;

struct line_port {
  std::uint32_t port = 0;             // logical port, 0 to 4095
  std::array<std::uint8_t, 6> mac{};  // this router's MAC on the port
  std::uint32_t input_queue = 0;      // 0 to 127; 80 to 83 make an inject port
  std::uint32_t if_handle = 0;
  port_bits bits;
};

struct interface_added {
  error err = error::none;
  std::uint16_t uidb_index = 0;
  interface_stats stats;
};

// An interface's statistics block: the entries of one direction, with room
// behind the static entries for its drops.
inline constexpr std::uint32_t STATS_BLOCK_ENTRIES = 16;

class interfaces {
 public:
  interfaces(model::npu& n, hash_tables& hashes);

  // The port itself: the parser's settings and the port record.
  error add_port(const line_port& p);
  // The port's own routed interface: untagged frames.
  interface_added add_physical_port(std::uint32_t port, const l3_interface& cfg);
  // A routed interface for frames with one or two tags.
  interface_added add_vlan_subinterface(std::uint32_t port, const std::vector<vlan_tag>& tags, const l3_interface& cfg);
  // An L2 attachment on the whole port (no tags) or on one or two tags; it
  // takes frames with further tags too.
  interface_added add_l2_port(std::uint32_t port, const std::vector<vlan_tag>& tags, const l2_interface& cfg);

  // New settings for an interface: its marks stand in maintenance mode while
  // its records change. The kind (L3 or L2) stays: another is unsupported.
  error update(std::uint16_t uidb_index, const l3_interface& cfg);
  error update(std::uint16_t uidb_index, const l2_interface& cfg);
  error remove(std::uint16_t uidb_index);
  // Holds an interface in maintenance mode (its frames drop at the parser's
  // check) or lets it go, as a change of its records in progress does. The
  // next update lets it go.
  error set_maintenance(std::uint16_t uidb_index, bool on);

 private:
  struct entry {
    interface_place place;
    model::parser_if_key key;
    std::uint32_t if_handle;
    bool l2;
    mark_bits_st marks;  // as written, out of maintenance
  };
  struct tag_range {
    std::size_t min;
    std::size_t max;
  };
  error check_place(std::uint32_t port, const std::vector<vlan_tag>& tags, tag_range range) const;
  template <class Cfg>
  interface_added add_interface(std::uint32_t port, const std::vector<vlan_tag>& tags, tag_range range, const Cfg& cfg);
  template <class Cfg>
  error update_interface(std::uint16_t uidb_index, const Cfg& cfg);
  error insert_handle(std::uint16_t uidb_index, std::uint32_t if_handle);
  std::optional<interface_stats> take_stats();
  void give_stats(const interface_stats& s);

  model::npu& n_;
  hash_tables& hashes_;
  index_pool indexes_;
  index_pool stats_blocks_;
  std::map<std::uint32_t, std::uint32_t> port_handles_;  // the ports set up, with their handles
  std::map<std::uint16_t, entry> entries_;
  std::set<model::parser_if_key> keys_;
  std::set<std::uint32_t> handles_;
};

}  // namespace ctrl
