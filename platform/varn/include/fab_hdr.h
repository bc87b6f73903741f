// The fabric header (dc3 form) in front of a packet that crosses the fabric:
// the fixed part for the fabric hardware (bytes 0..7 and 20..23), the NPH
// common bytes at 8 and 9, and per NPH type an extension in bytes 10..19,
// 24..28 and 30, with further bytes behind byte 31 for the longer types.
// Positions count from the start of the header. The fields listed as
// byte-reversed stand least significant byte first (le_bytes).
#pragma once

#include "be_types.h"
#include "nph_types.h"

// Length codes of nph_length: bytes = code * 2 + 8.
enum nph_length_e : std::uint32_t {
  NPH_LENGTH_32 = 12,
  NPH_LENGTH_36 = 14,
  NPH_LENGTH_38 = 15,
  NPH_LENGTH_40 = 16,
  NPH_LENGTH_44 = 18,
  NPH_LENGTH_50 = 21,
  NPH_LENGTH_52 = 22,
};
constexpr std::uint32_t nph_length_bytes(std::uint32_t code) { return code * 2 + 8; }

// A field of a value held in a host integer, by its lowest bit and width:
// the bits of qos_info, whose 16 bits stand byte-reversed in the header.
template <unsigned Lsb, unsigned Width>
struct value_bits {
  static constexpr std::uint32_t mask = ((1u << Width) - 1) << Lsb;
  static constexpr std::uint32_t get(std::uint32_t v) { return (v & mask) >> Lsb; }
  static constexpr std::uint32_t set(std::uint32_t v, std::uint32_t x) { return (v & ~mask) | ((x << Lsb) & mask); }
};

// The value of qos_info: the bits of info16 of internal_qos_info_st.
struct qos_info_un {
  using qos_cos = value_bits<13, 3>;
  using qos_de = value_bits<12, 1>;
  using discard_class = value_bits<9, 3>;
  using qos_exp = value_bits<6, 3>;
  using qos_group = value_bits<0, 6>;
};

// The two NPH common bytes (varn_nph_common_st), from their own start.
struct varn_nph_common_st {
  std::uint8_t bytes[2];
  struct nph_info {
    using spare1 = be_bits<0, 0, 1>;
    using ptrace = be_bits<0, 1, 1>;
    using nph_type = be_bits<0, 2, 6>;
  };
  struct nph_flags {
    using critical_inject = be_bits<1, 0, 1>;
    using mgid_b18 = be_bits<1, 1, 1>;
    using remote_rack = be_bits<1, 2, 1>;
    using nph_length = be_bits<1, 3, 5>;
  };
};
static_assert(sizeof(varn_nph_common_st) == 2);

inline constexpr std::size_t DC3_NPH_COMMON_OFFSET = 8;

// The fixed part and the NPH common bytes, shared by every dc3 form.
struct dc3_nph_fields {
  using dc3_eos = be_bits<0, 0, 1>;
  using dc3_version = be_bits<0, 1, 3>;
  using dc3_pkt_type = be_bits<0, 4, 4>;
  using dc3_c3_hdr = be_bits<1, 0, 8>;
  using dc3_hl = be_bits<2, 0, 2>;
  using dc3_plen = be_bits<2, 2, 16>;
  using dc3_de = be_bits<4, 2, 1>;
  using dc3_cos = be_bits<4, 3, 5>;
  using dc3_w0_b20_23 = be_bits<5, 0, 4>;
  using dc3_mgid_15 = be_bits<5, 4, 1>;
  using dc3_w0_b18 = be_bits<5, 5, 1>;
  using dc3_mgid_18 = be_bits<5, 6, 1>;
  using dc3_mgid_17 = be_bits<5, 7, 1>;
  using dc3_mgid_16 = be_bits<6, 0, 1>;
  using dc3_mgid_14_0 = be_bits<6, 1, 15>;
  using dc3_seq_no = be_bits<20, 0, 7>;
  using dc3_src_port = be_bits<20, 7, 12>;
  using dc3_sfp_valid = be_bits<22, 3, 1>;
  using dc3_fgid_or_sfp = be_bits<22, 4, 12>;
  using dc3_rbh = be_bits<29, 0, 8>;
  using dc3_checksum = be_bits<31, 0, 8>;

