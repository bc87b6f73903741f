#include "tcam.h"

#include "dma_common.h"

namespace {

constexpr std::uint32_t TCAM_RESP_BYTES = 8;
constexpr std::uint32_t PROFILE_MASK = 0x7F;

void single(env_t env, std::uint32_t key_size, std::uint32_t resource_id, std::uint32_t profile_id,
            std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
            boolean_t bmr_enable) {
  tcam_dma_initiate(env, resource_id, itc_search_word(key_size, profile_id, bmr_enable), req_loc, req_size, resp_loc,
                    TCAM_RESP_BYTES, req_cmd_loc);
}

void multi(env_t env, std::uint32_t key_size, std::uint32_t resource_id, std::uint32_t profile_id,
           std::uint32_t profile_id2, std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size,
           std::uint32_t req_cmd_loc, boolean_t bmr_enable) {
  tcam_dma_initiate(env, resource_id, itc_multi_search_word(key_size, profile_id, profile_id2, bmr_enable), req_loc,
                    req_size, resp_loc, TCAM_RESP_BYTES, req_cmd_loc);
}

}  // namespace

std::uint32_t translate_tcam_resource_id(std::uint32_t logical_resource_id) {
  return logical_resource_id == 0 || logical_resource_id == 2 ? RES_ITC_DIRECT : RES_ITC_ACL_QOS;
}

std::uint32_t itc_search_word(std::uint32_t key_size, std::uint32_t profile_id, boolean_t bmr_enable) {
  sse_itc_desc_fmt w{};
  sse_itc_desc_fmt::cmd::set(w, ITC_CMD_SEARCH);
  sse_itc_desc_fmt::key_size::set(w, key_size);
  sse_itc_desc_fmt::bmr_en_0::set(w, bmr_enable);
  sse_itc_desc_fmt::profile_0::set(w, profile_id & PROFILE_MASK);
  return be_bits<0, 0, 32>::get(w);
}

std::uint32_t itc_multi_search_word(std::uint32_t key_size, std::uint32_t profile_id, std::uint32_t profile_id2,
                                    boolean_t bmr_enable) {
  sse_itc_desc_fmt w{};
  be_bits<0, 0, 32>::set(w, itc_search_word(key_size, profile_id, bmr_enable));
  sse_itc_desc_fmt::ms::set(w, 1);
  sse_itc_desc_fmt::bmr_en_1::set(w, bmr_enable);
  sse_itc_desc_fmt::profile_1::set(w, profile_id2 & PROFILE_MASK);
  return be_bits<0, 0, 32>::get(w);
}

void tcam_dma_initiate(env_t env, std::uint32_t resource_id, std::uint32_t cmd_word, std::uint32_t req_loc,
                       std::uint32_t req_size, std::uint32_t resp_loc, std::uint32_t resp_size,
                       std::uint32_t req_cmd_loc) {
  dma_cell_words(env, req_loc + req_cmd_loc)[0] = cmd_word;
  dma_initiate(env, dma_build_cmd(resource_id, req_loc, req_size, resp_loc, resp_size));
}

