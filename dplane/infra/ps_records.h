// Small records held in the packet state: the flag words and the records whose
// layout belongs to the packet state itself. Records owned by a feature appear
// here as sized storage until that feature describes its fields.
#pragma once

#include <cstddef>
#include <cstdint>

#include "be_types.h"
#include "dplane/infra/hash.h"
#include "mpls.h"

// Storage of a record whose fields its owning feature describes.
template <std::size_t N>
struct be_opaque {
  std::uint8_t bytes[N];
};

// Flag word 0 (bytes 0..3) and flag word 1 (bytes 4..7).
struct common_flags_st {
  std::uint8_t bytes[8];
  using inline_rep_in_progress = be_word_bits<0, 31>;
  using tail_processing = be_word_bits<0, 30>;
  using keep_gpm = be_word_bits<0, 29>;
  using nrldi_invalid = be_word_bits<0, 28>;
  using abf = be_word_bits<0, 27>;
  using mpls_ach_bfd_slow_start = be_word_bits<0, 26>;
  using mpls_label_exist = be_word_bits<0, 25>;
  using mpls_stack_exists = be_word_bits<0, 24>;
  using critical_priority = be_word_bits<0, 23>;
  using pkt_trace_on = be_word_bits<0, 22>;
  using acl_lookup_miss = be_word_bits<0, 21>;
  using qos_lookup_miss = be_word_bits<0, 20>;
  using for_us = be_word_bits<0, 19>;
  using mac_mismatch_drop = be_word_bits<0, 18>;
  using src_leaf_read_initiated = be_word_bits<0, 17>;
  using src_leaf_read_completed = be_word_bits<0, 16>;
  using srv6_thread = be_word_bits<0, 15>;
  using ing_te_nh_bkup_egr_sr_te_thread = be_word_bits<0, 14>;
  using dst_leaf_read_initiated = be_word_bits<0, 13>;
  using dst_leaf_read_completed = be_word_bits<0, 12>;
  using src_ip_addr_lookup_initiated = be_word_bits<0, 11>;
  using src_ip_addr_lookup_completed = be_word_bits<0, 10>;
  using src_ip_addr_lookup_match = be_word_bits<0, 9>;
  using dst_ip_addr_lookup_initiated = be_word_bits<0, 8>;
  using dst_ip_addr_lookup_completed = be_word_bits<0, 7>;
  using dst_ip_addr_lookup_match = be_word_bits<0, 6>;
  using skip_xmit = be_word_bits<0, 5>;
  using ing_gre_decap_egr_pri = be_word_bits<0, 4>;
  using l3_uidb_ext_read_initiated = be_word_bits<0, 3>;
  using l3_uidb_ext_read_completed = be_word_bits<0, 2>;
  using pkt_recycled = be_word_bits<0, 1>;
  using fast_switch = be_word_bits<0, 0>;

  using mpls_to_ip = be_word_bits<4, 31>;
  using egr_wred_valid_or_ing_l2_saved = be_word_bits<4, 30>;
  using ipv6_ll_leaf_or_mpls_dm = be_word_bits<4, 29>;
  using nf_sampled = be_word_bits<4, 28>;
  using is_replica = be_word_bits<4, 27>;
  using rldi_valid = be_word_bits<4, 26>;
  using mpls_to_l2 = be_word_bits<4, 25>;
  using l2_flood = be_word_bits<4, 24>;
  using use_ps_raw_hash = be_word_bits<4, 23>;
  using l2mcast = be_word_bits<4, 22>;
  using l2bcast = be_word_bits<4, 21>;
  using no_li_ttl_restore = be_word_bits<4, 20>;
  using ipv6_ext_hdr_parsed = be_word_bits<4, 19>;
  using gre_encap = be_word_bits<4, 18>;
  using ipmc_special_ole = be_word_bits<4, 17>;
  using port_span_capture = be_word_bits<4, 16>;
  using mpls_expnull_eos = be_word_bits<4, 15>;
  using flow_or_shg_label = be_word_bits<4, 14>;
  using coherency_operation_active = be_word_bits<4, 13>;
  using send_mac_notify = be_word_bits<4, 12>;
  using in_tail_processing = be_word_bits<4, 11>;
  using l3_type = be_word_bits<4, 9, 2>;
  using punt_rp = be_word_bits<4, 8>;
  using orig_mpls_hdr_valid = be_word_bits<4, 7>;
  using span_capturing = be_word_bits<4, 6>;
  using l1_oh_en = be_word_bits<4, 5>;
  using virtual_interface = be_word_bits<4, 4>;
  using in_multipass = be_word_bits<4, 3>;
  using do_multipass = be_word_bits<4, 2>;
  using gpm_allocated = be_word_bits<4, 0, 2>;
};
static_assert(sizeof(common_flags_st) == 8);

