#include "parse.h"

#include <charconv>

#include "hash_rows.h"
#include "lock_rows.h"

namespace gen {

namespace {

struct line_view {
  int number;
  std::vector<std::string> words;
  bool indented;  // a continuation of the line before
};

// Splits text into lines of words, without comments and empty lines.
std::vector<line_view> lines_of(std::string_view text) {
  std::vector<line_view> out;
  int number = 0;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
    ++number;
    if (const std::size_t hash = line.find('#'); hash != std::string_view::npos) line = line.substr(0, hash);
    line_view lv{number, {}, !line.empty() && (line[0] == ' ' || line[0] == '\t')};
    std::size_t i = 0;
    while (i < line.size()) {
      while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r')) ++i;
      std::size_t j = i;
      while (j < line.size() && line[j] != ' ' && line[j] != '\t' && line[j] != '\r') ++j;
      if (j > i) lv.words.emplace_back(line.substr(i, j - i));
      i = j;
    }
    if (!lv.words.empty()) out.push_back(std::move(lv));
  }
  return out;
}

bool is_name(const std::string& s) {
  if (s.empty()) return false;
  for (char c : s) {
    if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_')) return false;
  }
  return true;
}

bool is_cpp_name(const std::string& s) {
  if (s.empty() || (s[0] >= '0' && s[0] <= '9')) return false;
  for (char c : s) {
    if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_')) return false;
  }
  return true;
}

// "key=value" words of a section header or a row.
bool split_attr(const std::string& word, std::string& key, std::string& value) {
  const std::size_t eq = word.find('=');
  if (eq == std::string::npos || eq == 0) return false;
  key = word.substr(0, eq);
  value = word.substr(eq + 1);
  return true;
}

class reporter {
 public:
  reporter(const std::string& file, errors& errs) : file_(file), errs_(errs) {}
  void operator()(int line, const std::string& what) {
    errs_.push_back(file_ + ":" + std::to_string(line) + ": " + what);
  }

 private:
  const std::string& file_;
  errors& errs_;
};

std::optional<form> form_named(const std::string& s) {
  static const std::map<std::string, form> forms = {
      {"read", form::read},
      {"mod_read", form::mod_read},
      {"tlu_mod_read_paged", form::tlu_mod_read_paged},
      {"glb_cnt", form::glb_cnt},
      {"stats_add_inc", form::stats_add_inc},
      {"stats_add_inc_split", form::stats_add_inc_split},
      {"stats_uidb_add_inc", form::stats_uidb_add_inc},
      {"stats_uidb_add_inc_split", form::stats_uidb_add_inc_split},
      {"stats_uidb_add_inc_twin", form::stats_uidb_add_inc_twin},
      {"stats_inc_dyn_pool_cnt", form::stats_inc_dyn_pool_cnt},
      {"stats_read_clr_dyn_pool_cnt", form::stats_read_clr_dyn_pool_cnt},
      {"plu_ipv4", form::plu_ipv4},
      {"plu_ipv6", form::plu_ipv6},
      {"flowlock_convert", form::flowlock_convert},
      {"view", form::view},
  };
  auto it = forms.find(s);
  if (it == forms.end()) return std::nullopt;
  return it->second;
}

// "[engine form=read template=TLU_READ_32B]": the template gives the
// response size; an engine by resource gives its own.
std::optional<engine> engine_header(const std::vector<std::string>& words, int line, const catalogue& cat,
                                    reporter& report) {
  engine e;
  bool ok = true;
  bool by_template = false;
  bool has_response = false;
  for (std::size_t i = 1; i < words.size(); ++i) {
    std::string key;
    std::string value;
    std::string w = words[i];
    if (!w.empty() && w.back() == ']') w.pop_back();
    if (w.empty()) continue;
    if (!split_attr(w, key, value)) {
      report(line, "engine attribute '" + w + "' is not key=value");
      ok = false;
    } else if (key == "form") {
      auto f = form_named(value);
      if (!f) report(line, "unknown code form '" + value + "'");
      ok = ok && f.has_value();
      e.code = f.value_or(form::none);
    } else if (key == "template") {
      const auto t = cat.templates.find(value);
      if (t == cat.templates.end()) {
        report(line, "template '" + value + "' is no row of the request template table");
        ok = false;
      } else {
        e.table = t->second.table;
        e.entry = t->second.entry;
        e.response = t->second.response;
        by_template = true;
      }
    } else if (key == "resource" || key == "response") {
      auto n = number_of(value);
      if (!n) {
        report(line, key + " '" + value + "' is not a number");
        ok = false;
      } else if (key == "resource") {
        e.resource = static_cast<int>(*n);
      } else {
        e.response = *n;
        has_response = true;
      }
    } else {
      report(line, "unknown engine attribute '" + key + "'");
      ok = false;
    }
  }
  if (by_template && has_response) {
    report(line, "an engine by template takes the template's response size");
    ok = false;
  }
  if (!ok) return std::nullopt;
  return e;
}

// "[locks family=mac]": the family whose bitmap and lock numbers the locks use.
std::string locks_header(const std::vector<std::string>& words, int line, reporter& report) {
  std::string key;
  std::string value;
  std::string w = words.size() == 2 ? words[1] : "";
  if (!w.empty() && w.back() == ']') w.pop_back();
  if (!split_attr(w, key, value) || key != "family" || value.empty()) {
    report(line, "a locks section names its family: [locks family=<family>]");
  }
  return value;
}

void add_name(identifiers& ids, std::set<std::string>& seen, const std::string& name) {
  if (seen.insert(name).second) ids.names.push_back(name);
}

// "[name ...": the section a header line opens.
std::string section_of(const std::vector<std::string>& words) {
  std::string section = words[0].substr(1);
  if (!section.empty() && section.back() == ']') section.pop_back();
  return section;
}

// The identifier file: engines with their base names, hash families and
// suffixes, tags, locks and protected tables, each in its section.
class identifier_reader {
 public:
  identifier_reader(const catalogue& cat, identifiers& ids, reporter& report)
      : cat_(cat), ids_(ids), report_(report), seen_(ids.names.begin(), ids.names.end()) {}

