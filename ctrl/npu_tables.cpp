#include "npu_tables.h"

#include "ctrl/page_descriptors.h"

namespace ctrl {

namespace {
model::npu& with_page_descriptors(model::npu& n) {
  install_page_descriptors(n);
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
