#pragma once

namespace zorvane {

/// From here on a fault of the process leaves a crash record in the working directory and tells the user so.
void install_crash_filter();

} // namespace zorvane
