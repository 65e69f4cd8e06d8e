#pragma once

#include "app/notation/command_line.h"

namespace zorvane {

/// The action "config": runs what a configuration file describes.
void config_action(CommandLine::CommandLine& line);

} // namespace zorvane
