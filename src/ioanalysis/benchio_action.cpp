#include "ioanalysis/benchio_action.h"

#include "app/console/unbuilt.h"

namespace zorvane {

const CommandLine::OptionTable<BenchIORequest>& benchio_options() {
    static const CommandLine::OptionTable<BenchIORequest> table({
        {"-M", take_memory},
        {"-MA", take_allocator},
        {"-PF", take_framework},
        {"-TD", take_task_decomposition},
        {"-minIO", take_bytes_per_seek},
        {"-swap", take_far_memory},
    });
    return table;
}

void benchio_action(CommandLine::CommandLine& line) {
    BenchIORequest request;
    CommandLine::apply_options(benchio_options(), request, line);
    zvp::stop_unbuilt(benchio_name);
}

void benchio_menu() { zvp::stop_unbuilt(benchio_name); }

} // namespace zorvane
