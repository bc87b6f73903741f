// Records of the forwarding chain that a prefix match leads to, written by
// the control plane and read by the L3 paths through the lookup catalogue.
// Reserved fields have no descriptor: they stay 0. A byte that serves
// several uses has a descriptor for each, grouped by use.
#pragma once

#include "be_types.h"

// The receive adjacency, 16 bytes: where the chain's walk ends on the
// ingress side. Its marks say how the packet leaves: through a bundle, a
// tunnel, a PWHE or SFI encapsulation, another rack, or an exception.
struct rxadj_fields_st {
  std::uint8_t bytes[16];
  using remote_rack = be_bits<0, 0, 1>;
  using iptunl_adj = be_bits<0, 1, 1>;
  using pwhe = be_bits<0, 2, 1>;
  using cgn_enabled = be_bits<0, 3, 1>;
  using adj_down = be_bits<0, 4, 1>;  // FRR takes the backup
  using mgscp_en = be_bits<0, 5, 1>;
  using rx_lag_hash_en = be_bits<0, 6, 1>;  // the bundle hash stands in the adjacency
  using rx_lag_adj = be_bits<0, 7, 1>;      // the output is a bundle: rx::lag_id holds
  using rx_adj_null0 = be_bits<1, 0, 1>;
  using rp_destined = be_bits<1, 1, 1>;
  using rx_punt = be_bits<1, 2, 1>;
  using rx_drop = be_bits<1, 3, 1>;
  using gre_adj = be_bits<1, 4, 1>;
  using gre_ipv6_transport = be_bits<1, 5, 1>;
  using sfi_vxlan = be_bits<1, 6, 1>;
  using hw_np_port = be_bits<2, 0, 8>;
  struct lag {
    using rhb_hash_select = be_bits<3, 0, 8>;
    using lag_hash = be_bits<3, 0, 8>;
    using gre_rhb_1 = be_bits<3, 0, 8>;
  };
  using gre_rhb_2 = be_bits<4, 0, 8>;
  struct rx {
    using vqi_voq = be_bits<5, 0, 24>;
    using lag_id = be_bits<5, 0, 16>;
    using vrf_id = be_bits<5, 0, 16>;
  };
  using pwhe_vc_ll = be_bits<4, 0, 24>;
  using flow_hash_impose = be_bits<7, 0, 1>;
  using if_handle = be_bits<8, 0, 32>;
  struct gre {
    struct ipv4 {
      using ip_dst = be_bits<12, 0, 32>;
    };
    struct ipv6 {
      using gre_encap_index = be_bits<13, 0, 24>;
    };
  };
  struct pwhe_ {
    using vc_hash = be_bits<12, 0, 32>;
  };
  struct sfi_vxlan_ {
    using tep_tx_adj_ptr = be_bits<13, 0, 24>;
  };
};
static_assert(sizeof(rxadj_fields_st) == 16);
