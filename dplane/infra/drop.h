// Ending a packet by dropping it. Every call of the family is followed by a
// return out of the handler: unless the packet is kept (keep_gpm), the call
// returns with the next packet in data memory.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "global_counters.h"

enum nfpkt_drop_reason_e : std::uint32_t {
  NF_DROP_REASON_UNKNOWN = 0,
  NF_DROP_REASON_ACL_DENY = 1,
  NF_DROP_REASON_ACL_DROP = 2,
  NF_DROP_REASON_UNROUTABLE = 3,
  NF_DROP_REASON_DROP_ADJACENCY = 4,
  NF_DROP_REASON_FRAG_N_DF = 5,
  NF_DROP_REASON_BAD_HDR_CKSUM = 6,
  NF_DROP_REASON_BAD_TOTAL_LENGTH = 7,
  NF_DROP_REASON_BAD_HDR_LENGTH = 8,
  NF_DROP_REASON_BAD_TTL = 9,
  NF_DROP_REASON_POLICER_DROP = 10,
  NF_DROP_REASON_WRED_DROP = 11,
  NF_DROP_REASON_RPF_DROP = 12,
  NF_DROP_REASON_DROP_FOR_US = 13,
  NF_DROP_REASON_BAD_OUTPUT_IF = 14,
  NF_DROP_REASON_HW = 15,
  NF_DROP_REASON_UNSUPPORTED = 16,
};

void drop_packet(env_t env, std::uint32_t drop_counter_index);
void drop_packet_no_counter(env_t env);
void drop_packet_no_counter_mcast(env_t env);
void drop_packet_no_counter_internal(env_t env, boolean_t is_multicast_last, boolean_t increment_np_counter,
                                     std::uint32_t drop_counter_index);
void drop_packet_return_to_main(env_t env, std::uint32_t drop_counter_index);
void record_netflow_drop_reason(env_t env, nfpkt_drop_reason_e drop_reason);
void check_multipass_drop(env_t env);

// Platform forms behind the drop lookups.
void npu_drop_packet_guts(env_t env);
void npu_drop_keep_packet(env_t env);
void npu_drop_capture_inline(env_t env, std::uint32_t drop_reason, const std::uint8_t* pkt_start);
