// Handlers of the ingress dispatch for packets that the fast handlers do not
// take: exception vectors, non-wire vectors, decode misses, satellite ports.
#pragma once

#include "fwc_types.h"

boolean_t handle_protdecode_tcam_miss(env_t env);
boolean_t handle_non_wire_vector(env_t env);
boolean_t handle_sat_port(env_t env);
void plat_remove_vq_tag(env_t env);

void handle_ipv4_exception(env_t env, boolean_t global_feature_enabled);
void handle_ipv6_exception(env_t env, boolean_t global_feature_enabled);
void handle_mpls_exception(env_t env, boolean_t global_feature_enabled);
void handle_vpws_exception(env_t env, boolean_t global_feature_enabled);
void handle_vpls_exception(env_t env, boolean_t global_feature_enabled);
