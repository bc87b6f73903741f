#include "resolve.h"

#include <algorithm>
#include <cstdio>

#include "hash_rows.h"
#include "lock_rows.h"

namespace gen {

namespace {

// What a row of each code form gives and what the engine takes from it.
struct form_rules {
  bool cell;                 // the row names its request cell
  bool result;               // the row names a result type (and a slot)
  std::uint32_t cell_bytes;  // request bytes the engine takes from the cell
  bool table;                // the request needs the table's address
};

form_rules rules_of(form f) {
  switch (f) {
    case form::read:
      return {false, true, 0, true};
    case form::mod_read:
    case form::tlu_mod_read_paged:
      return {false, true, 16, true};
    case form::glb_cnt:
      return {true, false, 0, false};
    case form::stats_add_inc:
    case form::stats_add_inc_split:
    case form::stats_uidb_add_inc:
    case form::stats_uidb_add_inc_split:
    case form::stats_uidb_add_inc_twin:
    case form::stats_inc_dyn_pool_cnt:
      return {true, false, 12, false};
    case form::stats_read_clr_dyn_pool_cnt:
      return {false, true, 8, false};
    case form::plu_ipv4:
      return {false, true, 8, false};
    case form::plu_ipv6:
      return {false, true, 20, false};
    case form::flowlock_convert:
      return {true, false, 8, false};
    case form::view:
      return {false, true, 0, false};
    case form::none:
      return {false, false, 0, false};
  }
  return {};
}

// The forms that read a table's record into the slot.
bool is_record_read(form f) { return f == form::read || f == form::mod_read || f == form::tlu_mod_read_paged; }

// A protected record is re-read as 32 bytes over its slot.
constexpr std::uint32_t COHERENT_RECORD_BYTES = 32;
// A modulus read answers with the remainder block in front of the record.
constexpr std::uint32_t MOD_HEADER_BYTES = 16;
// The TLU's paged modulus read answers with the chosen record alone.
constexpr std::uint32_t TLU_MOD_RECORD_BYTES = 16;
// Responses come in 8-byte units.
constexpr std::uint32_t RESPONSE_UNIT = 8;

std::string hex(std::uint32_t v) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%03X", v);
  return buf;
}

struct region {
  std::uint32_t begin;
  std::uint32_t end;
  const char* what;
};

std::string describe(const region& r) { return std::string(r.what) + " " + hex(r.begin) + ".." + hex(r.end - 1); }

std::vector<region> regions_of(const lookup& l) {
  std::vector<region> out;
  if (l.hash) {
    for (const hash_region& h : hash_regions(l)) out.push_back({h.begin, h.begin + h.bytes, h.what});
    return out;
  }
  if (l.cell_bytes > 0) out.push_back({l.cell, l.cell + l.cell_bytes, "cell"});
  if (l.slot_bytes > 0) out.push_back({l.slot, l.slot + l.slot_bytes, "slot"});
  return out;
}

bool is_all(const lookup& l) { return std::find(l.r->live.begin(), l.r->live.end(), "all") != l.r->live.end(); }

// The live group two lookups share, if any.
std::optional<std::string> shared_group(const lookup& a, const lookup& b) {
  if (is_all(a) || is_all(b)) return std::string("all");
  for (const std::string& g : a.r->live) {
    if (std::find(b.r->live.begin(), b.r->live.end(), g) != b.r->live.end()) return g;
  }
  return std::nullopt;
}

class row_checker {
 public:
  row_checker(const catalogue& cat, errors& errs) : cat_(cat), errs_(errs) {}

  void fail(const row& r, const std::string& what) {
    errs_.push_back(r.pos.file + ":" + std::to_string(r.pos.line) + ": ID_" + r.id + ": " + what);
    ok_ = false;
  }

