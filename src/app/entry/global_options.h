#pragma once

#include "app/console/process_switches.h"
#include "app/notation/command_line.h"

namespace zorvane {

/// The options in front of the action: they set the switches of the process.
const CommandLine::OptionTable<zvp::ProcessSwitches>& global_options();

} // namespace zorvane
