#pragma once

#include "app/notation/command_line.h"

namespace zorvane {

/// Runs the action whose name is under the cursor. An unknown name is a fatal stop.
void run_action(CommandLine::CommandLine& line);

} // namespace zorvane
