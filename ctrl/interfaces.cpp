#include "interfaces.h"

#include <type_traits>

#include "ctrl/page_descriptors.h"
#include "ctrl/protected_records.h"
#include "dplane/infra/lookup_tables.h"
#include "ethernet.h"
#include "fwc_port.h"

namespace ctrl {

namespace {

constexpr std::uint32_t MAX_INPUT_QUEUE = 0x7F;
constexpr std::uint32_t MAX_SAT_ENCAP = 3;
constexpr std::uint16_t MAX_VID = 0xFFF;
constexpr std::uint32_t MAX_UIDB_INDEX = 0xFFFF;
// Statistics blocks lie past the per-thread replicas of relative counters.
constexpr std::uint32_t STATS_BLOCKS_BASE = 0x20000;
constexpr std::uint32_t STATS_BLOCK_COUNT = (0x100000 - STATS_BLOCKS_BASE) / STATS_BLOCK_ENTRIES;

const lookup_hash_table_st& handle_table() { return HASH_TABLE_IFH_2_UIDB_KEY_TABLE; }

uidb_ifh_2_uidb_key_st handle_key(std::uint32_t if_handle) {
  uidb_ifh_2_uidb_key_st key{};
  key.ifhandle = if_handle;
  return key;
}

template <class R>
std::span<const std::uint8_t> bytes_of(const R& rec) {
  return {reinterpret_cast<const std::uint8_t*>(&rec), sizeof rec};
}

ingress_port_fields_part1_st port_record(const line_port& p) {
  using r = ingress_port_fields_part1_st;
  r rec{};
  r::l3_lb_hash::set(rec, p.bits.l3_lb_hash);
  r::ext::set(rec, p.bits.ext);
  r::sat_encap::set(rec, p.bits.sat_encap);
  r::sat::set(rec, p.bits.sat);
  r::rt_l2::set(rec, p.bits.rt_l2);
  r::rt_l3::set(rec, p.bits.rt_l3);
  r::gbl_feature::set(rec, p.bits.gbl_feature);
  r::force_l2_ctrl_vector::set(rec, p.bits.force_l2_ctrl_vector);
  rec.port_if_handle = p.if_handle;
  return rec;
}

model::parser_if_key key_of(std::uint32_t port, const std::vector<vlan_tag>& tags) {
  model::parser_if_key key{port, static_cast<std::uint32_t>(tags.size()), {}};
  for (std::size_t i = 0; i < tags.size(); ++i) key.vids[i] = tags[i].vid;
  return key;
}

interface_added refused(error e) { return {e, 0, {}}; }

bool uidb_tables_installed(model::npu& n) {
  return paged_record_address(n, TPD_IDX_UIDB_L3_ING, 0) && paged_record_address(n, TPD_IDX_UIDB_L3_EGR, 0);
}

}  // namespace

// UIDB index 0 is never handed out, so that a receive header without an
// interface names none.
interfaces::interfaces(model::npu& n, hash_tables& hashes)
    : n_(n), hashes_(hashes), indexes_(1, MAX_UIDB_INDEX), stats_blocks_(0, STATS_BLOCK_COUNT) {}

error interfaces::add_port(const line_port& p) {
  if (p.port > MAX_LINE_PORT || p.input_queue > MAX_INPUT_QUEUE || p.bits.sat_encap > MAX_SAT_ENCAP) {
    return error::out_of_range;
  }
  if (port_handles_.count(p.port)) return error::exists;
  const std::uint32_t record = TABLE_BASE_PORT_CONFIG_ING + p.port * TABLE_STRIDE_PORT_CONFIG_ING;
  write_record(n_, record, bytes_of(port_record(p)));
  n_.parser().set_port(p.port, {p.mac, p.input_queue, record});
  port_handles_[p.port] = p.if_handle;
  return error::none;
}

interface_added interfaces::add_physical_port(std::uint32_t port, const l3_interface& cfg) {
  return add_interface(port, {}, {0, 0}, cfg);
}

interface_added interfaces::add_vlan_subinterface(std::uint32_t port, const std::vector<vlan_tag>& tags,
                                                  const l3_interface& cfg) {
  return add_interface(port, tags, {1, 2}, cfg);
}

interface_added interfaces::add_l2_port(std::uint32_t port, const std::vector<vlan_tag>& tags,
                                        const l2_interface& cfg) {
  return add_interface(port, tags, {0, 2}, cfg);
}

error interfaces::update(std::uint16_t uidb_index, const l3_interface& cfg) {
  return update_interface(uidb_index, cfg);
}

error interfaces::update(std::uint16_t uidb_index, const l2_interface& cfg) {
  return update_interface(uidb_index, cfg);
}

error interfaces::remove(std::uint16_t uidb_index) {
  const auto it = entries_.find(uidb_index);
  if (it == entries_.end()) return error::not_found;
  const entry& e = it->second;
  n_.parser().remove_interface(e.key);
  hashes_.remove(handle_table(), bytes_of(handle_key(e.if_handle)));
  clear_records(n_, uidb_index);
  give_stats(e.place.stats);
  indexes_.give(uidb_index);
  keys_.erase(e.key);
  handles_.erase(e.if_handle);
  entries_.erase(it);
  return error::none;
}

error interfaces::check_place(std::uint32_t port, const std::vector<vlan_tag>& tags, tag_range range) const {
  if (!port_handles_.count(port)) return error::not_found;
  if (tags.size() < range.min || tags.size() > range.max) return error::bad_size;
  for (const vlan_tag& t : tags) {
    if (t.vid > MAX_VID) return error::out_of_range;
    if (!ether_type_is_tag(t.tpid)) return error::unsupported;
  }
  if (keys_.count(key_of(port, tags))) return error::exists;
  return error::none;
}

template <class Cfg>
interface_added interfaces::add_interface(std::uint32_t port, const std::vector<vlan_tag>& tags, tag_range range,
                                          const Cfg& cfg) {
  constexpr bool l2 = std::is_same_v<Cfg, l2_interface>;
  if (!uidb_tables_installed(n_)) return refused(error::unsupported);
  if (error e = check_place(port, tags, range); e != error::none) return refused(e);
  if (handles_.count(cfg.if_handle)) return refused(error::exists);
  const std::optional<std::uint32_t> taken = indexes_.lowest_free_from(0);
  if (!taken) return refused(error::table_full);
  const auto index = static_cast<std::uint16_t>(*taken);
  const std::optional<interface_stats> stats = take_stats();
  if (!stats) return refused(error::table_full);
  if (error e = insert_handle(index, cfg.if_handle); e != error::none) {
    give_stats(*stats);
    return refused(e);
  }
  indexes_.take_at(index);
  const entry& e = entries_[index] = {
      {port, port_handles_.at(port), tags, *stats}, key_of(port, tags), cfg.if_handle, l2, marks_of(cfg, false)};
  keys_.insert(e.key);
  handles_.insert(cfg.if_handle);
  write_records(n_, index, e.place, cfg);
  write_marks(n_, index, e.marks);
  n_.parser().set_interface(e.key, {index, l2, marks_address(index)});
  return {error::none, index, *stats};
}

template <class Cfg>
error interfaces::update_interface(std::uint16_t uidb_index, const Cfg& cfg) {
  const auto it = entries_.find(uidb_index);
  if (it == entries_.end()) return error::not_found;
  entry& e = it->second;
  if (e.l2 != std::is_same_v<Cfg, l2_interface>) return error::unsupported;
  if (cfg.if_handle != e.if_handle) {
    if (handles_.count(cfg.if_handle)) return error::exists;
    if (error err = insert_handle(uidb_index, cfg.if_handle); err != error::none) return err;
    hashes_.remove(handle_table(), bytes_of(handle_key(e.if_handle)));
    handles_.erase(e.if_handle);
    handles_.insert(cfg.if_handle);
    e.if_handle = cfg.if_handle;
  }
  write_marks(n_, uidb_index, marks_of(cfg, true));
  write_records(n_, uidb_index, e.place, cfg);
  e.marks = marks_of(cfg, false);
  write_marks(n_, uidb_index, e.marks);
  return error::none;
}

error interfaces::set_maintenance(std::uint16_t uidb_index, bool on) {
  const auto it = entries_.find(uidb_index);
  if (it == entries_.end()) return error::not_found;
  mark_bits_st marks = it->second.marks;
  if (it->second.l2) {
    mark_bits_st::l2::uidb_maintenance_mode::set(marks, on);
  } else {
    mark_bits_st::l3::uidb_maintenance_mode::set(marks, on);
  }
  write_marks(n_, uidb_index, marks);
  return error::none;
}

error interfaces::insert_handle(std::uint16_t uidb_index, std::uint32_t if_handle) {
  uidb_ifh_2_uidb_st result{};
  uidb_ifh_2_uidb_st::valid::set(result, 1);
  uidb_ifh_2_uidb_st::match::set(result, 1);
  uidb_ifh_2_uidb_st::uidb_index::set(result, uidb_index);
  return hashes_.insert(handle_table(), bytes_of(handle_key(if_handle)), bytes_of(result));
}

std::optional<interface_stats> interfaces::take_stats() {
  const std::optional<std::uint32_t> in = stats_blocks_.take();
  if (!in) return std::nullopt;
  const std::optional<std::uint32_t> out = stats_blocks_.take();
  if (!out) {
    stats_blocks_.give(*in);
    return std::nullopt;
  }
  return interface_stats{STATS_BLOCKS_BASE + *in * STATS_BLOCK_ENTRIES, STATS_BLOCKS_BASE + *out * STATS_BLOCK_ENTRIES};
}

void interfaces::give_stats(const interface_stats& s) {
  stats_blocks_.give((s.ingress - STATS_BLOCKS_BASE) / STATS_BLOCK_ENTRIES);
  stats_blocks_.give((s.egress - STATS_BLOCKS_BASE) / STATS_BLOCK_ENTRIES);
}

}  // namespace ctrl
