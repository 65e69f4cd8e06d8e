#include "app/entry/program.h"

#include "app/console/console.h"
#include "app/console/process_switches.h"
#include "app/entry/actions.h"
#include "app/entry/config_action.h"
#include "app/entry/crash_report.h"
#include "app/entry/global_options.h"
#include "app/entry/help.h"
#include "app/entry/startup_checks.h"
#include "app/failure/exception_registry.h"
#include "app/menus/main_menu.h"
#include "gateway/slave_action.h"
#include "ioanalysis/benchio_action.h"
#include "multiply/tables/algorithm_lists.h"
#include "parallel/memory/allocator_registry.h"
#include "parallel/tasks/framework_config.h"
#include "platform/console_io.h"
#include "platform/process.h"
#include "platform/system_error.h"
#include "session/bench_action.h"
#include "session/custom_action.h"
#include "stress/stress_action.h"

#include <exception>

namespace zorvane {

namespace {

void set_executable_path() {
    const std::optional<std::string> path = zvp::platform::executable_path();
    if (!path) zvp::fatal_stop("Failed to retrieve path.");
    zvp::process_switches().executable_path = *path;
    zvp::process_switches().executable_directory = path->substr(0, path->find_last_of("/\\") + 1);
}

/// Builds every named table, so that a name that comes twice stops the program at once and not when the table is first
/// needed.
void build_tables() {
    zvp::exception_registry();
    zvp::framework_registry();
    zvp::allocator_registry();
    zvp::build_algorithm_tables();
    global_options();
    action_table();
    config_actions();
    custom_options();
    bench_options();
    benchio_options();
    StressTest::stress_options();
    slave_options();
}

/// Start-up behind the command line, and the action.
void run_guarded(CommandLine::CommandLine& line) {
    global_options().scan(zvp::process_switches(), line);
    if (answer_help(line)) return;
    install_crash_filter();
    apply_priority();
    run_startup_checks();
    if (resume_if_unfinished()) return;
    if (line.at_end()) {
        main_menu();
    } else {
        run_action(line);
    }
}

/// The exit code of what run_guarded() did.
int run_with_guard(CommandLine::CommandLine& line) {
    try {
        run_guarded(line);
        return 0;
    } catch (const zvp::Exception& exception) {
        exception.print();
    } catch (const std::exception& exception) {
        zvp::set_color('R');
        zvp::print_labelc("Uncaught std exception", exception.what());
        zvp::print_line();
        zvp::set_color('w');
    }
    return 1;
}

/// -2 never pauses, -1 pauses after a failure, 1 always does; 0 is -1 for a program that was started from a
/// console and 1 for one that has a window of its own.
void pause_at_end(int code) {
    const zvp::ProcessSwitches& switches = zvp::process_switches();
    int mode = switches.pause_mode;
    if (mode == 0) mode = switches.started_from_console ? -1 : 1;
    const bool skips = mode < (code != 0 ? -1 : 1);
    if (!skips) zvp::pause();
}

/// Output that went nowhere, but for a reader that has gone away, mustn't look like success.
bool tell_lost_output() {
    const int error = zvp::platform::lost_output();
    if (error == 0) return false;
    zvp::platform::write_error("zorvane: output was lost: " + std::string(zvp::platform::system_error_text(error))
                               + "\n");
    return true;
}

} // namespace

int run_program(std::vector<std::string> parameters) {
    zvp::platform::ignore_write_signals();
    zvp::platform::restore_terminal_at_signals();
    build_tables();
    set_executable_path();
    CommandLine::CommandLine line(std::move(parameters));
    const int code = run_with_guard(line);
    zvp::reset_color();
    zvp::print_line();
    pause_at_end(code);
    return tell_lost_output() ? 1 : code;
}

} // namespace zorvane