  // Fills l from its row; false if the row breaks a rule.
  bool resolve_row(const row& r, lookup& l) {
    ok_ = true;
    l.r = &r;
    if (!split_identifier(r)) return false;
    if (is_lock_row(cat_, r, l)) {
      resolve_lock_row(cat_, r, l, [&](const std::string& what) { fail(r, what); });
      return ok_;
    }
    if (const hash_table* t = cat_.hash_table_named(base_)) {
      resolve_hash_row(cat_, r, *t, l, [&](const std::string& what) { fail(r, what); });
      return ok_;
    }
    if (!find_engine(r, l)) return false;
    const form code = l.code();
    const form_rules rules = rules_of(code);
    check_attributes(r, code, rules);
    if (rules.table) find_table(r, code, l);
    if (!ok_) return false;

    const bool coherent = is_record_read(code) && cat_.ids.protected_tables.count(base_);
    l.is_protected = coherent;
    l.record_offset = code == form::mod_read ? MOD_HEADER_BYTES : 0;
    l.has_alloc = code == form::stats_add_inc_split || code == form::stats_uidb_add_inc_split;
    if (rules.result) {
      if (code != form::view && l.eng->response == 0) fail(r, "its engine gives no response size");
      l.slot = r.slot.value_or(0);
      if (code != form::view) {
        l.slot_bytes = (l.eng->response + RESPONSE_UNIT - 1) / RESPONSE_UNIT * RESPONSE_UNIT;
        if (coherent) l.slot_bytes = std::max(l.slot_bytes, l.record_offset + COHERENT_RECORD_BYTES);
      }
    }
    l.cell = rules.cell ? *r.cell : l.slot;
    l.cell_bytes = rules.cell_bytes;
    return ok_;
  }

 private:
  bool split_identifier(const row& r) {
    const std::size_t sep = r.id.find("__");
    base_ = r.id.substr(0, sep);
    const std::string tag = sep == std::string::npos ? "" : r.id.substr(sep + 2);
    if (!cat_.ids.engine_of.count(base_) && !cat_.ids.hash_ids.count(base_) && !cat_.hash_table_named(base_)) {
      fail(r, "base name " + base_ + " is not in identifiers.txt");
    }
    if (sep != std::string::npos && !cat_.ids.tags.count(tag)) fail(r, "tag " + tag + " is not in identifiers.txt");
    return ok_;
  }

  bool find_engine(const row& r, lookup& l) {
    auto it = cat_.ids.engine_of.find(base_);
    if (it == cat_.ids.engine_of.end()) {
      if (r.calls.empty()) fail(r, "base name " + base_ + " stands under no engine yet");
      static const engine platform_form;
      l.eng = &platform_form;
      return ok_;
    }
    l.eng = &cat_.ids.engines[it->second];
    if (r.calls.empty() && l.eng->code == form::none) {
      fail(r, "the engine of " + base_ + " has no code form yet");
    }
    if (r.ipv6) ipv6_engine(r, l);
    return ok_;
  }

  // The route tables are named once for both families; their IPv6 search
  // is the engine of the plu_ipv6 form.
  void ipv6_engine(const row& r, lookup& l) {
    if (l.eng->code != form::plu_ipv4) return fail(r, "family=ipv6 belongs to the IPv4 route searches");
    for (const engine& e : cat_.ids.engines) {
      if (e.code == form::plu_ipv6) {
        l.eng = &e;
        return;
      }
    }
    fail(r, "no engine has the plu_ipv6 form");
  }

  void check_attributes(const row& r, form code, const form_rules& rules) {
    if (rules.cell && !r.cell) fail(r, "needs cell=<request cell>");
    if (!rules.cell && r.cell) fail(r, "takes no cell=: its request cell is its slot");
    if (rules.result && r.type.empty()) fail(r, "needs type=<result type>");
    if (rules.result && !r.slot && !(code == form::view && !r.view.empty())) fail(r, "needs slot=<result slot>");
    if (!rules.result && (r.slot || !r.type.empty())) fail(r, "has no result: slot= and type= have no meaning");
    if (code != form::view && !r.view.empty()) fail(r, "view= belongs to lookups without a request of their own");
    const bool occupies = rules.cell_bytes > 0 || (rules.result && code != form::view);
    if (occupies && r.live.empty()) fail(r, "occupies data memory but names no live group (live=)");
    if (!occupies && !r.live.empty()) fail(r, "occupies no data memory, so live= has no meaning");
  }

  void find_table(const row& r, form code, lookup& l) {
    auto it = cat_.tables.find(base_);
    if (it == cat_.tables.end()) {
      fail(r, "table " + base_ + " has no address in tables.txt");
      return;
    }
    l.addr = &it->second;
    const bool modulus = code == form::mod_read || code == form::tlu_mod_read_paged;
    if (modulus && l.addr->kind != addr_kind::paged) {
      fail(r, "a read with modulus needs a paged table, and " + base_ + " is not one");
    }
    if (code == form::tlu_mod_read_paged && l.eng->response != TLU_MOD_RECORD_BYTES) {
      fail(r, "the TLU's paged modulus read answers with the 16-byte record alone, and the engine says " +
                  std::to_string(l.eng->response) + " bytes");
    }
  }

