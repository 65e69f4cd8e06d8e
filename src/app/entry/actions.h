#pragma once

#include "app/failure/registry.h"
#include "app/notation/command_line.h"

namespace zorvane {

using Action = void (*)(CommandLine::CommandLine&);

/// The actions by name. A new one joins the program as one row. It finds the cursor behind its own name.
const zvp::Registry<Action>& action_table();

/// Runs the action whose name is under the cursor. An unknown name is a fatal stop.
void run_action(CommandLine::CommandLine& line);

} // namespace zorvane
