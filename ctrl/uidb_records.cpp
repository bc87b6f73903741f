#include "uidb_records.h"

#include <span>

#include "ctrl/page_descriptors.h"
#include "ctrl/protected_records.h"
#include "dplane/infra/lookup_tables.h"

namespace ctrl {

namespace {

template <class R>
std::span<const std::uint8_t> bytes_of(const R& rec) {
  return {reinterpret_cast<const std::uint8_t*>(&rec), sizeof rec};
}

std::uint32_t paged(model::npu& n, std::uint32_t tpd_idx, std::uint32_t index) {
  return paged_record_address(n, tpd_idx, index).value();
}

constexpr std::uint32_t direct(std::uint32_t base, std::uint32_t stride, std::uint32_t index) {
  return base + index * stride;
}

template <class R>
void write_at(model::npu& n, std::uint32_t addr, const R& rec) {
  write_record(n, addr, bytes_of(rec));
}

// An extension that is present, completed by `own`; zeros when absent.
template <class R, class Own>
void write_extension(model::npu& n, std::uint32_t addr, const std::optional<R>& ext, Own own) {
  R rec{};
  if (ext) {
    rec = *ext;
    own(rec);
  }
  write_at(n, addr, rec);
}

void set_egress_tags(uidb_l3_egr_fields_st& rec, const std::vector<vlan_tag>& tags) {
  using r = uidb_l3_egr_fields_st;
  if (!tags.empty()) {
    r::vlan_tag1_en::set(rec, 1);
    r::tag1::tpid::set(rec, tags[0].tpid);
    r::tag1::tid::vlan::set(rec, tags[0].vid);
  }
  if (tags.size() > 1) {
    r::vlan_tag2_en::set(rec, 1);
    r::tag2::tpid::set(rec, tags[1].tpid);
    r::tag2::tid::vlan::set(rec, tags[1].vid);
  }
}

uidb_l3_ing_fields_st l3_ingress(const l3_interface& c, const interface_place& at) {
  using r = uidb_l3_ing_fields_st;
  r rec = c.ingress;
  r::coherency::set(rec, 1);
  r::l2_uidb::set(rec, 0);
  r::line_status_up::set(rec, c.line_up);
  r::global_int::set(rec, c.vrf == 0);
  r::table_id::set(rec, c.vrf);
  r::uidb_ifhandle::set(rec, c.if_handle);
  r::stats_p::set(rec, at.stats.ingress);
  if (c.bundle_id) r::bundle_int::set(rec, 1);
  return rec;
}

// The fields that the L3 and L2 egress records share and the control side
// owns; the extension request is the caller's.
template <class R, class Cfg>
R egress_record(const Cfg& c, const interface_place& at, bool ext_req) {
  R rec = c.egress;
  R::coherency_always_1::set(rec, 1);
  R::line_status_up::set(rec, c.line_up);
  R::ext_req::set(rec, ext_req);
  R::out_if::port_id::set(rec, at.port);
  R::stats_p::set(rec, at.stats.egress);
  return rec;
}

// The L3 egress extension is always there: the egress path reads its MTU.
uidb_l3_egr_fields_st l3_egress(const l3_interface& c, const interface_place& at) {
  using r = uidb_l3_egr_fields_st;
  r rec = egress_record<r>(c, at, true);
  r::global_int::set(rec, c.vrf == 0);
  r::fast_ext_req::set(rec, c.egress_fast_ext.has_value());
  set_egress_tags(rec, at.tags);
  if (c.bundle_id) {
    r::bundle_int::set(rec, 1);
    r::out_if::lag_id::set(rec, *c.bundle_id);
  }
  return rec;
}

uidb_ext_l3_egr_st l3_egress_ext(const l3_interface& c) {
  using r = uidb_ext_l3_egr_st;
  r rec = c.egress_ext;
  r::coherency_always_1::set(rec, 1);
  r::ipmtu::set(rec, c.mtu);
  r::uidb_ifhandle::set(rec, c.if_handle);
  return rec;
}

uidb_l2_ing_st l2_ingress(const l2_interface& c, const interface_place& at) {
  using r = uidb_l2_ing_st;
  r rec = c.ingress;
  r::vpws::coherency::set(rec, 1);
  r::vpws::l2_uidb::set(rec, 1);
  r::vpws::vpls::set(rec, c.service == l2_service::bridge);
  if (c.service == l2_service::bridge) r::vpls::bd_id::set(rec, c.bd_id);
  r::stats_p::set(rec, at.stats.ingress);
  return rec;
}

uidb_l2_egr_st l2_egress(const l2_interface& c, const interface_place& at) {
  return egress_record<uidb_l2_egr_st>(c, at, c.egress_ext.has_value());
}

}  // namespace

std::uint32_t marks_address(std::uint32_t index) {
  return direct(TABLE_BASE_UIDB_MARK_BITS_ING, TABLE_STRIDE_UIDB_MARK_BITS_ING, index);
}

mark_bits_st marks_of(const l3_interface& c, bool maintenance) {
  using m = mark_bits_st::l3;
  mark_bits_st rec{};
  m::rt_v4::set(rec, c.ipv4);
  m::rt_v6::set(rec, c.ipv6);
  m::rt_mpls::set(rec, c.mpls);
  m::line_status_up::set(rec, c.line_up);
  m::ipv4_en::set(rec, c.ipv4);
  m::ipv6_en::set(rec, c.ipv6);
  m::mpls_en::set(rec, c.mpls);
  m::fast_ext_req::set(rec, c.ingress_fast_ext.has_value());
  m::ext_req::set(rec, c.ingress_ext.has_value());
  m::read_bng_uidb_ext::set(rec, c.subscriber_ext.has_value());
  m::global_vrf::set(rec, c.vrf == 0);
  m::uidb_maintenance_mode::set(rec, maintenance);
  return rec;
}

mark_bits_st marks_of(const l2_interface& c, bool maintenance) {
  using m = mark_bits_st::l2;
  mark_bits_st rec{};
  m::vpls::set(rec, c.service == l2_service::bridge);
  m::l2_uidb::set(rec, 1);
  m::line_status_up::set(rec, c.line_up);
  m::uidb_maintenance_mode::set(rec, maintenance);
  m::ext_req::set(rec, c.ingress_ext.has_value());
  return rec;
}

void write_records(model::npu& n, std::uint32_t index, const interface_place& at, const l3_interface& c) {
  write_at(n, paged(n, TPD_IDX_UIDB_L3_ING, index), l3_ingress(c, at));
  write_at(n, paged(n, TPD_IDX_UIDB_L3_EGR, index), l3_egress(c, at));
  write_at(n, direct(TABLE_BASE_UIDB_EXT_L3_EGR, TABLE_STRIDE_UIDB_EXT_L3_EGR, index), l3_egress_ext(c));
  const auto coherent = [](auto& rec) { std::remove_reference_t<decltype(rec)>::coherency_always_1::set(rec, 1); };
  write_extension(n, direct(TABLE_BASE_UIDB_EXT_L3_ING, TABLE_STRIDE_UIDB_EXT_L3_ING, index), c.ingress_ext, coherent);
  write_extension(n, direct(TABLE_BASE_UIDB_BNG_EXT_L3_ING, TABLE_STRIDE_UIDB_BNG_EXT_L3_ING, index), c.subscriber_ext,
                  coherent);
  const auto as_given = [](auto&) {};
  write_extension(n, direct(TABLE_BASE_UIDB_EXT_L3_FAST_ING, TABLE_STRIDE_UIDB_EXT_L3_FAST_ING, index),
                  c.ingress_fast_ext, as_given);
  write_extension(n, direct(TABLE_BASE_UIDB_EXT_L3_FAST_EGR, TABLE_STRIDE_UIDB_EXT_L3_FAST_EGR, index),
                  c.egress_fast_ext, as_given);
}

void write_records(model::npu& n, std::uint32_t index, const interface_place& at, const l2_interface& c) {
  write_at(n, paged(n, TPD_IDX_UIDB_L2_ING, index), l2_ingress(c, at));
  write_at(n, paged(n, TPD_IDX_UIDB_L2_EGR, index), l2_egress(c, at));
  write_extension(n, direct(TABLE_BASE_UIDB_EXT_L2_ING, TABLE_STRIDE_UIDB_EXT_L2_ING, index), c.ingress_ext,
                  [&](uidb_ext_l2_ing_st& rec) {
                    uidb_ext_l2_ing_st::coherency_always_1::set(rec, 1);
                    uidb_ext_l2_ing_st::uidb_ifhandle::set(rec, c.if_handle);
                    uidb_ext_l2_ing_st::uidb_ifhandle_main::set(rec, at.port_if_handle);
                  });
  write_extension(n, direct(TABLE_BASE_UIDB_EXT_L2_EGR, TABLE_STRIDE_UIDB_EXT_L2_EGR, index), c.egress_ext,
                  [&](uidb_ext_l2_egr_st& rec) {
                    uidb_ext_l2_egr_st::coherency_always_1::set(rec, 1);
                    uidb_ext_l2_egr_st::uidb_ifhandle::set(rec, c.if_handle);
                  });
}

void write_marks(model::npu& n, std::uint32_t index, const mark_bits_st& marks) {
  write_at(n, marks_address(index), marks);
}

void clear_records(model::npu& n, std::uint32_t index) {
  write_marks(n, index, mark_bits_st{});
  const std::uint8_t zeros[32] = {};
  const auto clear = [&](std::uint32_t addr, std::uint32_t bytes) { write_record(n, addr, {zeros, bytes}); };
  clear(paged(n, TPD_IDX_UIDB_L3_ING, index), sizeof(uidb_l3_ing_fields_st));
  clear(paged(n, TPD_IDX_UIDB_L3_EGR, index), sizeof(uidb_l3_egr_fields_st));
  clear(direct(TABLE_BASE_UIDB_EXT_L3_ING, TABLE_STRIDE_UIDB_EXT_L3_ING, index), sizeof(uidb_ext_l3_ing_st));
  clear(direct(TABLE_BASE_UIDB_EXT_L3_EGR, TABLE_STRIDE_UIDB_EXT_L3_EGR, index), sizeof(uidb_ext_l3_egr_st));
  clear(direct(TABLE_BASE_UIDB_EXT_L3_FAST_ING, TABLE_STRIDE_UIDB_EXT_L3_FAST_ING, index),
        sizeof(uidb_ext_l3_fast_ing_st));
  clear(direct(TABLE_BASE_UIDB_EXT_L3_FAST_EGR, TABLE_STRIDE_UIDB_EXT_L3_FAST_EGR, index),
        sizeof(uidb_ext_l3_fast_egr_st));
  clear(direct(TABLE_BASE_UIDB_BNG_EXT_L3_ING, TABLE_STRIDE_UIDB_BNG_EXT_L3_ING, index),
        sizeof(uidb_bng_ext_l3_ing_st));
}

}  // namespace ctrl
