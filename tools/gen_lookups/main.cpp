// gen_lookups: reads the lookup catalogue's descriptions and writes its C++.
//   gen_lookups <request_templates.def> <identifiers.txt> <tables.txt> <lookups.txt> <output dir>
// Prints every fault of the descriptions and writes nothing if there is one.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "emit.h"
#include "parse.h"
#include "resolve.h"

namespace {

bool read_file(const std::string& path, std::string& text) {
  std::ifstream in(path);
  if (!in) return false;
  std::ostringstream s;
  s << in.rdbuf();
  text = s.str();
  return true;
}

bool write_file(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::trunc);
  out << text;
  return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::fprintf(stderr,
                 "usage: %s <request_templates.def> <identifiers.txt> <tables.txt> <lookups.txt> <output dir>\n",
                 argv[0]);
    return 2;
  }
  gen::catalogue cat;
  gen::errors errs;
  using parser = void (*)(std::string_view, const std::string&, gen::catalogue&, gen::errors&);
  const parser parsers[] = {gen::parse_request_templates, gen::parse_identifiers, gen::parse_tables,
                            gen::parse_lookups};
  for (int i = 0; i < 4; ++i) {
    std::string text;
    if (!read_file(argv[i + 1], text)) {
      std::fprintf(stderr, "%s: cannot read\n", argv[i + 1]);
      return 1;
    }
    parsers[i](text, argv[i + 1], cat, errs);
  }
  const std::vector<gen::lookup> lookups = gen::resolve(cat, errs);
  if (!errs.empty()) {
    for (const std::string& e : errs) std::fprintf(stderr, "%s\n", e.c_str());
    return 1;
  }
  const gen::outputs out = gen::emit(cat, lookups);
  const std::filesystem::path dir = argv[5];
  std::filesystem::create_directories(dir);
  const bool ok =
      write_file(dir / "lookup_ids.h", out.ids_header) && write_file(dir / "lookup_tables.h", out.tables_header) &&
      write_file(dir / "lookup_catalogue.h", out.ops_header) && write_file(dir / "lookup_catalogue.cpp", out.source);
  if (!ok) std::fprintf(stderr, "%s: cannot write the catalogue\n", argv[5]);
  return ok ? 0 : 1;
}
