// The tool's readable report of a run.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "ctrl/chassis_tables.h"
#include "scenario.h"

namespace lcsim {

struct packet_result {
  const scenario_packet* input;  // null for a frame that came from the fabric
  model::packet_outcome outcome;
};

// How the packet ended, from its own end: "punted" when a frame went to the
// host, "sent", "dropped <counter>" when its drop named a counter, else
// the model's end ("freed" for a drop without a counter).
std::string packet_fate(const model::packet_outcome& o);

// Per packet: what it was, the handler it reached and how it ended; then the
// global counters that moved on each NPU.
void print_report(std::FILE* out, ctrl::chassis_tables& tables, const std::vector<packet_result>& results);

}  // namespace lcsim
