#include "flowlock.h"

namespace {

struct flowlock_group_st {
  std::uint32_t group;
  std::uint32_t id_mask;
};

constexpr flowlock_group_st FLOWLOCK_GROUPS[] = {
    {FLOWLOCK_GROUP_HOST, 7},  {FLOWLOCK_GROUP_MAC, 15},          {FLOWLOCK_GROUP_OFFLOAD, 15},
    {FLOWLOCK_GROUP_PUNT, 31}, {FLOWLOCK_GROUP_REPLICATION, 255}, {FLOWLOCK_GROUP_TAIL, 255},
};

}  // namespace

std::uint16_t npu_generate_flowlock(std::uint32_t group, std::uint32_t id) {
  for (const flowlock_group_st& g : FLOWLOCK_GROUPS) {
    if (g.group == group) return static_cast<std::uint16_t>(group + (id & g.id_mask));
  }
  return static_cast<std::uint16_t>(group);
}

std::uint16_t npu_get_1st_tailproc_flowlock_id(std::uint32_t flowhash) {
  return npu_generate_flowlock(FLOWLOCK_GROUP_TAIL, flowhash);
}

void npu_flowlock_prepare(env_t) {}
void npu_flowlock_cleanup(env_t) {}
void acquire_ppe_cluster_lock(env_t) {}
void release_ppe_cluster_lock(env_t) {}