  template <class F>
  using in_common = be_bits_at<F, DC3_NPH_COMMON_OFFSET>;
  using spare1 = in_common<varn_nph_common_st::nph_info::spare1>;
  using ptrace = in_common<varn_nph_common_st::nph_info::ptrace>;
  using nph_type = in_common<varn_nph_common_st::nph_info::nph_type>;
  using critical_inject = in_common<varn_nph_common_st::nph_flags::critical_inject>;
  using mgid_b18 = in_common<varn_nph_common_st::nph_flags::mgid_b18>;
  using remote_rack = in_common<varn_nph_common_st::nph_flags::remote_rack>;
  using nph_length = in_common<varn_nph_common_st::nph_flags::nph_length>;

  // qos_info_un at bytes 10 and 11, byte-reversed.
  using qos_info = le_bytes<10, 2>;
};

// ext_fgid_un at bytes 14 and 15, in the types that carry an FGID.
struct ext_fgid_fields {
  struct ext_fgid {
    using extended_fgid_b23_14 = be_bits<14, 0, 10>;
    using fab_reserved = be_bits<15, 2, 2>;
    using extended_fgid_b13_12 = be_bits<15, 4, 2>;
    using pad_zero = be_bits<15, 6, 2>;
  };
};

inline constexpr std::size_t DC3_NPH_BYTES = 32;

// The header as the dispatch and the fixed-field writers see it.
struct dc3_nph_st : dc3_nph_fields {
  std::uint8_t bytes[DC3_NPH_BYTES];
};
static_assert(sizeof(dc3_nph_st) == 32);

// Members picked at ingress: link aggregation, NRLDI and RLDI.
template <std::size_t Byte>
struct member_byte {
  using reserved = be_bits<Byte, 0, 2>;
  using member_id = be_bits<Byte, 2, 6>;
};
template <std::size_t Byte>
struct lagm_byte {
  using spare = be_bits<Byte, 0, 2>;
  using lag_id = be_bits<Byte, 2, 6>;
};

// What every L3 unicast form (IP, MPLS and both next-hop index forms) holds
// in the same place: the bundle member and the input interface.
struct l3_uni_common_fields : dc3_nph_fields {
  using lagm = lagm_byte<14>;
  using input_if_handle = be_bits<16, 0, 32>;
};

// The IP and MPLS unicast forms also carry the flow hash and the members
// chosen at each level.
struct l3_uni_hashed_fields : l3_uni_common_fields {
  using raw_hash = be_bits<24, 0, 32>;
  using nrldim = member_byte<28>;
  using rldim = member_byte<30>;
};

// Unicast IP, varn_ip_uni_ext_part1..3 (types 1, 3, and the base of 19, 23,
// 32, 34).
struct varn_ip_uni_ext_fields : l3_uni_hashed_fields {
  using vrf = le_bytes<12, 2>;
  struct flags {
    using reserved1 = be_bits<15, 0, 1>;
    using ts = be_bits<15, 1, 1>;
    using fab_reserved = be_bits<15, 2, 2>;
    using reserved3 = be_bits<15, 4, 3>;
    using hop_count = be_bits<15, 7, 1>;
  };
  using ts_off = be_bits<27, 0, 8>;  // with flags.ts: the last byte of raw_hash
};

struct varn_dc3_nph_ip_uni_st : varn_ip_uni_ext_fields {
  std::uint8_t bytes[32];
};
static_assert(sizeof(varn_dc3_nph_ip_uni_st) == 32);

// MPLS unicast, varn_mpls_ext_part1..3 (types 5 and 33).
struct varn_mpls_ext_fields : l3_uni_hashed_fields {
  using pad_zero = be_bits<12, 0, 16>;
  struct flags {
    using reserved1 = be_bits<15, 0, 2>;
    using fab_reserved = be_bits<15, 2, 2>;
    using no_impos = be_bits<15, 4, 1>;
    using q_pri = be_bits<15, 5, 1>;
    using md = be_bits<15, 6, 1>;
    using hop_count = be_bits<15, 7, 1>;
  };
};

