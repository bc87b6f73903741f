// The one owner of an NPU's tables on the control side: every index pool
// and allocator of the NPU (UIDB indexes and statistics blocks in ifs(), the
// chain records of the paged tables, hash entries and buckets, bundles, line
// queues) and the writers that use them. It lays the page descriptors out
// when made. Every call checks its input first and writes nothing when it
// refuses, with a typed error; a removal gives back what the entry held.
// One control thread calls it.
#pragma once

#include "ctrl/bundles.h"
#include "ctrl/counters.h"
#include "ctrl/hash_tables.h"
#include "ctrl/interfaces.h"
#include "ctrl/line_queues.h"
#include "ctrl/paged_records.h"
#include "ctrl/plu_routes.h"
#include "ctrl/tcam_entries.h"
#include "model/npu.h"

namespace ctrl {

class npu_tables {
 public:
  explicit npu_tables(model::npu& n);
  npu_tables(const npu_tables&) = delete;
  npu_tables& operator=(const npu_tables&) = delete;

  model::npu& npu() { return n_; }
  interfaces& ifs() { return ifs_; }
  hash_tables& hashes() { return hashes_; }
  plu_routes& routes() { return routes_; }
  tcam_entries& tcam() { return tcam_; }
  bundles& lags() { return bundles_; }
  line_queues& queues() { return queues_; }
  paged_records& records() { return records_; }
  const counters& stats() const { return counters_; }

 private:
  model::npu& n_;
  hash_tables hashes_;
  interfaces ifs_;
  plu_routes routes_;
  tcam_entries tcam_;
  bundles bundles_;
  line_queues queues_;
  paged_records records_;
  counters counters_;
};

}  // namespace ctrl
