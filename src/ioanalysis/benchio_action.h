#pragma once
// The action "benchio": the I/O performance analysis.

#include "session/resource_options.h"

namespace zorvane {

/// The analysis always works on disk, so that every resource option applies.
struct BenchIORequest : ResourceRequest {
    BenchIORequest() { swap_mode = true; }
};

/// For stop_unbuilt().
inline constexpr std::string_view benchio_name = "The I/O Performance Analysis (action \"benchio\")";

const CommandLine::OptionTable<BenchIORequest>& benchio_options();

void benchio_action(CommandLine::CommandLine& line);

/// The analysis' menu.
void benchio_menu();

} // namespace zorvane
