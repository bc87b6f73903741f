#include "testkit/fabric_path.h"

#include "npu/zephra/pkt_buf.h"
#include "npu/zephra/xmit_fab.h"
#include "pktlib/packet_builder.h"
#include "platform/varn/fab_hdr_write.h"
#include "testkit/line_card.h"

namespace testkit {

std::vector<std::uint8_t> udp_frame(std::size_t udp_payload) {
  return pkt::builder()
      .eth(PEER_MAC, ROUTER_MAC)
      .ipv4(pkt::ip4("10.0.0.1"), pkt::ip4("192.0.2.1"))
      .udp(1000, 53)
      .payload(udp_payload)
      .build();
}

std::uint8_t* l3_start(env_t env) { return *ps_get_pkt_start(env) + ETH_BYTES; }
std::uint32_t l3_len(env_t env) { return pkt_get_rx_packet_length(env) - ETH_BYTES; }

std::uint8_t* write_ipv4_uni_header(env_t env, std::uint32_t if_handle) {
  std::uint8_t* fab = l3_start(env) - FAB_HDR_BYTES_UNI;
  plat_fab_hdr_prep_to_write(env, fab);
  plat_fab_hdr_write_ipv4_uni_part_1(env, fab, 0, if_handle);
  return fab;
}

void prep_uni_send(env_t env, std::uint8_t* fab, std::uint32_t len) {
  npu_xmit_pkt_fab_prep(env, fab, FAB_HDR_BYTES_UNI, l3_start(env), len, FLB_GATHER_REQ_LOC, FALSE);
}

}  // namespace testkit
