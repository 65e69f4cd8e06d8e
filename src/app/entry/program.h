#pragma once

#include <string>
#include <vector>

namespace zorvane {

/// The whole program, from its parameters (its own name first) to its exit code: 0 for a finished action, 1 for
/// an exception.
int run_program(std::vector<std::string> parameters);

} // namespace zorvane
