#include "lag_ing.h"

#include "dplane/infra/drop.h"
#include "dplane/infra/hash_bits.h"
#include "dplane/infra/lookup.h"
#include "dplane/lag/lag_hash.h"
#include "platform/varn/fab_hdr_write.h"

namespace {
using info = lag_tbl_info_fields_st;
using member = lag_mem_info_fields_st;
}  // namespace

func_rc_e lag_process_common_ing(env_t env, std::uint32_t lag_id, std::uint32_t lag_hash, std::uint32_t* vqi,
                                 std::uint8_t* lagm) {
  lookup_request_ID_LAG_INFO_ING(env, lag_id);
  lookup_wait_ID_LAG_INFO_ING(env);
  const info& bundle = *lookup_result_ID_LAG_INFO_ING(env);
  if (!info::valid::get(bundle)) {
    drop_packet(env, DROP_LAG_ING_INVALID);
    return RC_PKT_DROP;
  }
  lookup_request_ID_LAG_ING(env, info::global_mem_base_ptr::get(bundle), lag_selection_hash(bundle, lag_hash),
                            info::num_members_global::get(bundle));
  lookup_wait_ID_LAG_ING(env);
  const mod_lag_st& chosen = *lookup_result_ID_LAG_ING(env);
  if (!member::bf::valid::get(chosen.fields)) {
    drop_packet(env, DROP_LAG_ING_INVALID);
    return RC_PKT_DROP;
  }
  *lagm = static_cast<std::uint8_t>(npu_mod_fields_st::mod_rem::get(chosen.mod));
  *vqi = member::vqi_voq::get(chosen.fields);
  return RC_SUCCESS;
}

func_rc_e lag_process_l2_uni_ing(env_t env, std::uint32_t lag_id, std::uint32_t lag_hash, std::uint32_t* vqi,
                                 std::uint8_t* lagm) {
  return lag_process_common_ing(env, lag_id, lag_hash, vqi, lagm);
}

func_rc_e lag_l3_ing(env_t env, void* fab, std::uint32_t lag_id, std::uint32_t lag_hash) {
  std::uint32_t vqi = 0;
  std::uint8_t lagm = 0;
  const func_rc_e rc = lag_process_common_ing(env, lag_id, lag_hash, &vqi, &lagm);
  if (rc != RC_SUCCESS) return rc;
  plat_fab_hdr_write_l3_uni_lag(fab, lagm);
  plat_fab_hdr_write_vqi_voq(fab, vqi);
  return RC_SUCCESS;
}

func_rc_e lag_process_l3_ing(env_t env, void* fab, std::uint32_t lag_id, std::uint32_t raw_hash) {
  return lag_l3_ing(env, fab, lag_id, hash_get_lag_bits(raw_hash));
}
