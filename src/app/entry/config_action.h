#pragma once

#include "app/failure/registry.h"
#include "app/notation/command_line.h"
#include "app/notation/node.h"

namespace zorvane {

using ConfigAction = void (*)(const zvp::Object& settings);

/// What the key "Action" of a configuration file may say. The settings stand under a key of the same name.
const zvp::Registry<ConfigAction>& config_actions();

/// The action "config": runs what a configuration file describes.
void config_action(CommandLine::CommandLine& line);

} // namespace zorvane