enum l3_type_e : std::uint32_t { L3_IPV4 = 0, L3_IPV6 = 1, L3_MPLS = 2 };

struct common_flags2_st {
  std::uint8_t bytes[4];
  using spare = be_word_bits<0, 25, 7>;
  using port_span_skip = be_word_bits<0, 24>;
  using delete_mac = be_word_bits<0, 23>;
  using is_hqos = be_word_bits<0, 22>;
  using is_bvi = be_word_bits<0, 21>;
  using sat_mac_adjust = be_word_bits<0, 20>;
  using is_sat_intf = be_word_bits<0, 19>;
  using is_pwhe_l2 = be_word_bits<0, 18>;
  using l2snoop_orig_inj = be_word_bits<0, 17>;
  using fwd_class_id_valid = be_word_bits<0, 16>;
  using acl_2_lookup_miss = be_word_bits<0, 15>;
  using queue_en = be_word_bits<0, 14>;
  using pwhe = be_word_bits<0, 13>;
  using xid_enabled = be_word_bits<0, 12>;
  using xid_no_local_label = be_word_bits<0, 11>;
  using entropy_label_invalid_or_is_sfi = be_word_bits<0, 10>;
  using is_l3mcast = be_word_bits<0, 9>;
  using tunnel_marking_performed = be_word_bits<0, 8>;
  using l2snoop_read_l2_uidb_ext = be_word_bits<0, 7>;
  using from_gre_tunnel = be_word_bits<0, 6>;
  using nf_drop_reason_set_or_nonsampled = be_word_bits<0, 5>;
  using abf_over_bvi = be_word_bits<0, 4>;
  using pbr_mpls_to_ip = be_word_bits<0, 3>;
  using rx_tx_adj_pwhe = be_word_bits<0, 2>;
  using gre_over_mpls = be_word_bits<0, 1>;
  using preroute_use_vlan_tags = be_word_bits<0, 0>;
};
static_assert(sizeof(common_flags2_st) == 4);

struct inject_flags_st {
  std::uint8_t bits;
  using injected_pkt = be_bits<0, 0, 1>;
  using critical_inject = be_bits<0, 1, 1>;
  using timing_timestamp = be_bits<0, 2, 1>;
  using followup_pkt = be_bits<0, 3, 1>;
  using pkt_l2snoop = be_bits<0, 4, 1>;
  using pkt_l2snoop_igmp = be_bits<0, 5, 1>;
  using pkt_inject_fwd_to_bvi = be_bits<0, 6, 1>;
  using pm_checksum = be_bits<0, 7, 1>;
};

struct span_flags_st {
  std::uint8_t bits;
  using egr_not_xmitted = be_bits<0, 0, 1>;
  using egr_l3 = be_bits<0, 1, 1>;
  using egr_inject = be_bits<0, 2, 1>;
  using spare = be_bits<0, 3, 5>;
};

struct mpls_label_state_st {
  std::uint8_t bytes[2];
  using spare = be_bits<0, 0, 8>;
  using te_tunn_valid = be_bits<1, 0, 1>;
  using mp_valid = be_bits<1, 1, 1>;
  using igp_valid = be_bits<1, 2, 1>;
  using igp2_valid = be_bits<1, 3, 1>;
  using igp3_valid = be_bits<1, 4, 1>;
  using bgp_valid = be_bits<1, 5, 1>;
  using vpn_valid = be_bits<1, 6, 1>;
  using vc_valid = be_bits<1, 7, 1>;
};

struct lagm_st {
  std::uint8_t bits;
  using spare = be_bits<0, 0, 2>;
  using lag_id = be_bits<0, 2, 6>;
};

struct thread_lookup_trace_st {
  std::uint8_t bits;
  using segment_offset = be_bits<0, 0, 7>;
  using logging_enabled = be_bits<0, 7, 1>;
};

// The first ACL's verdict: acl_st in the first 16 bits, then padding.
struct acl_pkt_state_st {
  std::uint8_t bytes[4];
  using coherency_always_1 = be_bits<0, 0, 1>;
  using sp6 = be_bits<0, 1, 1>;
  using get_acl_intf = be_bits<0, 2, 1>;
  using match = be_bits<0, 3, 1>;
  using rsvd = be_bits<0, 4, 3>;
  using valid = be_bits<0, 7, 1>;
  using abf_set_vrf = be_bits<1, 0, 1>;
  using def_rte_chk = be_bits<1, 1, 1>;
  using nexthop_enable = be_bits<1, 2, 1>;
  using deny = be_bits<1, 3, 1>;
  using icmp_punt = be_bits<1, 4, 1>;
  using log_punt = be_bits<1, 5, 1>;
  using per_ace_stats = be_bits<1, 6, 1>;
  using span_capture = be_bits<1, 7, 1>;
  using acl = be_bits<0, 0, 16>;
  using pad = be_bits<2, 0, 16>;
};