  void header(const line_view& lv) {
    section_ = section_of(lv.words);
    current_engine_.reset();
    if (section_ == "engine") {
      if (auto e = engine_header(lv.words, lv.number, cat_, report_)) {
        ids_.engines.push_back(*e);
        current_engine_ = ids_.engines.size() - 1;
      }
    } else if (section_ == "locks") {
      lock_family_ = locks_header(lv.words, lv.number, report_);
    } else if (section_ != "hash_families" && section_ != "hash_suffixes" && section_ != "tags" &&
               section_ != "protected") {
      report_(lv.number, "unknown section '" + section_ + "'");
    }
  }

  void word(int line, const std::string& w) {
    if (!is_name(w)) {
      report_(line, "'" + w + "' is not a name of capitals, digits and '_'");
    } else if (section_ == "engine") {
      base_name(line, w);
    } else if (section_ == "hash_families") {
      families_.push_back(w);
    } else if (section_ == "hash_suffixes") {
      suffixes_.push_back(w);
    } else if (section_ == "tags") {
      ids_.tags.insert(w);
    } else if (section_ == "locks") {
      locks_.push_back(w);
      if (!ids_.lock_family.emplace(w, lock_family_).second) report_(line, "lock " + w + " stands twice");
    } else if (section_ == "protected") {
      ids_.protected_tables.insert(w);
    } else {
      report_(line, "name " + w + " outside any section");
    }
  }

  // Every family with every suffix names a hash lookup; locks come last.
  void finish() {
    for (const std::string& f : families_) {
      for (const std::string& s : suffixes_) {
        ids_.hash_ids.insert(f + "_" + s);
        add_name(ids_, seen_, f + "_" + s);
      }
    }
    for (const std::string& l : locks_) add_name(ids_, seen_, l);
  }

 private:
  void base_name(int line, const std::string& w) {
    if (!current_engine_) return;
    if (w.find("__") != std::string::npos) {
      report_(line, "base name " + w + " holds '__', which separates a tag");
    } else if (!ids_.engine_of.emplace(w, *current_engine_).second) {
      report_(line, "base name " + w + " stands under two engines");
    }
    add_name(ids_, seen_, w);
  }

  const catalogue& cat_;
  identifiers& ids_;
  reporter& report_;
  std::set<std::string> seen_;
  std::vector<std::string> families_;
  std::vector<std::string> suffixes_;
  std::vector<std::string> locks_;
  std::string section_;
  std::string lock_family_;
  std::optional<std::size_t> current_engine_;
};

// The table file: the address of each table, by the line that names it; an
// indented line names more tables at the address of the line before.
class table_reader {
 public:
  table_reader(catalogue& cat, reporter& report) : cat_(cat), report_(report) {}

  void header(const line_view& lv) {
    section_ = section_of(lv.words);
    current_.reset();
    if (section_ == "global_blocks") {
      global_blocks_header(lv);
    } else if (section_ != "paged" && section_ != "direct" && section_ != "hash_spaces" && section_ != "hash_tables" &&
               section_ != "lock_bitmaps") {
      report_(lv.number, "unknown section '" + section_ + "'");
    }
  }

  void line(const line_view& lv) {
    const line_report line_fault = [this](int line, const std::string& what) { report_(line, what); };
    if (section_ == "hash_spaces" || section_ == "hash_tables") {
      (section_ == "hash_spaces" ? parse_hash_space : parse_hash_table)(lv.words, lv.number, cat_, line_fault);
    } else if (section_ == "lock_bitmaps") {
      parse_lock_bitmap(lv.words, lv.number, cat_, line_fault);
    } else if (!lv.indented) {
      address_line(lv);
    } else if (!current_) {
      report_(lv.number, "continuation line without a line to continue");
    } else {
      add_tables(lv, 0);
    }
  }