struct varn_dc3_nph_mpls_uni_st : varn_mpls_ext_fields {
  std::uint8_t bytes[32];
};
static_assert(sizeof(varn_dc3_nph_mpls_uni_st) == 32);

// IP to next-hop index, varn_ip_nhindex_ext_part1..3 (type 35).
struct varn_dc3_nph_ip_nhindex_st : l3_uni_common_fields {
  std::uint8_t bytes[32];
  using vrf = le_bytes<12, 2>;
  struct flags {
    using v6 = be_bits<15, 0, 1>;
    using reserved2 = be_bits<15, 1, 1>;
    using fab_reserved = be_bits<15, 2, 2>;
    using reserved3 = be_bits<15, 4, 3>;
    using hop_count = be_bits<15, 7, 1>;
  };
  struct nhid_hash {
    struct fields {
      using nhindex = le_bytes<24, 3>;
      using raw_hash = be_bits<27, 0, 8>;  // bits 29..22 of the hash
    };
  };
  using pad = be_bits<28, 0, 8>;
  using rldim = member_byte<30>;
};
static_assert(sizeof(varn_dc3_nph_ip_nhindex_st) == 32);

// MPLS to next-hop index, varn_mpls_nhindex_ext_part1..3 (type 36).
struct varn_dc3_nph_mpls_nhindex_st : l3_uni_common_fields {
  std::uint8_t bytes[32];
  using raw_hash = be_bits<12, 0, 8>;  // bits 29..22 of the hash
  using pad = be_bits<13, 0, 8>;
  struct flags {
    using reserved1 = be_bits<15, 0, 2>;
    using fab_reserved = be_bits<15, 2, 2>;
    using no_impos = be_bits<15, 4, 1>;
    using lbl_valid = be_bits<15, 5, 1>;
    using md = be_bits<15, 6, 1>;
    using hop_count = be_bits<15, 7, 1>;
  };
  using nhindex = le_bytes<24, 3>;
  using out_label_msb = be_bits<27, 0, 16>;
  using out_label_lsb = be_bits<30, 0, 8>;
};
static_assert(sizeof(varn_dc3_nph_mpls_nhindex_st) == 32);

// ABF extension behind the 32 bytes (types 19, 23).
struct varn_dc3_nph_ipv4_abf_uni_st : varn_ip_uni_ext_fields {
  std::uint8_t bytes[40];
  using ipv4_nh_addr = be_bits<32, 0, 32>;
  using abf_vrf = le_bytes<36, 2>;
  using svi_uidb_index = be_bits<38, 0, 8>;
  struct service_flags {
    struct cgn_bits {
      using cgn_service = be_bits<39, 0, 1>;
      using skip_abf_nh = be_bits<39, 1, 1>;
      using ipsec = be_bits<39, 2, 1>;
      using reserved = be_bits<39, 3, 5>;
    };
  };
};
static_assert(sizeof(varn_dc3_nph_ipv4_abf_uni_st) == 40);

struct varn_dc3_nph_ipv6_abf_uni_st : varn_ip_uni_ext_fields {
  std::uint8_t bytes[52];
  using ipv6_nh_addr = be_byte_run<32, 16>;
  using abf_vrf = le_bytes<48, 2>;
  using svi_uidb_index = be_bits<50, 0, 8>;
  struct service_flags {
    struct cgn_bits {
      using cgn_service = be_bits<51, 0, 1>;
      using skip_abf_nh = be_bits<51, 1, 1>;
      using reserved = be_bits<51, 2, 6>;
    };
  };
};
static_assert(sizeof(varn_dc3_nph_ipv6_abf_uni_st) == 52);