  const catalogue& cat_;
  errors& errs_;
  bool ok_ = true;
  std::string base_;
};

void check_place(row_checker& check, const lookup& l) {
  const row& r = *l.r;
  if (l.hash) {
    for (const region& g : regions_of(l)) {
      if (g.begin % CELL != 0) check.fail(r, describe(g) + " does not start at a multiple of 16");
      if (g.end > DMA_REACH) check.fail(r, describe(g) + " reaches past the first 1024 bytes of data memory");
    }
    return;
  }
  const bool has_cell = rules_of(l.code()).cell || l.cell_bytes > 0;
  if (has_cell && !rules_of(l.code()).result) {
    if (l.cell % CELL != 0) check.fail(r, "cell " + hex(l.cell) + " is not a multiple of 16");
    if (l.cell + std::max(l.cell_bytes, 1u) > DMA_REACH) {
      check.fail(r, "cell " + hex(l.cell) + " lies outside the first 1024 bytes of data memory");
    }
  }
  if (l.has_result()) {
    if (l.slot % CELL != 0) check.fail(r, "slot " + hex(l.slot) + " is not a multiple of 16");
    const std::uint32_t end = l.slot + std::max(l.slot_bytes, 1u);
    if (end > DMA_REACH) {
      check.fail(r, "slot " + hex(l.slot) + " with " + std::to_string(l.slot_bytes) +
                        " bytes reaches past the first 1024 bytes of data memory");
    }
  }
}

// The two rows of one lock may share a cell: the release comes after the
// acquire's answer has been read.
bool same_lock(const lookup& a, const lookup& b) { return !a.lock.empty() && a.lock == b.lock; }

void check_overlaps(row_checker& check, const std::vector<lookup>& all) {
  for (std::size_t j = 0; j < all.size(); ++j) {
    for (std::size_t i = 0; i < j; ++i) {
      auto group = shared_group(all[i], all[j]);
      if (!group || same_lock(all[i], all[j])) continue;
      for (const region& b : regions_of(all[j])) {
        for (const region& a : regions_of(all[i])) {
          if (a.begin < b.end && b.begin < a.end) {
            check.fail(*all[j].r, describe(b) + " overlaps " + describe(a) + " of ID_" + all[i].r->id +
                                      ", both live in group " + *group);
          }
        }
      }
    }
  }
}

void link_views(row_checker& check, std::vector<lookup>& all) {
  for (lookup& l : all) {
    if (l.code() != form::view || l.r->view.empty()) continue;
    auto parent = std::find_if(all.begin(), all.end(), [&](const lookup& p) { return p.r->id == l.r->view; });
    if (parent == all.end() || parent->code() == form::view || !parent->has_result()) {
      check.fail(*l.r, "views ID_" + l.r->view + ", which is no lookup with a result of its own");
      continue;
    }
    l.parent = &*parent;
    l.is_protected = parent->is_protected;
    l.record_offset = parent->record_offset;
    if (!l.r->slot) l.slot = parent->slot;
  }
}

}  // namespace

std::vector<lookup> resolve(const catalogue& cat, errors& errs) {
  row_checker check(cat, errs);
  std::vector<lookup> all;
  all.reserve(cat.rows.size());
  std::set<std::string> seen;
  for (const row& r : cat.rows) {
    if (!seen.insert(r.id).second) {
      check.fail(r, "has a second row");
      continue;
    }
    lookup l;
    if (check.resolve_row(r, l)) all.push_back(l);
  }
  link_views(check, all);
  check_lock_pairs(cat, [&](const row& r, const std::string& what) { check.fail(r, what); });
  link_search_locks(all, [&](const row& r, const std::string& what) { check.fail(r, what); });
  for (const lookup& l : all) check_place(check, l);
  check_overlaps(check, all);
  return all;
}

std::vector<std::string> enum_names(const catalogue& cat) {
  std::vector<std::string> names = cat.ids.names;
  std::set<std::string> seen(names.begin(), names.end());
  for (const row& r : cat.rows) {
    lookup probe;
    const bool search = cat.hash_table_named(r.id.substr(0, r.id.find("__"))) != nullptr && !is_lock_row(cat, r, probe);
    for (const std::string& id : search ? hash_row_ids(r) : std::vector<std::string>{r.id}) {
      if (seen.insert(id).second) names.push_back(id);
    }
  }
  return names;
}

}  // namespace gen
