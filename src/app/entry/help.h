#pragma once

#include "app/notation/command_line.h"

namespace zorvane {

/// Answers "--help", "-h", "help" (each also for an action: "help custom", "custom --help") and "--version" under the
/// cursor on standard output; returns whether one of them was there. An action that isn't known is a fatal stop.
bool answer_help(CommandLine::CommandLine& line);

/// For an action that isn't known: prints it, what it was probably meant to be, and ends the program.
[[noreturn]] void reject_action(const std::string& word);

} // namespace zorvane
