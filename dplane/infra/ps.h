// Generated accessors of the packet state. For each field F of ps_fields.def:
//   ps_put_def_F  first write of F on a path
//   ps_put_mod_F  change of a defined F
//   ps_get_F      read
// All three return the field's address; they differ in the intent they state.
#pragma once

#include <cstdint>

#include "env.h"

#define PS_DMEM(name, type) \
  inline type* ps_field_addr_##name(env_t env) { return &env->ps.f_##name; }
#define PS_TLM(name, type)                                                          \
  inline type* ps_field_addr_##name(env_t env) {                                    \
    return &reinterpret_cast<ps_tlm_fields*>(env->ps.f_thread_local_mem)->f_##name; \
  }
#include "ps_fields.def"
#undef PS_DMEM
#undef PS_TLM

// The flag words live at fixed places at the end of data memory.
inline common_flags_st* ps_field_addr_common_flags(env_t env) { return &env->common_flags; }
inline common_flags2_st* ps_field_addr_common_flags2(env_t env) { return &env->common_flags2; }

void ps_print_bytes(const char* prefix, const char* field, const void* addr, std::uint32_t size);

#define PS_ACCESSORS(name, type)                                                  \
  inline type* ps_put_def_##name(env_t env) { return ps_field_addr_##name(env); } \
  inline type* ps_put_mod_##name(env_t env) { return ps_field_addr_##name(env); } \
  inline type* ps_get_##name(env_t env) { return ps_field_addr_##name(env); }     \
  inline void ps_print_##name(env_t env, const char* prefix, const char* field) { \
    ps_print_bytes(prefix, field, ps_field_addr_##name(env), sizeof(type));       \
  }
#define PS_DMEM(name, type) PS_ACCESSORS(name, type)
#define PS_TLM(name, type) PS_ACCESSORS(name, type)
#include "ps_fields.def"
PS_ACCESSORS(common_flags, common_flags_st)
PS_ACCESSORS(common_flags2, common_flags2_st)
#undef PS_DMEM
#undef PS_TLM

// Number of fields, and the debug table of their addresses. On the NPU every
// thread sees its memories at one address and one table serves all; hosted,
// each thread's memories lie elsewhere, so each thread keeps its own.
#define PS_DMEM(name, type) +1
#define PS_TLM(name, type) +1
inline constexpr std::uint32_t PS_FIELD_COUNT = 2
#include "ps_fields.def"
    ;
#undef PS_DMEM
#undef PS_TLM

struct ps_dbg_entry {
  const char* name;
  void* addr;
};
extern thread_local ps_dbg_entry ps_dbg[PS_FIELD_COUNT];
void ps_dbg_initialize(env_t env);
void ps_initialize(env_t env);