struct internal_qos_info_st {
  std::uint8_t bytes[4];
  using fab_cos = be_bits<0, 0, 2>;
  using cos_mark = be_bits<0, 2, 1>;
  using exp_i_mark = be_bits<0, 3, 1>;
  using cos_inner = be_bits<0, 4, 1>;
  using icos_value = be_bits<0, 5, 3>;
  using tunnel_marking = be_bits<1, 0, 8>;
  using info16 = be_bits<2, 0, 16>;
};

// One label of an imposition: a 3-byte label word and a TTL byte.
struct mpls_pkt_label_st {
  be_u24 lbl;
  std::uint8_t ttl;
};

// Bytes to impose: up to eight labels, or 32 header bytes.
union l3_encaps_st {
  mpls_pkt_label_st mpls_labels[8];
  std::uint8_t hdrs[32];
};
static_assert(sizeof(l3_encaps_st) == 32);

struct l4_ports_st {
  be_u16 src;
  be_u16 dst;
};

struct ip_l4_info_st {
  l4_ports_st l4_ports;
  be_u16 frag_off_mf;
  std::uint8_t protocol;
  std::uint8_t tcp_flags;
};
static_assert(sizeof(ip_l4_info_st) == 8);

struct mpls_label_lkp_key_st {
  std::uint8_t bytes[4];
  using zeros = be_bits<0, 0, 11>;
  using label = be_bits<1, 3, 20>;
  using eos = be_bits<3, 7, 1>;
};

struct ipv6_eh_flags_st {
  std::uint8_t bits;
  using frag = be_bits<0, 0, 1>;
  using dest = be_bits<0, 1, 1>;
  using routing = be_bits<0, 2, 1>;
  using srh = be_bits<0, 3, 1>;
  using ah = be_bits<0, 4, 1>;
  using hop = be_bits<0, 5, 1>;
};

struct mpls_latest_nrldi_save_area_st {
  std::uint8_t bits;
  using ipldp_frr_te = be_bits<0, 0, 1>;
  using te_ip_frr_adj = be_bits<0, 1, 1>;
  using label_1_valid = be_bits<0, 2, 1>;
};

struct timing_ts_data {
  be_u16 timing_pkt_ctx;
  be_u32 timing_ts_offset;
};

struct ipmc_rep_data {
  std::uint8_t ipmc_vrf_type;
  std::uint8_t encap_size;
  std::uint8_t decap_size;
  std::uint8_t spare;
};

enum ipmc_vrf_type_e : std::uint8_t { GLOBAL_VRF = 0, ENCAP_CORE = 0, DECAP_CORE = 0, ENCAP_VRF = 1, DECAP_VRF = 2 };

struct debug_multipass_history_st {
  std::uint8_t index;
  std::uint8_t mpass_history[7];
};

struct l2_mac_info_st {
  be_u32 xid;
  be_u32 xid_ptr;
  be_u32 bd_id;
  be_u32 mac_hi;
  be_u16 mac_low;
  be_u32 mac2_hi;
  be_u16 mac2_low;
  be_u16 flags;
  std::uint8_t xid_learn_key;
  std::uint8_t bd_learn_key;
  using local = be_bits<24, 0, 1>;
  using mac_secure_enable = be_bits<24, 1, 1>;
  using mac_secure_actions = be_bits<24, 2, 2>;
  using thresh_mac_secure = be_bits<24, 4, 1>;
  using move_count = be_bits<24, 5, 3>;
  using mac_delete = be_bits<25, 0, 1>;
  using mr = be_bits<25, 1, 1>;
  using dot1ah_or_vni = be_bits<25, 2, 1>;
  using evpn_local_lrn = be_bits<25, 3, 1>;
};
static_assert(sizeof(l2_mac_info_st) == 28);

struct sid_st {
  be_u32 word;
  be_u16 half_word;
};

