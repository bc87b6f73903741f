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
  identifiers& ids = cat.ids;
  std::set<std::string> seen(ids.names.begin(), ids.names.end());
  std::vector<std::string> families;
  std::vector<std::string> suffixes;
  std::vector<std::string> locks;
  std::string section;
  std::string lock_family;
  std::optional<std::size_t> current_engine;
  for (const line_view& lv : lines_of(text)) {
    if (lv.words[0].front() == '[') {
      section = lv.words[0].substr(1);
      if (!section.empty() && section.back() == ']') section.pop_back();
      current_engine.reset();
      if (section == "engine") {
        if (auto e = engine_header(lv.words, lv.number, cat, report)) {
          ids.engines.push_back(*e);
          current_engine = ids.engines.size() - 1;
        }
      } else if (section == "locks") {
        lock_family = locks_header(lv.words, lv.number, report);
      } else if (section != "hash_families" && section != "hash_suffixes" && section != "tags" &&
                 section != "protected") {
        report(lv.number, "unknown section '" + section + "'");
      }
      continue;
    }
    for (const std::string& w : lv.words) {
      if (!is_name(w)) {
        report(lv.number, "'" + w + "' is not a name of capitals, digits and '_'");
        continue;
      }
      if (section == "engine") {
        if (!current_engine) continue;
        if (w.find("__") != std::string::npos) {
          report(lv.number, "base name " + w + " holds '__', which separates a tag");
        } else if (!ids.engine_of.emplace(w, *current_engine).second) {
          report(lv.number, "base name " + w + " stands under two engines");
        }
        add_name(ids, seen, w);
      } else if (section == "hash_families") {
        families.push_back(w);
      } else if (section == "hash_suffixes") {
        suffixes.push_back(w);
      } else if (section == "tags") {
        ids.tags.insert(w);
      } else if (section == "locks") {
        locks.push_back(w);
        if (!ids.lock_family.emplace(w, lock_family).second) report(lv.number, "lock " + w + " stands twice");
      } else if (section == "protected") {
        ids.protected_tables.insert(w);
      } else {
        report(lv.number, "name " + w + " outside any section");
      }
    }
  }
  for (const std::string& f : families) {
    for (const std::string& s : suffixes) {
      ids.hash_ids.insert(f + "_" + s);
      add_name(ids, seen, f + "_" + s);
    }
  }
  for (const std::string& l : locks) add_name(ids, seen, l);
}

