#include "app/entry/actions.h"

#include "app/entry/config_action.h"
#include "app/entry/help.h"
#include "app/menus/about_screen.h"
#include "app/menus/advanced_menu.h"
#include "app/menus/main_menu.h"
#include "bbp/bbp_session.h"
#include "gateway/slave_action.h"
#include "ioanalysis/benchio_action.h"
#include "session/bench_action.h"
#include "session/custom_action.h"
#include "stress/stress_action.h"

namespace zorvane {

using Line = CommandLine::CommandLine;

const zvp::Registry<Action>& action_table() {
    static const zvp::Registry<Action> table("Duplicate Action", {
                                                                     {"bench", bench_action},
                                                                     {"stress", StressTest::stress_action},
                                                                     {"benchio", benchio_action},
                                                                     {"custom", custom_action},
                                                                     {"bbp", [](Line&) { bbp_menu(); }},
                                                                     {"digitviewer", [](Line&) { digit_viewer(); }},
                                                                     {"about", [](Line&) { about_screen(); }},
                                                                     {"validate", [](Line&) { benchmark_validator(); }},
                                                                     {"config", config_action},
                                                                     {"slave", slave_action},
                                                                 });
    return table;
}

void run_action(Line& line) {
    const Action* action = action_table().find(line.key());
    if (!action) reject_action(line.parameter());
    line.advance();
    (*action)(line);
}

} // namespace zorvane
