#include "lock_rows.h"

#include <map>

#include "parse.h"
#include "text.h"

namespace gen {

namespace {

constexpr const char* ACQUIRE_SUFFIX = "__ACQUIRE";
constexpr const char* RELEASE_SUFFIX = "__RELEASE";
constexpr std::uint32_t MAX_LOCK_BITS = 16;

bool ends_with(const std::string& s, const std::string& suffix) {
  return s.size() > suffix.size() && s.compare(s.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

void parse_lock_bitmap(const std::vector<std::string>& words, int line, catalogue& cat, const line_report& report) {
  const std::optional<std::uint32_t> base = words.size() == 3 ? number_of(words[1]) : std::nullopt;
  const std::uint32_t bits = words.size() == 3 ? number_of(words[2]).value_or(0) : 0;
  if (!base || bits == 0 || bits > MAX_LOCK_BITS || *base % 4 != 0) {
    report(line, "a lock bitmap line is <family> <first word, a multiple of 4> <lock number bits, 1 to 16>");
    return;
  }
  if (!cat.lock_bitmaps.emplace(words[0], lock_bitmap{*base, bits}).second) {
    report(line, "lock family " + words[0] + " has two bitmaps");
  }
}

bool is_lock_row(const catalogue& cat, const row& r, lookup& l) {
  for (const char* suffix : {ACQUIRE_SUFFIX, RELEASE_SUFFIX}) {
    if (!ends_with(r.id, suffix)) continue;
    const std::string lock = r.id.substr(0, r.id.size() - std::string(suffix).size());
    auto family = cat.ids.lock_family.find(lock);
    if (family == cat.ids.lock_family.end()) return false;
    l.lock = lock;
    l.lock_family = family->second;
    l.lock_release = suffix == RELEASE_SUFFIX;
    return true;
  }
  return false;
}

void resolve_lock_row(const catalogue& cat, const row& r, lookup& l,
                      const std::function<void(const std::string&)>& fail) {
  static const engine lock_engine;
  l.r = &r;
  l.eng = &lock_engine;
  auto bitmap = cat.lock_bitmaps.find(l.lock_family);
  if (bitmap == cat.lock_bitmaps.end()) {
    fail("lock family " + l.lock_family + " has no bitmap in tables.txt");
  } else {
    l.bitmap = &bitmap->second;
  }
  if (!r.cell) fail("a lock row needs cell=<request cell>");
  if (r.slot || !r.type.empty() || !r.calls.empty() || !r.view.empty() || r.bucket || r.key || r.res) {
    fail("a lock row takes cell= and live= only");
  }
  if (r.live.empty()) fail("occupies data memory but names no live group (live=)");
  l.cell = r.cell.value_or(0);
  l.cell_bytes = LOCK_REQUEST_BYTES;
}

void check_lock_pairs(const catalogue& cat, const std::function<void(const row&, const std::string&)>& fail) {
  std::map<std::string, std::pair<const row*, const row*>> rows;  // lock -> acquire, release
  for (const row& r : cat.rows) {
    lookup l;
    if (!is_lock_row(cat, r, l)) continue;
    auto& pair = rows[l.lock];
    (l.lock_release ? pair.second : pair.first) = &r;
  }
  for (const auto& [lock, pair] : rows) {
    if (!pair.first) fail(*pair.second, "lock " + lock + " has no __ACQUIRE row");
    if (!pair.second) fail(*pair.first, "lock " + lock + " has no __RELEASE row");
  }
}

void link_search_locks(std::vector<lookup>& all, const std::function<void(const row&, const std::string&)>& fail) {
  for (lookup& search : all) {
    if (!search.hash) continue;
    for (const lookup& l : all) search.search_lock = search.search_lock || l.lock == search.r->id;
    if (search.search_lock && !search.hash->caller_base) {
      fail(*search.r, "a search locks its home bucket only in a space whose first bucket the caller gives");
    }
  }
}

void emit_lock_bitmaps(std::ostringstream& out, const catalogue& cat) {
  out << "\n// Bitmap locks: each family's bitmap, one bit per lock, and the bits of its lock numbers.\n";
  for (const auto& [family, b] : cat.lock_bitmaps) {
    out << "inline constexpr std::uint32_t LOCK_BITMAP_" << upper(family) << " = " << hex(b.base, 8) << ";\n"
        << "inline constexpr std::uint32_t LOCK_BITS_" << upper(family) << " = " << b.bits << ";\n";
  }
}

void emit_lock_row(std::ostringstream& out, const lookup& l) {
  const std::string id = "ID_" + l.r->id;
  const std::string place = "{" + id + ", LOCK_BITMAP_" + upper(l.lock_family) + ", " + hex(l.cell) + "}";
  out << "// " << id << ": bitmap lock of the " << l.lock_family << " family; cell " << hex(l.cell) << "\n";
  if (l.lock_release) {
    out << "inline void release_lock_ID_" << l.lock << "(env_t env, lock_handle_t lock_handle) {\n"
        << "  bitmap_lock_release(env, " << place << ", lock_handle);\n}\n\n";
    return;
  }
  const std::string number = l.lock_family + "_lock_bitmap_hash(lock_id, LOCK_BITS_" + upper(l.lock_family) + ")";
  out << "inline lock_handle_t acquire_lock_ID_" << l.lock
      << "(env_t env, std::uint32_t lock_id, std::uint32_t wait) {\n"
      << "  return bitmap_lock_acquire(env, " << place << ", " << number << ", wait);\n}\n\n";
}

}  // namespace gen
