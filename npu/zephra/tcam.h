// TCAM searches through the ITC. A path builds its key in place in a cell,
// with 4 bytes free in front for word 0 (and on resource 59 the range
// stage's 16-byte header in front of that), and issues one request; the
// one-cell answer holds a hit flag and the hit address, which is the record
// index of the feature's result table. A multi search looks the one key up
// in two profiles. Locations are data memory offsets; sizes are in bytes,
// and req_size counts from req_loc, the start of the whole request.
#pragma once

#include <cstdint>

#include "fwc_types.h"
#include "tcam_defs.h"

// Logical resources 0 and 2 are the direct searches (63); the others take
// the range stage (59).
std::uint32_t translate_tcam_resource_id(std::uint32_t logical_resource_id);

// Word 0 of a search of one profile, and of two.
std::uint32_t itc_search_word(std::uint32_t key_size, std::uint32_t profile_id, boolean_t bmr_enable);
std::uint32_t itc_multi_search_word(std::uint32_t key_size, std::uint32_t profile_id, std::uint32_t profile_id2,
                                    boolean_t bmr_enable);

// Stores cmd_word at req_loc + req_cmd_loc and sends the request.
void tcam_dma_initiate(env_t env, std::uint32_t resource_id, std::uint32_t cmd_word, std::uint32_t req_loc,
                       std::uint32_t req_size, std::uint32_t resp_loc, std::uint32_t resp_size,
                       std::uint32_t req_cmd_loc);

// Single searches. The bmr argument is the engine's; the request carries
// only bmr_enable.
void itc_lookup_80b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                    std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                    std::uint8_t bmr);
void itc_lookup_160b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                     std::uint8_t bmr);
void itc_lookup_320b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc);
void itc_lookup_400b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                     std::uint8_t bmr);
void itc_lookup_640b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                     std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                     std::uint8_t bmr);
// Multi searches: the answer is tcam_multi_search_response_st.
void itc_lookup_multi_320b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t profile_id2,
                           std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size,
                           std::uint32_t req_cmd_loc, boolean_t bmr_enable, std::uint8_t bmr);
void itc_lookup_multi_400b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t profile_id2,
                           std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size,
                           std::uint32_t req_cmd_loc, boolean_t bmr_enable, std::uint8_t bmr);
void itc_lookup_multi_640b(env_t env, std::uint32_t resource_id, std::uint32_t profile_id, std::uint32_t profile_id2,
                           std::uint32_t req_loc, std::uint32_t resp_loc, std::uint32_t req_size,
                           std::uint32_t req_cmd_loc, boolean_t bmr_enable, std::uint8_t bmr);

// The same with a logical resource.
void npu_tcam_lookup_80b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                         std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                         boolean_t bmr_enable, std::uint8_t bmr);
void npu_tcam_lookup_160b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                          boolean_t bmr_enable, std::uint8_t bmr);
void npu_tcam_lookup_320b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc);
void npu_tcam_lookup_400b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                          boolean_t bmr_enable, std::uint8_t bmr);
void npu_tcam_lookup_640b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id, std::uint32_t req_loc,
                          std::uint32_t resp_loc, std::uint32_t req_size, std::uint32_t req_cmd_loc,
                          boolean_t bmr_enable, std::uint8_t bmr);
void npu_tcam_lookup_multi_320b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id,
                                std::uint32_t profile_id2, std::uint32_t req_loc, std::uint32_t resp_loc,
                                std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                                std::uint8_t bmr);
void npu_tcam_lookup_multi_400b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id,
                                std::uint32_t profile_id2, std::uint32_t req_loc, std::uint32_t resp_loc,
                                std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                                std::uint8_t bmr);
void npu_tcam_lookup_multi_640b(env_t env, std::uint32_t logical_resource_id, std::uint32_t profile_id,
                                std::uint32_t profile_id2, std::uint32_t req_loc, std::uint32_t resp_loc,
                                std::uint32_t req_size, std::uint32_t req_cmd_loc, boolean_t bmr_enable,
                                std::uint8_t bmr);

// The first profile's hit address of a multi answer, rejoined from its two parts.
std::uint32_t tcam_multi_hit_addr_0(const tcam_multi_search_response_st& resp);
