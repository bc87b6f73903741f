// Running a scenario on a chassis of software NPUs.
#pragma once

#include <vector>

#include "ctrl/chassis_tables.h"
#include "model/chassis.h"
#include "report.h"
#include "scenario.h"

namespace lcsim {

// Sets up the scenario's VQIs and interfaces through the control side,
// queues every packet, runs until idle, and returns each packet's outcome in
// arrival order.
std::vector<packet_result> run_scenario(model::chassis& chassis, ctrl::chassis_tables& tables, const scenario& sc);

}  // namespace lcsim
