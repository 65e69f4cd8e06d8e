#pragma once

#include "parallel/topology/scheduling_group.h"

#include <string>

namespace zvp {

/// The screen on which a user edits the cores that a thread is bound to, until an empty line.
void edit_cores(SchedulingGroup& group);

/// The menu row of a lane or worker: how many cores its thread is bound to.
std::string affinity_row(const SchedulingGroup& group);

} // namespace zvp