void itc_lookup_80b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                    std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                    std::uint8_t) {
  single(env, ITC_KEY_80, resource_id, profile_id, req_loc, resp_loc, req_size, req_cmd_loc, bmr_enable);
}
void itc_lookup_160b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                     std::uint8_t) {
  single(env, ITC_KEY_160, resource_id, profile_id, req_loc, resp_loc, req_size, req_cmd_loc, bmr_enable);
}
void itc_lookup_320b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc) {
  single(env, ITC_KEY_320, resource_id, profile_id, req_loc, resp_loc, req_size, req_cmd_loc, FALSE);
}
void itc_lookup_400b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                     std::uint8_t) {
  single(env, ITC_KEY_400, resource_id, profile_id, req_loc, resp_loc, req_size, req_cmd_loc, bmr_enable);
}
void itc_lookup_640b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                     std::uint8_t) {
  single(env, ITC_KEY_640, resource_id, profile_id, req_loc, resp_loc, req_size, req_cmd_loc, bmr_enable);
}
void itc_lookup_multi_320b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t profile_id2,
                           std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size,
                           std::uint32_t req_cmd_loc, boolean_t bmr_enable, std::uint8_t) {
  multi(env, ITC_KEY_320, resource_id, profile_id, profile_id2, req_loc, resp_loc, req_size, req_cmd_loc, bmr_enable);
}
void itc_lookup_multi_400b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t profile_id2,
                           std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size,
                           std::uint32_t req_cmd_loc, boolean_t bmr_enable, std::uint8_t) {
  multi(env, ITC_KEY_400, resource_id, profile_id, profile_id2, req_loc, resp_loc, req_size, req_cmd_loc, bmr_enable);
}
void itc_lookup_multi_640b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t profile_id2,
                           std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size,
                           std::uint32_t req_cmd_loc, boolean_t bmr_enable, std::uint8_t) {
  multi(env, ITC_KEY_640, resource_id, profile_id, profile_id2, req_loc, resp_loc, req_size, req_cmd_loc, bmr_enable);
}

void npu_tcam_lookup_80b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                         std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                         boolean_t bmr_enable, std::uint8_t bmr) {
  itc_lookup_80b(env, translate_tcam_resource_id(logical_resource_id), profile_id, req_loc, resp_loc, req_size,
                 req_cmd_loc, bmr_enable, bmr);
}
void npu_tcam_lookup_160b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                          boolean_t bmr_enable, std::uint8_t bmr) {
  itc_lookup_160b(env, translate_tcam_resource_id(logical_resource_id), profile_id, req_loc, resp_loc, req_size,
                  req_cmd_loc, bmr_enable, bmr);
}
void npu_tcam_lookup_320b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc) {
  itc_lookup_320b(env, translate_tcam_resource_id(logical_resource_id), profile_id, req_loc, resp_loc, req_size,
                  req_cmd_loc);
}
void npu_tcam_lookup_400b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                          boolean_t bmr_enable, std::uint8_t bmr) {
  itc_lookup_400b(env, translate_tcam_resource_id(logical_resource_id), profile_id, req_loc, resp_loc, req_size,
                  req_cmd_loc, bmr_enable, bmr);
}
void npu_tcam_lookup_640b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                          boolean_t bmr_enable, std::uint8_t bmr) {
  itc_lookup_640b(env, translate_tcam_resource_id(logical_resource_id), profile_id, req_loc, resp_loc, req_size,
                  req_cmd_loc, bmr_enable, bmr);
}
void npu_tcam_lookup_multi_320b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id,
                                std::uint32_t profile_id2, std::uint32_t req_loc, std::uint32_t resp_loc,
                                std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                                std::uint8_t bmr) {
  itc_lookup_multi_320b(env, translate_tcam_resource_id(logical_resource_id), profile_id, profile_id2, req_loc,
                        resp_loc, req_size, req_cmd_loc, bmr_enable, bmr);
}
void npu_tcam_lookup_multi_400b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id,
                                std::uint32_t profile_id2, std::uint32_t req_loc, std::uint32_t resp_loc,
                                std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                                std::uint8_t bmr) {
  itc_lookup_multi_400b(env, translate_tcam_resource_id(logical_resource_id), profile_id, profile_id2, req_loc,
                        resp_loc, req_size, req_cmd_loc, bmr_enable, bmr);
}
void npu_tcam_lookup_multi_640b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id,
                                std::uint32_t profile_id2, std::uint32_t req_loc, std::uint32_t resp_loc,
                                std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                                std::uint8_t bmr) {
  itc_lookup_multi_640b(env, translate_tcam_resource_id(logical_resource_id), profile_id, profile_id2, req_loc,
                        resp_loc, req_size, req_cmd_loc, bmr_enable, bmr);
}

std::uint32_t tcam_multi_hit_addr_0(const tcam_multi_search_response_st& resp) {
  return (tcam_multi_search_response_st::hit_addr_0h::get(resp) << TCAM_HIT_ADDR_0L_BITS) |
         tcam_multi_search_response_st::hit_addr_0l::get(resp);
}
