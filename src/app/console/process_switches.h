#pragma once
// Switches of the whole process. Start-up sets them on the main thread before any action runs; then they are
// read only.

#include <string>

namespace zvp {

struct ProcessSwitches {
    bool started_from_console = true;
    int pause_mode = 0; // 0 is automatic, see pause_at_end() of the entry
    bool pause_on_fatal_exit = true;
    bool colors_enabled = true;
    int priority = -1;               // -2 idle .. 3 real-time
    bool priority_requested = false; // the user asked for a class, so that a refusal is worth a warning
    bool skip_warnings = false;
    bool show_personal_identifiers = false;
    std::string executable_path;
    std::string executable_directory; // ends in "/"
};

ProcessSwitches& process_switches();

} // namespace zvp
