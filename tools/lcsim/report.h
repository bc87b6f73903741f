// The tool's readable report of a run.
#pragma once

#include <cstdio>
#include <vector>

#include "model/chassis.h"
#include "scenario.h"

namespace lcsim {

struct packet_result {
  const scenario_packet* input;  // null for a frame that came from the fabric
  model::packet_outcome outcome;
};

// Per packet: what it was, the handler it reached and how it ended; then the
// global counters that moved on each NPU.
void print_report(std::FILE* out, model::chassis& chassis, const std::vector<packet_result>& results);

}  // namespace lcsim
