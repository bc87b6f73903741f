// The range stage (ARL) in front of an ACL or QoS search on resource 59: a
// 16-byte header, 20 bytes in front of the key, saying which range
// configuration applies, where in the key its results go, and the values
// it tests.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "tcam_defs.h"

// acl_key points at the key behind the command word. word_0 :=
// (config_ptr << 10) | (replacement_ptr << 2).
arl_request_st* arl_header_init_internal(env_t env, void* acl_key, std::uint32_t config_ptr,
                                         std::uint32_t replacement_ptr);
void arl_key_init_internal(env_t env, arl_request_st* arl, std::uint16_t range_value_3, std::uint32_t range_value_2,
                           std::uint32_t range_value_1, std::uint32_t range_value_0);

// The common ACL header: IPv4 keys use configuration 0 with no replacement,
// IPv6 keys replacement 1 (word_0 = 4); with the four values, or alone.
void arl_key_init_common_ING(env_t env, void* key, boolean_t is_ipv4, std::uint16_t range_value_3,
                             std::uint32_t range_value_2, std::uint32_t range_value_1, std::uint32_t range_value_0);
void arl_key_init_common_EGR(env_t env, void* key, boolean_t is_ipv4, std::uint16_t range_value_3,
                             std::uint32_t range_value_2, std::uint32_t range_value_1, std::uint32_t range_value_0);
void arl_header_only_init_common_ING(env_t env, void* acl_key, boolean_t is_ipv4);
void arl_header_only_init_common_EGR(env_t env, void* acl_key, boolean_t is_ipv4);
