#include "app/entry/startup_checks.h"

#include "app/console/console.h"
#include "app/console/process_switches.h"
#include "app/console/unbuilt.h"
#include "app/failure/exceptions.h"
#include "parallel/topology/topology.h"
#include "platform/file.h"
#include "platform/kernel_set.h"
#include "platform/process.h"
#include "platform/processor_features.h"
#include "platform/system_error.h"

#include <algorithm>
#include <array>
#include <string>

namespace zorvane {

namespace {

using zvp::print_line;

void check_processor_features() {
    print_line("\nChecking processor/OS features...\n");
    print_line("Required Features:");
    print_line("    SSE, SSE2, SSE3", 'T');
    print_line();
    const zvp::platform::ProcessorFeatures& features = zvp::platform::processor_features();
    if (!features.sse || !features.sse2 || !features.sse3) {
        print_line("Warning:", 'R');
        print_line("  This computer does not have all the processor or operating system");
        print_line("  features that are necessary to run this binary.\n");
        print_line("  Proceeding may cause the program to crash.");
        print_line();
        print_line("  Command line users can skip this message by passing, \"skip-warnings\"", 'g');
        print_line("  as the first parameter.");
        print_line();
        if (!zvp::process_switches().skip_warnings) {
            zvp::pause('w');
            print_line();
        }
    }
    zvp::set_color('w');
    print_line();
}

void check_kernel_set() {
    const std::string& error = zvp::platform::kernel_set_choice().error;
    if (!error.empty()) throw zvp::InvalidParametersException("", error);
}

void check_processor_groups() { zvp::check_processor_groups(); }

void build_topology_tables() { zvp::topology(); }

/// A check joins the start-up as one entry here.
constexpr std::array checks{check_processor_features, check_kernel_set, check_processor_groups, build_topology_tables};

} // namespace

void apply_priority() {
    using zvp::platform::PriorityClass;
    constexpr std::array classes{PriorityClass::idle,         PriorityClass::below_normal, PriorityClass::normal,
                                 PriorityClass::above_normal, PriorityClass::high,         PriorityClass::real_time};
    const zvp::ProcessSwitches& switches = zvp::process_switches();
    const auto index = static_cast<std::size_t>(std::clamp(switches.priority, -2, 3) + 2);
    const int error = zvp::platform::set_priority_class(classes[index], switches.priority_requested);
    if (error != 0 && switches.priority_requested)
        zvp::print_warning("Warning: Unable to set the process priority: "
                           + std::string(zvp::platform::system_error_text(error)));
}

void run_startup_checks() {
    for (const auto check : checks) check();
    print_line();
}

bool resume_if_unfinished() {
    if (!zvp::platform::file_exists("zorvane Checkpoint File.txt")) return false;
    print_line("An unfinished computation has been found: zorvane Checkpoint File.txt", 'Y');
    zvp::print_unbuilt("Resuming a computation");
    print_line();
    return false;
}

} // namespace zorvane
