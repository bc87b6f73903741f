// A small catalogue for the generator's tests: a few engines, tables and
// tags, to which each test adds the rows it feeds the generator.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "parse.h"
#include "resolve.h"

namespace gen_test {

inline constexpr const char* TEMPLATES = R"(
REQUEST_TEMPLATE(TLU_READ_16B, 0, 2, 16)
REQUEST_TEMPLATE(TLU_READ_32B, 0, 3, 32)
REQUEST_TEMPLATE(STATS_PAIR, 0, 8, 0)
REQUEST_TEMPLATE(GLOBAL_COUNTER, 0, 10, 0)
REQUEST_TEMPLATE(MOD_READ_16B, 1, 8, 32)
REQUEST_TEMPLATE(MOD_READ_32B, 1, 9, 48)
REQUEST_TEMPLATE(PLU_IPV4_SEARCH, 1, 11, 32)
REQUEST_TEMPLATE(PLU_IPV6_SEARCH, 1, 12, 32)
)";

inline constexpr const char* IDENTIFIERS = R"(
[engine form=read template=TLU_READ_32B]
UIDB_L3_ING TX_ADJ GLOBAL_PKT_TRACE EGR_PORT_PART1 REPNODE
[engine form=read template=TLU_READ_16B]
PORT_CONFIG_ING NHINDEX
[engine form=mod_read template=MOD_READ_32B]
L3_NRLDI_ING
[engine form=glb_cnt template=GLOBAL_COUNTER]
STATS_INC_GLB_CNT
[engine form=stats_add_inc template=STATS_PAIR]
STATS_ADD_INC
[engine form=view]
IP_LEAF_ING EGR_PORT_PART2
[engine template=PLU_IPV4_SEARCH]
UC_DST_VPN_ING
[engine resource=120]
MAC_LOCK
[hash_families]
LPTS_HASH
[hash_suffixes]
MOD KEY
[tags]
COMM ING EGR DEBUG SAT L2 IPV4 TAIL MN__ACQUIRE MN__RELEASE
[locks family=mac]
MAC_LOCK__MN TX_ADJ
[protected]
UIDB_L3_ING NHINDEX L3_NRLDI_ING EGR_PORT_PART1 EGR_PORT_PART2
)";

inline constexpr const char* TABLES = R"(
[paged]
0 32 UIDB_L3_ING
3 16 NHINDEX
7 32 L3_NRLDI_ING
[direct]
0x81540C00 16 PORT_CONFIG_ING
0x40302020 32 EGR_PORT_PART1
0x40500000 32 TX_ADJ
[global_blocks base=0x40342020 stride=32]
1 GLOBAL_PKT_TRACE
[lock_bitmaps]
mac 0x404C8A10 16
)";

// Catalogues of one engine family each: exact-key hash tables, the PLU's
// route searches, and the TLU's paged modulus read.
inline constexpr const char* HASH_IDENTIFIERS = R"(
[engine form=read template=TLU_READ_32B]
UIDB_L3_ING
[hash_families]
MPLS_RPF HOST_HASH MAPT_LOGG_HASH
[hash_suffixes]
MOD BUCKET_0 BUCKET_1 BUCKET KEY KEY_TABLE_ID_ONLY RES REQUEST_UNUSED RESULT_UNUSED
[tags]
ING TAIL
)";

inline constexpr const char* HASH_TABLES = R"(
[paged]
0 32 UIDB_L3_ING
[hash_spaces]
A         0x80000000 0x100000
base_addr 0          0x40000
[hash_tables]
MPLS_RPF       31  32  A         8  16
MAPT_LOGG_HASH 60  392 base_addr 64 16 data_plane
HOST_HASH      -   -   A         16 16 data_plane
)";

inline constexpr const char* ROUTE_IDENTIFIERS = R"(
[engine form=plu_ipv4 template=PLU_IPV4_SEARCH]
UC_DST_VPN_ING
[engine form=plu_ipv6 template=PLU_IPV6_SEARCH]
IPV6_UC_DST_VPN_EGR
[engine form=read template=TLU_READ_32B]
TX_ADJ
[tags]
IPV4 IPV6 COMM
)";
inline constexpr const char* ROUTE_TABLES = "[direct]\n0x40500000 32 TX_ADJ";

inline std::string tlu_mod_identifiers(const std::string& response) {
  return "[engine form=tlu_mod_read_paged resource=120 response=" + response +
         "]\nLAG_EGR\n[engine form=read template=TLU_READ_16B]\nLAG_INFO_EGR\n";
}
inline constexpr const char* TLU_MOD_TABLES = "[paged]\n4 16 LAG_EGR\n[direct]\n0x403A4200 16 LAG_INFO_EGR";

// The catalogue with `rows` as lookups.txt, and what the generator says.
struct generated {
  generated() { gen::parse_request_templates(TEMPLATES, "request_templates.def", cat, errs); }
  gen::catalogue cat;
  gen::errors errs;
  std::vector<gen::lookup> lookups;
};

inline generated generate(const std::string& rows, const std::string& identifiers = IDENTIFIERS,
                          const std::string& tables = TABLES) {
  generated g;
  gen::parse_identifiers(identifiers, "identifiers.txt", g.cat, g.errs);
  gen::parse_tables(tables, "tables.txt", g.cat, g.errs);
  gen::parse_lookups(rows, "lookups.txt", g.cat, g.errs);
  g.lookups = gen::resolve(g.cat, g.errs);
  return g;
}

inline std::string joined(const gen::errors& errs) {
  std::string all;
  for (const std::string& e : errs) all += e + "\n";
  return all;
}

inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace gen_test
