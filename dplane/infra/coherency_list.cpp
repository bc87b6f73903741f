#include "coherency_list.h"

#include "ps.h"

namespace {

// The place of the first entry of the lookup, or the entry count.
std::uint32_t find(const coherency_cb_st& cb, std::uint32_t lookup_id) {
  std::uint32_t i = 0;
  while (i < cb.num_list_entries && cb.list[i].lookup_id != lookup_id) ++i;
  return i;
}

}  // namespace

void coherency_init(env_t env) { ps_put_def_coherency_cb(env)->num_list_entries = 0; }

void coherency_add_lookup(env_t env, std::uint32_t lookup_id, std::uint32_t addr) {
  coherency_cb_st& cb = *ps_put_mod_coherency_cb(env);
  if (cb.num_list_entries == COHERENCY_LIST_ENTRIES) return;
  coherency_entry_st& e = cb.list[cb.num_list_entries++];
  e.lookup_id = static_cast<std::uint16_t>(lookup_id);
  e.addr = addr;
}

void coherency_delete_lookup(env_t env, std::uint32_t lookup_id) {
  coherency_cb_st& cb = *ps_put_mod_coherency_cb(env);
  const std::uint32_t at = find(cb, lookup_id);
  if (at == cb.num_list_entries) return;
  for (std::uint32_t i = at + 1; i < cb.num_list_entries; ++i) cb.list[i - 1] = cb.list[i];
  --cb.num_list_entries;
}

std::uint32_t coherency_find_lookup_addr(env_t env, std::uint32_t lookup_id) {
  const coherency_cb_st& cb = *ps_get_coherency_cb(env);
  const std::uint32_t at = find(cb, lookup_id);
  return at == cb.num_list_entries ? 0 : cb.list[at].addr.get();
}