// The L3 unicast extension (l3_uni_ext_st), bytes 32..39 of types 32, 33
// and 34: a subtype, then one of three forms.
struct l3_uni_ext_fields {
  using nph_subtype = be_bits<32, 0, 8>;
  struct pwhe_vpath_st {
    using egr_np_port = be_bits<33, 0, 16>;
    using nrldim = member_byte<35>;
    using rldim = member_byte<36>;
    using lagm = lagm_byte<37>;
    struct flags {
      using SDN_proc = be_bits<38, 0, 1>;
      using notif_pdu = be_bits<38, 1, 1>;
      using resp_new_flow_add = be_bits<38, 2, 1>;
      using resp_sol_flow_add = be_bits<38, 3, 1>;
      using resp_new_flow_inj = be_bits<38, 4, 1>;
      using vrf_override = be_bits<38, 5, 1>;
      using reinject_or_output = be_bits<38, 6, 1>;
      using spare = be_bits<38, 7, 1>;
    };
    using pad = be_bits<39, 0, 8>;
  };
  struct gre_multikey_st {
    using pad = be_bits<33, 0, 24>;
    using key = le_bytes<36, 4>;
  };
  struct abf_gre_multikey_st {
    using pad = be_bits<33, 0, 8>;
    using abf_vrf = le_bytes<34, 2>;
    using ipv4_nh_addr = be_bits<36, 0, 32>;
  };
};

enum l3_uni_ext_subtype_e : std::uint32_t {
  L3_UNI_EXT_PWHE_VPATH = 0,
  L3_UNI_EXT_MULTIKEY = 1,
};

inline constexpr std::uint32_t L3_UNI_EXT_BYTES = 8;

struct varn_dc3_nph_ip_uni_ext_st : varn_ip_uni_ext_fields, l3_uni_ext_fields {
  std::uint8_t bytes[40];
};
static_assert(sizeof(varn_dc3_nph_ip_uni_ext_st) == 40);

struct varn_dc3_nph_mpls_uni_ext_st : varn_mpls_ext_fields, l3_uni_ext_fields {
  std::uint8_t bytes[40];
};
static_assert(sizeof(varn_dc3_nph_mpls_uni_ext_st) == 40);

// The 44-byte GRE form: the ABF multikey extension, then a second key.
struct varn_ip_uni_gre_ext_nph_dc3_hdr : varn_ip_uni_ext_fields, l3_uni_ext_fields {
  std::uint8_t bytes[44];
  struct gre_key_uni_ext2 {
    using ext_gre_key = le_bytes<40, 4>;
  };
};
static_assert(sizeof(varn_ip_uni_gre_ext_nph_dc3_hdr) == 44);

// A virtual path header: the 40-byte extension form and 14 bytes of
// Ethernet header, whose type stands at bytes 52 and 53.
inline constexpr std::size_t PWHE_VPATH_HDR_BYTES = 54;
inline constexpr std::size_t PWHE_VPATH_ETHERTYPE_OFFSET = 52;

// Multicast IP, varn_ip_mc_ext_part1..4 (types 2, 4).
struct varn_dc3_nph_ip_mc_st : dc3_nph_fields, ext_fgid_fields {
  std::uint8_t bytes[44];
  using vrf = le_bytes<12, 2>;
  using input_if_handle = be_bits<16, 0, 32>;
  using vrf2 = le_bytes<24, 2>;
  using encap_id = be_bits<26, 0, 24>;
  struct flags {
    using local_receivers = be_bits<30, 2, 1>;
    using p2mp = be_bits<30, 3, 1>;
    using cond_decap = be_bits<30, 4, 1>;
    using encap = be_bits<30, 5, 1>;
    using rpf_fail = be_bits<30, 6, 1>;
    using seg_mc = be_bits<30, 7, 1>;
  };
  using raw_hash = be_bits<32, 0, 32>;
  using tunnel_ifh = be_bits<36, 0, 32>;
  using rpf_id = be_bits<40, 0, 24>;
  using tunnel_qos = be_bits<43, 0, 8>;
};
static_assert(sizeof(varn_dc3_nph_ip_mc_st) == 44);

// MoFRR message, varn_mofrr_ext_part1..4 (type 16).
struct varn_dc3_nph_mofrr_st : dc3_nph_fields, ext_fgid_fields {
  std::uint8_t bytes[44];
  using src_ip = be_bits<10, 0, 32>;
  using vrf_id = be_bits<16, 0, 16>;
  using dst_ip_B0_B1 = be_bits<18, 0, 16>;
  using dst_ip_B2_B3 = be_bits<24, 0, 16>;
  using np_id = be_bits<26, 0, 8>;
  using padding = be_bits<27, 0, 16>;
  struct flags {
    using drop = be_bits<30, 6, 1>;
    using active_mofrr = be_bits<30, 7, 1>;
  };
  using seq_num = be_bits<32, 0, 32>;
  using rpf_id = be_bits<36, 0, 32>;
  using wdi = be_bits<40, 0, 24>;
  using spare = be_bits<43, 0, 8>;
};
static_assert(sizeof(varn_dc3_nph_mofrr_st) == 44);

