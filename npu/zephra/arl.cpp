#include "arl.h"

namespace {

constexpr std::uint32_t COMMON_CONFIG = 0;
constexpr std::uint32_t IPV6_REPLACEMENT = 1;

arl_request_st* common_header(env_t env, void* key, boolean_t is_ipv4) {
  return arl_header_init_internal(env, key, COMMON_CONFIG, is_ipv4 ? 0 : IPV6_REPLACEMENT);
}

}  // namespace

arl_request_st* arl_header_init_internal(env_t, void* acl_key, std::uint32_t config_ptr,
                                         std::uint32_t replacement_ptr) {
  auto* arl = reinterpret_cast<arl_request_st*>(static_cast<std::uint8_t*>(acl_key) - TCAM_ARL_KEY_DISTANCE);
  arl_request_st::word_0::set(*arl, (config_ptr << 10) | (replacement_ptr << 2));
  return arl;
}

void arl_key_init_internal(env_t, arl_request_st* arl, std::uint16_t range_value_3, std::uint32_t range_value_2,
                           std::uint32_t range_value_1, std::uint32_t range_value_0) {
  arl_request_st::range_value_3::set(*arl, range_value_3);
  arl_request_st::range_value_2::set(*arl, range_value_2);
  arl_request_st::range_value_1::set(*arl, range_value_1);
  arl_request_st::range_value_0::set(*arl, range_value_0);
}

void arl_key_init_common_ING(env_t env, void* key, boolean_t is_ipv4, std::uint16_t range_value_3,
                             std::uint32_t range_value_2, std::uint32_t range_value_1, std::uint32_t range_value_0) {
  arl_key_init_internal(env, common_header(env, key, is_ipv4), range_value_3, range_value_2, range_value_1,
                        range_value_0);
}

void arl_key_init_common_EGR(env_t env, void* key, boolean_t is_ipv4, std::uint16_t range_value_3,
                             std::uint32_t range_value_2, std::uint32_t range_value_1, std::uint32_t range_value_0) {
  arl_key_init_common_ING(env, key, is_ipv4, range_value_3, range_value_2, range_value_1, range_value_0);
}

void arl_header_only_init_common_ING(env_t env, void* acl_key, boolean_t is_ipv4) {
  common_header(env, acl_key, is_ipv4);
}

void arl_header_only_init_common_EGR(env_t env, void* acl_key, boolean_t is_ipv4) {
  common_header(env, acl_key, is_ipv4);
}
