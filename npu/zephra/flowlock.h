// The platform forms of the flow locks: the lock numbers and the hooks
// around them. A lock number goes to the FLB with a keep-form send, a
// keep-form drop or a conversion (dplane/infra/flow_order.h).
#pragma once

#include <cstdint>

#include "fwc_types.h"

// The lock groups and the identifiers folded into them; any other group is
// its own number.
inline constexpr std::uint32_t FLOWLOCK_GROUP_HOST = 184;
inline constexpr std::uint32_t FLOWLOCK_GROUP_MAC = 192;
inline constexpr std::uint32_t FLOWLOCK_GROUP_OFFLOAD = 208;
inline constexpr std::uint32_t FLOWLOCK_GROUP_PUNT = 224;
inline constexpr std::uint32_t FLOWLOCK_GROUP_REPLICATION = 256;
inline constexpr std::uint32_t FLOWLOCK_GROUP_TAIL = 768;

std::uint16_t npu_generate_flowlock(std::uint32_t group, std::uint32_t id);
// The lock of a packet's tail work: group 768 by the flow hash.
std::uint16_t npu_get_1st_tailproc_flowlock_id(std::uint32_t flowhash);

// Hooks that do nothing on this platform.
void npu_flowlock_prepare(env_t env);
void npu_flowlock_cleanup(env_t env);
void acquire_ppe_cluster_lock(env_t env);
void release_ppe_cluster_lock(env_t env);
