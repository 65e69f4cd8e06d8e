#include "app/entry/global_options.h"

#include "app/notation/typed_values.h"

namespace zorvane {

namespace {

using zvp::ProcessSwitches;
using Line = CommandLine::CommandLine;

void take_pause(ProcessSwitches& switches, Line& line) {
    switches.pause_mode = CommandLine::read_s32(line.take_value());
    if (switches.pause_mode < -1) switches.pause_on_fatal_exit = false;
}

void take_priority(ProcessSwitches& switches, Line& line) {
    switches.priority = CommandLine::read_s32(line.take_value());
    switches.priority_requested = true;
}

void take_personal_identifiers(ProcessSwitches& switches, Line& line) {
    const std::string& value = line.take_value();
    if (!value.empty()) switches.show_personal_identifiers = CommandLine::read_s32(value) > 0;
}

void take_skip_warnings(ProcessSwitches& switches, Line& line) {
    switches.skip_warnings = true;
    line.advance();
}

} // namespace

const CommandLine::OptionTable<ProcessSwitches>& global_options() {
    static const CommandLine::OptionTable<ProcessSwitches> table({
        {"pause", take_pause},
        {"priority", take_priority},
        {"colors",
         [](auto& switches, auto& line) { switches.colors_enabled = CommandLine::read_s32(line.take_value()) > 0; }},
        {"PII", take_personal_identifiers},
        {"height", [](auto&, auto& line) { line.advance(); }}, // terminals size themselves
        {"skip-warnings", take_skip_warnings},
    });
    return table;
}

} // namespace zorvane