// L2 unicast, varn_l2_ext_part1..4 (types 6, 7, 12, 21, 37).
struct varn_l2_ext_fields : dc3_nph_fields {
  // Type 7 only: bits 14..0 of the bridge domain ID in bytes 6 and 7,
  // byte-reversed, over dc3_mgid_16 and dc3_mgid_14_0; bit 15 in dc3_mgid_15.
  using bd_id_14_0 = le_bytes<6, 2>;
  using lagm = lagm_byte<12>;
  using l2_encaps_sz = be_bits<13, 0, 8>;
  using xid_learn_key = be_bits<14, 0, 8>;
  struct flags {
    using evpn_redir_label = be_bits<15, 0, 1>;
    using control_word_from_my_bmac = be_bits<15, 1, 1>;
    using fab_reserved = be_bits<15, 2, 2>;
    using l2tp_ctrl_pkt_evpn_mc_label = be_bits<15, 4, 1>;
    using skip_bh_detect = be_bits<15, 5, 1>;
    using etree_leaf = be_bits<15, 6, 1>;
    using spare = be_bits<15, 7, 1>;
  };
  using sxid = le_bytes<16, 4>;
  using dxid = le_bytes<24, 4>;
  struct shg_rackid {
    using rack_id = be_bits<28, 0, 4>;
    using shg = be_bits<28, 4, 4>;
  };
  struct l2_protocols {
    using cfm = be_bits<30, 0, 1>;
    using dhcp = be_bits<30, 1, 1>;
    using igmp = be_bits<30, 2, 1>;
    using prot_flags_3_4 = be_bits<30, 3, 2>;
    using cfm_ltm_remote_rack = be_bits<30, 5, 1>;
    using prot_flags_0_1 = be_bits<30, 6, 2>;
  };
};

struct varn_dc3_nph_l2_uni_st : varn_l2_ext_fields {
  std::uint8_t bytes[32];
};
static_assert(sizeof(varn_dc3_nph_l2_uni_st) == 32);

enum l2_uni_plus_subtype_e : std::uint32_t {
  L2_UNI_PLUS_PWHE = 1,
  L2_UNI_PLUS_WIDE_BD = 2,
};

struct varn_dc3_nph_l2_uni_plus_st : varn_l2_ext_fields {
  std::uint8_t bytes[38];
  using subtype = be_bits<32, 0, 8>;
  using egr_np_port = be_bits<33, 0, 16>;
  using bd_id = le_bytes<35, 3>;
};
static_assert(sizeof(varn_dc3_nph_l2_uni_plus_st) == 38);

// L2 flood and L2 multicast, varn_l2_fld_mcast_ext_part1..5 (types 8, 9, 25).
struct varn_l2_fld_mcast_ext_fields : dc3_nph_fields, ext_fgid_fields {
  struct flags {
    using evpn_redir_label = be_bits<12, 0, 1>;
    using mrouter = be_bits<12, 1, 1>;
    using fab_reserved = be_bits<12, 2, 2>;
    using cust_fld = be_bits<12, 4, 1>;
    using evpn_c2e = be_bits<12, 5, 1>;
    using evpn_mc_label = be_bits<12, 6, 1>;
    using evpn_e2c = be_bits<12, 7, 1>;
  };
  using l2_encaps_sz = be_bits<13, 0, 8>;
  using sxid = le_bytes<16, 4>;
  using raw_hash = be_bits<24, 0, 32>;
  struct shg_rackid {
    using rack_id = be_bits<28, 0, 4>;
    using shg = be_bits<28, 4, 4>;
  };
  struct l2_protocols {
    using cfm = be_bits<30, 0, 1>;
    using dhcp = be_bits<30, 1, 1>;
    using igmp = be_bits<30, 2, 1>;
    using prot_flags = be_bits<30, 3, 5>;
  };
  using bd_id = le_bytes<32, 3>;
  using subtype = be_bits<35, 0, 8>;
};