struct l3_sid_encaps_st {
  sid_st sids;
  be_u16 flags;
  std::uint8_t nh_flags;
  std::uint8_t srv6_function;
  using sr6i_sr6a_flags = be_bits<6, 0, 2>;
  using sr6i_sid_valid = be_bits<6, 0, 1>;
  using sr6a_sid_valid = be_bits<6, 1, 1>;
  using pkt_modified = be_bits<6, 2, 1>;
  using srv6_punt = be_bits<6, 3, 1>;
  using usid_flag = be_bits<6, 4, 1>;
  using src_l2 = be_bits<6, 5, 1>;
  using sr6a_num_slot_valid = be_bits<6, 6, 2>;
  using sr6a_blockid = be_bits<7, 0, 8>;
  using nhid_valid = be_bits<8, 0, 1>;
  using uN_uA_usd_v4 = be_bits<8, 1, 1>;
  using uN_uA_usd_v6 = be_bits<8, 2, 1>;
};
static_assert(sizeof(l3_sid_encaps_st) == 10);

struct nf_mapt_st {
  std::uint8_t addr[32];
  l4_ports_st l4_ports;
  std::uint8_t protocol;
  be_u16 time;
  be_u16 vrf_ing;
  be_u16 vrf_egr;
};
static_assert(sizeof(nf_mapt_st) == 43);

struct nsh_tail_proc_data {
  be_u32 ifhandle;
  be_u32 dest_ip;
  be_u32 hash;
  be_u16 vrf_id;
  be_u16 inner_l3_offset;
  std::uint8_t outer_l3_offset;
  std::uint8_t flags;
  std::uint8_t pad[2];
  using classify = be_bits<17, 0, 1>;
  using encap_type = be_bits<17, 1, 2>;
};
static_assert(sizeof(nsh_tail_proc_data) == 20);

// Flow-export status of the packet.
struct nfpkt_cmn_hdr_status_st {
  std::uint8_t bytes[4];
  using direction = be_bits<0, 0, 1>;
  using type = be_bits<0, 1, 4>;
  using sub_type = be_bits<0, 5, 5>;
  using scheme = be_bits<1, 2, 6>;
  using fm_id = be_bits<2, 0, 8>;
  using fwdg_status = be_bits<3, 0, 2>;
  using reason = be_bits<3, 2, 6>;  // forward, consume or drop reason, by fwdg_status
  using mapt_type = be_bits<3, 2, 1>;
  using nf_mapt = be_bits<3, 3, 1>;
};

enum nf_fwd_status_e : std::uint32_t {
  NF_FWD_STATUS_UNKNOWN = 0,
  NF_FWD_STATUS_FORWARD = 1,
  NF_FWD_STATUS_DROP = 2,
  NF_FWD_STATUS_CONSUME = 3,
};

// The thread's list of lookups under coherency tracking, at most 10.
struct coherency_entry_st {
  be_u16 lookup_id;
  be_u32 addr;
};
inline constexpr std::uint32_t COHERENCY_LIST_ENTRIES = 10;
struct coherency_cb_st {
  std::uint8_t num_list_entries;
  coherency_entry_st list[COHERENCY_LIST_ENTRIES];
};
static_assert(sizeof(coherency_entry_st) == 6 && sizeof(coherency_cb_st) == 61);

// Records owned by later features: storage only, sized as the packet state holds them.
using dhcp_binding_key_st = be_opaque<15>;
using pkt_state_xid_hash_key_st = be_opaque<4>;
using srv6_ipv6_save_area_2_st = be_opaque<4>;
using srv6_ipv6_save_area_st = be_opaque<16>;
using pkt_state_mpls_rpf_hash_key_st = be_opaque<8>;
using nsh_sc_hash_key_st = be_opaque<4>;
using nsh_mdata_term_hash_key_st = be_opaque<8>;
using fwc_punt_reason = be_u32;
using acl_intf_hash_key_st = be_opaque<8>;
using h_qos_ant_hash_key_st = be_opaque<8>;
using pbr_intf_hash_key_st = be_opaque<8>;
using abf_ipv6_nh = be_opaque<16>;
using l2_learn_info_zp_st = be_opaque<32>;
using eth_hdr_info_st = be_opaque<4>;
using mvpn_decap_data = be_opaque<8>;
using nsh_metadata = be_opaque<16>;
using abf_ipv4_nh = be_opaque<4>;
using abf_cmn_data = be_opaque<4>;
using span_fwd_key_st = be_opaque<4>;
using nsh_spisi = be_opaque<4>;

// The parameters of a packet's next pass: the pass to run (2 bytes), the
// saved fabric header fields (14), the pass's own union from byte 16, and the
// tail's flow hash. Fields come with the passes that own them; the bundle
// choice at egress reads use_lag_sel of the GRE encapsulation's.
struct multipass_param_t {
  std::uint8_t bytes[67];
  struct u {
    struct gre_encap {
      struct egr {
        struct flags {
          using use_lag_sel = be_bits<16, 5, 1>;
        };
      };
    };
  };
};
static_assert(sizeof(multipass_param_t) == 67);
