// Running a scenario on a chassis of software NPUs.
#pragma once

#include <vector>

#include "model/chassis.h"
#include "report.h"
#include "scenario.h"

namespace lcsim {

// Queues every packet, runs until idle, and returns each packet's outcome
// in arrival order.
std::vector<packet_result> run_scenario(model::chassis& chassis, const scenario& sc);

}  // namespace lcsim
