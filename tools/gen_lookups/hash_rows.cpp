#include "hash_rows.h"

#include <set>

#include "parse.h"
#include "text.h"

namespace gen {

namespace {

// Key widths that the table hashes fold.
const std::set<std::uint32_t> KEY_WIDTHS = {32, 40, 48, 64, 72, 80, 120, 144, 152, 160, 192, 256, 272, 320, 392};
// Suffixes that a search row's lookups carry.
const char* const ROW_SUFFIXES[] = {"BUCKET_0", "BUCKET_1", "BUCKET", "KEY", "RES"};
constexpr std::uint32_t ENTRY_READ_UNIT = 16;
constexpr std::uint32_t SINGLE_KEY_BITS = 64;
constexpr std::uint32_t RESULT_ALIGN = 8;

std::string tag_of(const row& r) {
  const std::size_t sep = r.id.find("__");
  return sep == std::string::npos ? "" : r.id.substr(sep);
}

std::string table_of(const row& r) { return r.id.substr(0, r.id.find("__")); }

std::uint32_t round_up(std::uint32_t n, std::uint32_t unit) { return (n + unit - 1) / unit * unit; }

// "[<id|->] [<bits|->]": a number, or `-` for a value the message gives.
bool optional_number_of(const std::string& word, std::optional<std::uint32_t>& out) {
  if (word == "-") return true;
  out = number_of(word);
  return out.has_value();
}

}  // namespace

void parse_hash_space(const std::vector<std::string>& words, int line, catalogue& cat, const line_report& report) {
  const char* usage = "a hash space line is <space> <first bucket> <buckets>";
  if (words.size() != 3) {
    report(line, usage);
    return;
  }
  const std::optional<std::uint32_t> base = number_of(words[1]);
  const std::uint32_t buckets = number_of(words[2]).value_or(0);
  if (!base || buckets == 0) {
    report(line, usage);
    return;
  }
  if (!cat.hash_spaces.emplace(words[0], hash_space{*base, buckets}).second) {
    report(line, "hash space " + words[0] + " has two lines");
  }
}

void parse_hash_table(const std::vector<std::string>& words, int line, catalogue& cat, const line_report& report) {
  hash_table t;
  bool ok = words.size() >= 6;
  if (ok) {
    t.name = words[0];
    t.space = words[3];
    ok = optional_number_of(words[1], t.id) && optional_number_of(words[2], t.key_bits);
    auto offset = number_of(words[4]);
    auto bytes = number_of(words[5]);
    ok = ok && offset && bytes;
    t.res_offset = offset.value_or(0);
    t.res_bytes = bytes.value_or(0);
  }
  if (!ok) {
    report(line,
           "a hash table line is <table> <id|-> <key bits|-> <space> <result offset> <result bytes> [single] "
           "[data_plane]");
    return;
  }
  for (std::size_t i = 6; i < words.size(); ++i) {
    if (words[i] == "single") {
      t.single = true;
    } else if (words[i] == "data_plane") {
      t.data_plane = true;
    } else {
      report(line, "hash table " + t.name + ": unknown flag '" + words[i] + "'");
    }
  }
  if (!cat.hash_spaces.count(t.space)) {
    report(line, "hash table " + t.name + ": no hash space " + t.space);
  } else {
    t.caller_base = cat.hash_spaces.at(t.space).base == 0;
  }
  if (t.id && *t.id > 255) report(line, "hash table " + t.name + ": hash_tbl_id above 255");
  if (t.key_bits && !KEY_WIDTHS.count(*t.key_bits)) {
    report(line, "hash table " + t.name + ": no table hash folds a key of " + words[2] + " bits");
  }
  if (t.res_offset % RESULT_ALIGN != 0 || (t.res_bytes != 16 && t.res_bytes != 32)) {
    report(line, "hash table " + t.name + ": the result stands at a multiple of 8 and is read as 16 or 32 bytes");
  }
  if (t.single && (t.key_bits != SINGLE_KEY_BITS || t.res_offset != ENTRY_READ_UNIT)) {
    report(line, "hash table " + t.name + ": the single-entry form holds an 8-byte key and its result at byte 16");
  }
  if (cat.hash_table_named(t.name)) report(line, "hash table " + t.name + " has two lines");
  cat.hash_tables.push_back(std::move(t));
}

std::string hash_row_id(const row& r, const std::string& suffix) { return table_of(r) + "_" + suffix + tag_of(r); }

std::vector<std::string> hash_row_ids(const row& r) {
  std::vector<std::string> ids;
  for (const char* s : ROW_SUFFIXES) ids.push_back(hash_row_id(r, s));
  return ids;
}

void resolve_hash_row(const catalogue& cat, const row& r, const hash_table& t, lookup& l,
                      const std::function<void(const std::string&)>& fail) {
  static const engine search_engine;
  l.r = &r;
  l.eng = &search_engine;
  l.hash = &t;
  if (!t.id || !t.key_bits) fail("table " + t.name + " has no search of its own: the message gives its key");
  for (const char* s : ROW_SUFFIXES) {
    if (!cat.ids.hash_ids.count(t.name + "_" + s)) fail("table " + t.name + " is not among the hash families");
  }
  if (!r.bucket || !r.key || !r.res) fail("a search row needs bucket=, key= and res=");
  if (r.type.empty()) fail("a search row needs type=<result type>");
  if (r.slot || r.cell || !r.calls.empty() || !r.view.empty()) {
    fail("a search row takes bucket=, key=, res=, type= and live= only");
  }
  if (r.live.empty()) fail("occupies data memory but names no live group (live=)");
  l.slot = r.bucket.value_or(0);
  l.key_bytes = round_up(1 + t.key_bits.value_or(0) / 8, ENTRY_READ_UNIT);
}

std::vector<hash_region> hash_regions(const lookup& l) {
  return {{*l.r->bucket, ENTRY_READ_UNIT, "bucket"},
          {*l.r->key, l.key_bytes, "key"},
          {*l.r->res, l.hash->res_bytes, "result"}};
}

void emit_hash_tables(std::ostringstream& out, const catalogue& cat) {
  out << "\n// Exact-key tables: the bucket spaces (a first bucket of 0: the caller gives it).\n";
  for (const auto& [name, s] : cat.hash_spaces) {
    out << "inline constexpr std::uint32_t HASH_SPACE_" << upper(name) << "_BASE = " << hex(s.base, 8) << ";\n"
        << "inline constexpr std::uint32_t HASH_SPACE_" << upper(name) << "_BUCKETS = " << hex(s.buckets, 5) << ";\n";
  }
  out << "\n// Each table: its id and key width (0: the message gives them), its space,\n"
      << "// where its result stands in an entry, and its forms.\n"
      << "struct lookup_hash_table_st {\n  const char* name;\n  std::uint32_t hash_tbl_id;\n"
      << "  std::uint32_t key_bits;\n  std::uint32_t bucket_base;\n  std::uint32_t bucket_count;\n"
      << "  std::uint32_t res_offset;\n  std::uint32_t res_bytes;\n"
      << "  bool single_entry;       // a lone entry's 8-byte key stands in its bucket\n"
      << "  bool data_plane_writes;  // searches keep where they stand, for the write operations\n};\n";
  for (const hash_table& t : cat.hash_tables) {
    const std::string space = "HASH_SPACE_" + upper(t.space);
    out << "inline constexpr lookup_hash_table_st HASH_TABLE_" << t.name << " = {\"" << t.name << "\", "
        << t.id.value_or(0) << ", " << t.key_bits.value_or(0) << ", " << space << "_BASE, " << space << "_BUCKETS, "
        << t.res_offset << ", " << t.res_bytes << ", " << (t.single ? "true" : "false") << ", "
        << (t.data_plane ? "true" : "false") << "};\n";
  }
  out << "inline constexpr std::array<lookup_hash_table_st, " << cat.hash_tables.size()
      << "> LOOKUP_HASH_TABLES = {{\n";
  for (const hash_table& t : cat.hash_tables) out << "    HASH_TABLE_" << t.name << ",\n";
  out << "}};\n";
}

namespace {

// The row's description and its bucket, key and result lookups.
void emit_hash_row_lookups(std::ostringstream& out, const lookup& l) {
  const row& r = *l.r;
  const hash_table& t = *l.hash;
  const std::string desc = "HASH_SEARCH_" + r.id;
  auto id = [&](const char* suffix) { return "ID_" + hash_row_id(r, suffix); };
  out << "// " << r.id << ": exact-key table " << *t.id << ", " << *t.key_bits << "-bit key, space " << t.space
      << (t.single ? ", single-entry form" : "") << "; bucket " << hex(*r.bucket) << ", key " << hex(*r.key) << " ("
      << l.key_bytes << " bytes), result " << r.type << " at " << hex(*r.res) << "\n"
      << "inline constexpr hash_search_desc_st " << desc << " = {HASH_TABLE_" << t.name << ", " << id("BUCKET_0")
      << ", " << id("BUCKET_1") << ", " << id("BUCKET") << ", " << id("KEY") << ", " << id("RES") << ", "
      << hex(*r.bucket) << ", " << hex(*r.key) << ", " << l.key_bytes << ", " << hex(*r.res) << "};\n";
  out << "inline void lookup_request_" << id("BUCKET_0")
      << "(env_t env, std::uint32_t index, std::uint32_t num, std::uint32_t denom) {\n"
      << "  hash_request_bucket_0(env, " << desc << ", index, num, denom);\n}\n"
      << "inline void lookup_request_" << id("BUCKET_1") << "(env_t env, memaddr_t bucket_addr) {\n"
      << "  hash_request_bucket_1(env, " << desc << ", bucket_addr);\n}\n"
      << "inline void lookup_request_" << id("KEY") << "(env_t env, memaddr_t entry_addr) { hash_request_key(env, "
      << desc << ", entry_addr); }\n"
      << "inline void lookup_request_" << id("RES") << "(env_t env, memaddr_t entry_addr) { hash_request_result(env, "
      << desc << ", entry_addr); }\n";
  for (const char* s : {"BUCKET", "KEY", "RES"}) out << "inline void lookup_wait_" << id(s) << "(env_t) {}\n";
  out << "inline hash_search_bucket_st* lookup_result_" << id("BUCKET")
      << "(env_t env) { return hash_result_bucket(env, " << desc << ", " << id("BUCKET_0") << "); }\n"
      << "inline hash_search_key_st* lookup_result_" << id("KEY") << "(env_t env) { return hash_result_key(env, "
      << desc << "); }\n"
      << "inline " << r.type << "* lookup_result_" << id("RES") << "(env_t env) {\n"
      << "  return reinterpret_cast<" << r.type << "*>(hash_result(env, " << desc << ", sizeof(" << r.type
      << ")));\n}\n"
      << "static_assert(sizeof(" << r.type << ") <= " << t.res_bytes << ", \"" << id("RES") << ": " << r.type
      << " is larger than the result read\");\n";
  const std::pair<const char*, std::uint32_t> offsets[] = {{"BUCKET", *r.bucket}, {"KEY", *r.key}, {"RES", *r.res}};
  for (const auto& [s, at] : offsets) {
    out << "inline std::uint32_t lookup_result_dmem_offset_" << id(s) << "(env_t) { return " << hex(at) << "; }\n";
  }
}

// The three parts of the row's search, and part 1 with the bucket's lock.
void emit_hash_search_parts(std::ostringstream& out, const lookup& l) {
  const row& r = *l.r;
  const hash_table& t = *l.hash;
  const std::string desc = "HASH_SEARCH_" + r.id;
  const std::string args = "(env_t env, void* key, hash_search_context_st* context)";
  if (t.caller_base) {
    out << "inline void hash_search_part_1_ID_" << r.id
        << "(env_t env, void* key, hash_search_context_st* context, memaddr_t base_addr) {\n"
        << "  hash_search_part_1_base_addr(env, " << desc << ", key, context, base_addr);\n}\n";
  } else {
    out << "inline void hash_search_part_1_ID_" << r.id << args << " { hash_search_part_1(env, " << desc
        << ", key, context); }\n";
  }
  if (l.search_lock) {
    out << "inline lock_handle_t hash_search_part_1_lock_ID_" << r.id
        << "(env_t env, void* key, hash_search_context_st* context, memaddr_t base_addr,\n"
        << "                                                std::uint32_t blocking) {\n"
        << "  return hash_search_part_1_lock_base_addr(env, " << desc << ", key, context, base_addr, {acquire_lock_ID_"
        << r.id << ", blocking});\n}\n";
  }
  out << "inline void hash_search_part_2_ID_" << r.id << args << " { hash_search_part_2(env, " << desc
      << ", key, context); }\n";
  for (const char* form : {"internal", "slow"}) {
    out << "inline void hash_search_part_2_" << form << "_ID_" << r.id
        << "(env_t env, hash_search_context_st* context) { hash_search_part_2_from(env, " << desc << ", context); }\n";
  }
  out << "inline hash_search_rc_t hash_search_part_3_ID_" << r.id << args << " {\n  return hash_search_part_3(env, "
      << desc << ", key, context);\n}\n"
      << "inline hash_search_rc_t hash_search_part_3_multiple_entry_ID_" << r.id << args
      << " {\n  return hash_search_part_3_multiple_entry(env, " << desc << ", key, context);\n}\n\n";
}

}  // namespace

void emit_hash_search(std::ostringstream& out, const lookup& l) {
  emit_hash_row_lookups(out, l);
  emit_hash_search_parts(out, l);
}

void emit_hash_slots(std::ostringstream& out, const lookup& l) {
  const row& r = *l.r;
  out << "    {ID_" << hash_row_id(r, "BUCKET") << ", " << hex(*r.bucket) << "},\n"
      << "    {ID_" << hash_row_id(r, "KEY") << ", " << hex(*r.key) << "},\n"
      << "    {ID_" << hash_row_id(r, "RES") << ", " << hex(*r.res) << "},\n";
}

}  // namespace gen