 private:
  // "[global_blocks base=<address> stride=<bytes>]"
  void global_blocks_header(const line_view& lv) {
    area_base_ = 0;
    area_stride_ = 0;
    for (std::size_t i = 1; i < lv.words.size(); ++i) {
      std::string key;
      std::string value;
      std::string word = lv.words[i];
      if (!word.empty() && word.back() == ']') word.pop_back();
      auto n = split_attr(word, key, value) ? number_of(value) : std::nullopt;
      if (n && key == "base") {
        area_base_ = *n;
      } else if (n && key == "stride") {
        area_stride_ = *n;
      } else {
        report_(lv.number, "global_blocks takes base=<address> stride=<bytes>, not '" + word + "'");
      }
    }
    if (area_stride_ == 0) report_(lv.number, "global_blocks without a stride");
  }

  // A line that gives an address, then the names of the tables there.
  void address_line(const line_view& lv) {
    std::optional<table_address> a;
    if (section_ == "paged") {
      a = paged_address(lv);
    } else if (section_ == "direct") {
      a = direct_address(lv);
    } else if (section_ == "global_blocks") {
      a = block_address(lv);
    } else {
      report_(lv.number, "line outside any section");
      return;
    }
    current_ = a;
    if (a) add_tables(lv, a->kind == addr_kind::global_block ? 1 : 2);
  }

  std::optional<table_address> paged_address(const line_view& lv) {
    const std::vector<std::string>& w = lv.words;
    auto tpd = number_of(w[0]);
    auto bytes = w.size() > 1 ? number_of(w[1]) : std::nullopt;
    if (!tpd || *tpd > 63 || !bytes || *bytes == 0) {
      report_(lv.number, "a paged table line starts with <tpd_idx 0..63> <record bytes>");
      return std::nullopt;
    }
    table_address a;
    a.kind = addr_kind::paged;
    a.tpd = *tpd;
    a.record_bytes = *bytes;
    if (!page_bytes_.emplace(a.tpd, a.record_bytes).second) {
      report_(lv.number, "page descriptor " + w[0] + " has a second line");
    }
    return a;
  }

  std::optional<table_address> direct_address(const line_view& lv) {
    const std::vector<std::string>& w = lv.words;
    auto base = number_of(w[0]);
    auto stride = w.size() > 1 ? number_of(w[1]) : std::nullopt;
    if (!base || !stride || *stride == 0) {
      report_(lv.number, "a direct table line starts with <base> <stride>");
      return std::nullopt;
    }
    table_address a;
    a.kind = addr_kind::direct;
    a.base = *base;
    a.stride = *stride;
    return a;
  }

  std::optional<table_address> block_address(const line_view& lv) {
    auto block = number_of(lv.words[0]);
    if (!block) {
      report_(lv.number, "block '" + lv.words[0] + "' is not a number");
      return std::nullopt;
    }
    table_address a;
    a.kind = addr_kind::global_block;
    a.base = area_base_;
    a.stride = area_stride_;
    a.block = *block;
    return a;
  }

  void add_tables(const line_view& lv, std::size_t first_name) {
    for (std::size_t i = first_name; i < lv.words.size(); ++i) {
      const std::string& name = lv.words[i];
      if (!cat_.ids.engine_of.count(name)) {
        report_(lv.number, "table " + name + " is no base name of the catalogue");
      } else if (!cat_.tables.emplace(name, *current_).second) {
        report_(lv.number, "table " + name + " has two addresses");
      }
    }
  }

