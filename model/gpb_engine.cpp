#include "gpb_engine.h"

#include <cstring>
#include <string>

#include "gpb_defs.h"
#include "npu.h"

namespace model {

namespace {

constexpr std::uint32_t LOWEST_HEAD_SEGMENT = GPB_FIRST_HEAD_SEGMENT - (GPM_MAX_BLOCKS - 1);

bool is_engine_of(std::uint32_t resource, std::uint32_t base) {
  return resource >= base && (resource - base) % GPB_RESOURCE_STRIDE == 0 &&
         (resource - base) / GPB_RESOURCE_STRIDE < GPB_ENGINES;
}

// What is wrong with a request, or an empty string.
std::string check(std::uint32_t resource, const gpb_alloc_request_st& req, std::uint32_t resp_bytes) {
  const bool ingress = is_engine_of(resource, GPB_RESOURCE_INGRESS);
  const std::uint32_t cmd = gpb_alloc_request_st::cmd::get(req);
  if (cmd != (ingress ? GPB_CMD_ALLOC_INGRESS : GPB_CMD_ALLOC_EGRESS)) {
    return "head allocation command " + std::to_string(cmd) + " on the " + (ingress ? "ingress" : "egress") +
           " engine " + std::to_string(resource);
  }
  const std::uint32_t handle = gpb_alloc_request_st::packet_handle::get(req);
  const std::uint32_t base = ingress ? GPB_RESOURCE_INGRESS : GPB_RESOURCE_EGRESS;
  if ((resource - base) / GPB_RESOURCE_STRIDE != (handle & (GPB_ENGINES - 1))) {
    return "head allocation for packet handle " + std::to_string(handle) + " on engine " + std::to_string(resource) +
           ", which does not serve it";
  }
  const std::uint32_t segment = gpb_alloc_request_st::virtual_segment::get(req);
  if (segment < LOWEST_HEAD_SEGMENT || segment > GPB_FIRST_HEAD_SEGMENT) {
    return "head allocation of segment " + std::to_string(segment) + ", outside the head space";
  }
  if (resp_bytes < sizeof(gpb_alloc_response_)) return "head allocation without room for its answer";
  return {};
}

}  // namespace

void gpb_engine::limit_grants(std::uint32_t n) { grants_left_ = n; }

void gpb_engine::grant_all() { grants_left_ = UNLIMITED; }

bool gpb_engine::decide() {
  ++requests_;
  std::int64_t left = grants_left_.load();
  while (left != UNLIMITED) {
    if (left == 0) return false;
    if (grants_left_.compare_exchange_weak(left, left - 1)) return true;
  }
  return true;
}

bool is_gpb_resource(std::uint32_t resource) {
  return is_engine_of(resource, GPB_RESOURCE_INGRESS) || is_engine_of(resource, GPB_RESOURCE_EGRESS);
}

void execute_gpb(npu_thread& t, std::uint32_t resource, std::uint32_t req_loc, std::uint32_t resp_loc,
                 std::uint32_t resp_bytes) {
  gpb_alloc_request_st req;
  std::memcpy(req.bytes, t.dmem.data() + req_loc, sizeof req.bytes);
  if (const std::string broke = check(resource, req, resp_bytes); !broke.empty()) return t.owner->breach(t, broke);
  gpb_alloc_response_ resp{};
  gpb_alloc_response_::ack::set(resp, t.owner->gpb().decide() ? GPB_ACK_GRANTED : GPB_ACK_REFUSED);
  std::memcpy(t.dmem.data() + resp_loc, resp.bytes, sizeof resp.bytes);
}

}  // namespace model