enum l2_fld_subtype_e : std::uint32_t {
  L2_FLD_SUBTYPE_BASE = 0,
  L2_FLD_SUBTYPE_EVPN = 4,
  L2_FLD_SUBTYPE_EVPN_MC = 8,
};

struct varn_dc3_nph_l2_fld_st : varn_l2_fld_mcast_ext_fields {
  std::uint8_t bytes[36];
};
static_assert(sizeof(varn_dc3_nph_l2_fld_st) == 36);

struct varn_dc3_nph_l2_fld_mcast_egr_st : varn_l2_fld_mcast_ext_fields {
  std::uint8_t bytes[36];
};
static_assert(sizeof(varn_dc3_nph_l2_fld_mcast_egr_st) == 36);

struct varn_dc3_nph_l2_fld_adv_st : varn_l2_fld_mcast_ext_fields {
  std::uint8_t bytes[40];
  struct ext_info {
    using lsm_label = le_bytes<36, 3>;
    using evpn_esi = le_bytes<36, 3>;
  };
  struct ext_flags {
    using native_evpn = be_bits<39, 0, 1>;
    using from_bvi = be_bits<39, 1, 1>;
    using etree_leaf = be_bits<39, 2, 1>;
    using spare = be_bits<39, 3, 5>;
  };
};
static_assert(sizeof(varn_dc3_nph_l2_fld_adv_st) == 40);

// MAC notification, varn_mac_notify_ext_part1..4 (type 10).
inline constexpr std::uint32_t MAC_NOTIFY_IPC_TYPE = 1;

struct varn_dc3_enc_mac_notify_st : dc3_nph_fields, ext_fgid_fields {
  std::uint8_t bytes[50];
  using ipc_type = be_bits<10, 0, 8>;
  using learn_key = be_bits<11, 0, 8>;
  using source_np = be_bits<12, 0, 16>;
  using sxid = le_bytes<16, 4>;
  using bd_id = le_bytes<24, 3>;
  struct flags {
    using spare = be_bits<27, 0, 1>;
    using intra_np = be_bits<27, 1, 1>;
    using mac_secure_enabled = be_bits<27, 2, 1>;
    using mac_secure_actions = be_bits<27, 3, 2>;
    using dot1ah = be_bits<27, 5, 1>;
    using mac_delete = be_bits<27, 6, 1>;
    using mac_reverse = be_bits<27, 7, 1>;
  };
  struct ext_flags {
    using spare = be_bits<28, 0, 5>;
    using mbx_learn_retry = be_bits<28, 5, 1>;
    using evpn_local_lrn = be_bits<28, 6, 1>;
    using thresh_mac_secure = be_bits<28, 7, 1>;
  };
  using rack_id = be_bits<30, 0, 8>;
  using pad_zero1 = be_bits<32, 0, 16>;
  using mac1_ms = be_bits<34, 0, 32>;
  using mac1_ls = be_bits<38, 0, 16>;
  using mac2_ms = be_bits<40, 0, 32>;
  using mac2_ls = be_bits<44, 0, 16>;
  using pad_zero2 = be_bits<46, 0, 32>;
};
static_assert(sizeof(varn_dc3_enc_mac_notify_st) == 50);

// Loopback, varn_lpbk_uni_ext_part1..3 (type 17).
struct varn_dc3_nph_lpbk_uni_st : dc3_nph_fields {
  std::uint8_t bytes[32];
  using pkt_len = be_bits<12, 0, 16>;
  using unused = be_bits<14, 0, 8>;
  struct fab {
    using fab_reserved = be_bits<15, 2, 2>;
  };
  using input_if_handle = be_bits<16, 0, 32>;
  using parent_if_handle = be_bits<24, 0, 32>;
  using value_28 = be_bits<28, 0, 8>;
  using value_30 = be_bits<30, 0, 8>;
};
static_assert(sizeof(varn_dc3_nph_lpbk_uni_st) == 32);