  catalogue& cat_;
  reporter& report_;
  std::string section_;
  std::optional<table_address> current_;  // address of the names on this line
  std::uint32_t area_base_ = 0;
  std::uint32_t area_stride_ = 0;
  std::map<std::uint32_t, std::uint32_t> page_bytes_;  // tpd_idx -> record bytes
};

// "live=a,b": the groups in which the lookup's result is live.
bool read_live_groups(const std::string& value, row& r, int line, reporter& report) {
  bool ok = true;
  std::size_t start = 0;
  while (start <= value.size()) {
    const std::size_t comma = value.find(',', start);
    const std::string group = value.substr(start, comma - start);
    if (group.empty()) {
      report(line, "ID_" + r.id + ": empty live group in '" + value + "'");
      ok = false;
    } else {
      r.live.push_back(group);
    }
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return ok;
}

// "slot=", "cell=", "bucket=", "key=", "res=": a data memory offset.
bool read_place(const std::string& key, const std::string& value, row& r, int line, reporter& report) {
  auto n = number_of(value);
  if (!n) report(line, "ID_" + r.id + ": " + key + " '" + value + "' is not a number");
  std::optional<std::uint32_t>& place = key == "slot"     ? r.slot
                                        : key == "cell"   ? r.cell
                                        : key == "bucket" ? r.bucket
                                        : key == "key"    ? r.key
                                                          : r.res;
  place = n;
  return n.has_value();
}

// One key=value attribute of a lookup row; false when it is refused.
bool read_attribute(const std::string& key, const std::string& value, row& r, int line, reporter& report) {
  if (key == "slot" || key == "cell" || key == "bucket" || key == "key" || key == "res") {
    return read_place(key, value, r, line, report);
  }
  if (key == "type" || key == "calls") {
    (key == "type" ? r.type : r.calls) = value;
    if (is_cpp_name(value)) return true;
    report(line, "ID_" + r.id + ": " + key + " '" + value + "' is not a C++ name");
    return false;
  }
  if (key == "view") {
    r.view = value;
    return true;
  }
  if (key == "family") {
    r.ipv6 = true;
    if (value == "ipv6") return true;
    report(line, "ID_" + r.id + ": family '" + value + "' is not ipv6");
    return false;
  }
  if (key == "live") return read_live_groups(value, r, line, report);
  report(line, "ID_" + r.id + ": unknown attribute '" + key + "'");
  return false;
}

}  // namespace

void parse_request_templates(std::string_view text, const std::string& file, catalogue& cat, errors& errs) {
  reporter report(file, errs);
  constexpr std::string_view ROW = "REQUEST_TEMPLATE(";
  int number = 0;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
    ++number;
    if (!line.starts_with(ROW)) continue;
    std::vector<std::string> cells{""};
    for (const char c : line.substr(ROW.size())) {
      if (c == ',') {
        cells.emplace_back();
      } else if (c != ' ' && c != ')') {
        cells.back() += c;
      }
    }
    const auto table = cells.size() == 4 ? number_of(cells[1]) : std::nullopt;
    const auto entry = cells.size() == 4 ? number_of(cells[2]) : std::nullopt;
    const auto response = cells.size() == 4 ? number_of(cells[3]) : std::nullopt;
    if (!table || !entry || !response || *table > 1 || *entry > 15) {
      report(number, "a template row is REQUEST_TEMPLATE(name, table 0..1, entry 0..15, response bytes)");
    } else if (!cat.templates
                    .emplace(cells[0], request_template{static_cast<int>(*table), static_cast<int>(*entry), *response})
                    .second) {
      report(number, "template '" + cells[0] + "' stands twice");
    }
  }
}

std::optional<std::uint32_t> number_of(const std::string& s) {
  std::uint64_t v = 0;
  const bool hex = s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X');
  const char* first = s.data() + (hex ? 2 : 0);
  const char* last = s.data() + s.size();
  auto [ptr, ec] = std::from_chars(first, last, v, hex ? 16 : 10);
  if (ec != std::errc{} || ptr != last || first == last || v > 0xFFFFFFFFull) return std::nullopt;
  return static_cast<std::uint32_t>(v);
}

void parse_identifiers(std::string_view text, const std::string& file, catalogue& cat, errors& errs) {
  reporter report(file, errs);
  identifier_reader reader(cat, cat.ids, report);
  for (const line_view& lv : lines_of(text)) {
    if (lv.words[0].front() == '[') {
      reader.header(lv);
      continue;
    }
    for (const std::string& w : lv.words) reader.word(lv.number, w);
  }
  reader.finish();
}

void parse_tables(std::string_view text, const std::string& file, catalogue& cat, errors& errs) {
  reporter report(file, errs);
  table_reader reader(cat, report);
  for (const line_view& lv : lines_of(text)) {
    if (lv.words[0].front() == '[') {
      reader.header(lv);
    } else {
      reader.line(lv);
    }
  }
}

void parse_lookups(std::string_view text, const std::string& file, catalogue& cat, errors& errs) {
  reporter report(file, errs);
  for (const line_view& lv : lines_of(text)) {
    row r;
    r.pos = {file, lv.number};
    r.id = lv.words[0];
    if (!is_name(r.id)) {
      report(lv.number, "'" + r.id + "' is not an identifier without its ID_ prefix");
      continue;
    }
    bool ok = true;
    for (std::size_t i = 1; i < lv.words.size(); ++i) {
      std::string key;
      std::string value;
      if (!split_attr(lv.words[i], key, value) || value.empty()) {
        report(lv.number, "ID_" + r.id + ": '" + lv.words[i] + "' is not key=value");
        ok = false;
      } else if (!read_attribute(key, value, r, lv.number, report)) {
        ok = false;
      }
    }
    if (ok) cat.rows.push_back(std::move(r));
  }
}

}  // namespace gen
