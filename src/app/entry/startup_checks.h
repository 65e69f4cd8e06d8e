#pragma once

namespace zorvane {

/// Sets the priority class that the command line asks for.
void apply_priority();

/// Runs the checks between the global options and the action, in their order, each told on the console.
void run_startup_checks();

/// Resumes an unfinished computation if the working directory holds one; returns whether it did. So far it warns only.
bool resume_if_unfinished();

} // namespace zorvane