void parse_tables(std::string_view text, const std::string& file, catalogue& cat, errors& errs) {
  reporter report(file, errs);
  std::string section;
  std::optional<table_address> current;  // address of the names on this line
  std::uint32_t area_base = 0;
  std::uint32_t area_stride = 0;
  auto add_table = [&](int line, const std::string& name, const table_address& a) {
    if (!cat.ids.engine_of.count(name)) {
      report(line, "table " + name + " is no base name of the catalogue");
    } else if (!cat.tables.emplace(name, a).second) {
      report(line, "table " + name + " has two addresses");
    }
  };
  std::map<std::uint32_t, std::uint32_t> page_bytes;  // tpd_idx -> record bytes
  for (const line_view& lv : lines_of(text)) {
    const std::vector<std::string>& w = lv.words;
    if (w[0].front() == '[') {
      section = w[0].substr(1);
      if (!section.empty() && section.back() == ']') section.pop_back();
      current.reset();
      if (section == "global_blocks") {
        area_base = 0;
        area_stride = 0;
        for (std::size_t i = 1; i < w.size(); ++i) {
          std::string key;
          std::string value;
          std::string word = w[i];
          if (!word.empty() && word.back() == ']') word.pop_back();
          auto n = split_attr(word, key, value) ? number_of(value) : std::nullopt;
          if (n && key == "base") {
            area_base = *n;
          } else if (n && key == "stride") {
            area_stride = *n;
          } else {
            report(lv.number, "global_blocks takes base=<address> stride=<bytes>, not '" + word + "'");
          }
        }
        if (area_stride == 0) report(lv.number, "global_blocks without a stride");
      } else if (section != "paged" && section != "direct" && section != "hash_spaces" && section != "hash_tables" &&
                 section != "lock_bitmaps") {
        report(lv.number, "unknown section '" + section + "'");
      }
      continue;
    }
    const line_report line_fault = [&](int line, const std::string& what) { report(line, what); };
    if (section == "hash_spaces" || section == "hash_tables") {
      (section == "hash_spaces" ? parse_hash_space : parse_hash_table)(w, lv.number, cat, line_fault);
      continue;
    }
    if (section == "lock_bitmaps") {
      parse_lock_bitmap(w, lv.number, cat, line_fault);
      continue;
    }
    std::size_t first_name = 0;
    if (!lv.indented) {
      table_address a;
      if (section == "paged") {
        auto tpd = number_of(w[0]);
        auto bytes = w.size() > 1 ? number_of(w[1]) : std::nullopt;
        if (!tpd || *tpd > 63 || !bytes || *bytes == 0) {
          report(lv.number, "a paged table line starts with <tpd_idx 0..63> <record bytes>");
          current.reset();
          continue;
        }
        a.kind = addr_kind::paged;
        a.tpd = *tpd;
        a.record_bytes = *bytes;
        first_name = 2;
        if (!page_bytes.emplace(a.tpd, a.record_bytes).second) {
          report(lv.number, "page descriptor " + w[0] + " has a second line");
        }
      } else if (section == "direct") {
        auto base = number_of(w[0]);
        auto stride = w.size() > 1 ? number_of(w[1]) : std::nullopt;
        if (!base || !stride || *stride == 0) {
          report(lv.number, "a direct table line starts with <base> <stride>");
          current.reset();
          continue;
        }
        a.kind = addr_kind::direct;
        a.base = *base;
        a.stride = *stride;
        first_name = 2;
      } else if (section == "global_blocks") {
        auto block = number_of(w[0]);
        if (!block) {
          report(lv.number, "block '" + w[0] + "' is not a number");
          current.reset();
          continue;
        }
        a.kind = addr_kind::global_block;
        a.base = area_base;
        a.stride = area_stride;
        a.block = *block;
        first_name = 1;
      } else {
        report(lv.number, "line outside any section");
        continue;
      }
      current = a;
    } else if (!current) {
      report(lv.number, "continuation line without a line to continue");
      continue;
    }
    for (std::size_t i = first_name; i < w.size(); ++i) add_table(lv.number, w[i], *current);
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
        continue;
      }
      if (key == "slot" || key == "cell" || key == "bucket" || key == "key" || key == "res") {
        auto n = number_of(value);
        if (!n) {
          report(lv.number, "ID_" + r.id + ": " + key + " '" + value + "' is not a number");
          ok = false;
        }
        std::optional<std::uint32_t>& place = key == "slot"     ? r.slot
                                              : key == "cell"   ? r.cell
                                              : key == "bucket" ? r.bucket
                                              : key == "key"    ? r.key
                                                                : r.res;
        place = n;
      } else if (key == "type" || key == "calls") {
        if (!is_cpp_name(value)) {
          report(lv.number, "ID_" + r.id + ": " + key + " '" + value + "' is not a C++ name");
          ok = false;
        }
        (key == "type" ? r.type : r.calls) = value;
      } else if (key == "view") {
        r.view = value;
      } else if (key == "family") {
        if (value != "ipv6") {
          report(lv.number, "ID_" + r.id + ": family '" + value + "' is not ipv6");
          ok = false;
        }
        r.ipv6 = true;
      } else if (key == "live") {
        std::size_t start = 0;
        while (start <= value.size()) {
          const std::size_t comma = value.find(',', start);
          const std::string group = value.substr(start, comma - start);
          if (group.empty()) {
            report(lv.number, "ID_" + r.id + ": empty live group in '" + value + "'");
            ok = false;
          } else {
            r.live.push_back(group);
          }
          if (comma == std::string::npos) break;
          start = comma + 1;
        }
      } else {
        report(lv.number, "ID_" + r.id + ": unknown attribute '" + key + "'");
        ok = false;
      }
    }
    if (ok) cat.rows.push_back(std::move(r));
  }
}

}  // namespace gen
