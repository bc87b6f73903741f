#include "npu_tables.h"

#include "ctrl/page_descriptors.h"
#include "dplane/infra/lookup_tables.h"

namespace ctrl {

namespace {
// Every descriptor that the lookup catalogue uses, each with a region of its
// own, before any writer looks a record up.
model::npu& with_page_descriptors(model::npu& n) {
  for (const lookup_page_st& p : LOOKUP_PAGES) {
    write_page_descriptor(n, p.tpd_idx, PAGED_TABLES_BASE + p.tpd_idx * PAGED_TABLE_REGION, p.record_bytes);
  }
  return n;
}
}  // namespace

npu_tables::npu_tables(model::npu& n)
    : n_(with_page_descriptors(n)),
      hashes_(n),
      ifs_(n, hashes_),
      routes_(n),
      tcam_(n),
      bundles_(n),
      queues_(n),
      records_(n),
      counters_(n) {}

}  // namespace ctrl
