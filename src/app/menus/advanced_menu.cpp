#include "app/menus/advanced_menu.h"

#include "app/console/build_info.h"
#include "app/console/console.h"
#include "app/console/unbuilt.h"
#include "app/menus/item_menu.h"

namespace zorvane {

namespace {

void compilation_options() {
    zvp::print_line("Like any other program, zorvane is highly configurable at compile-time.");
    zvp::print_line("Below is a partial list of compilation options used for this binary.\n");
    for (const auto& [name, value] : zvp::compilation_options()) zvp::print_labelm_line(24, name + ":", value, 'G');
}

} // namespace

void benchmark_validator() { zvp::stop_unbuilt("The Benchmark Validator (action \"validate\")"); }

void advanced_menu() {
    run_item_menu("Advanced Options",
                  {
                      {"Benchmark Validator", 'T', benchmark_validator},
                      {"Log(n) Formula Generator", 'T', [] { zvp::stop_unbuilt("The Log(n) Formula Generator"); }},
                      {"Hardware Features", 'T', [] { zvp::stop_unbuilt("The list of Hardware Features"); }},
                      {"Compilation Options", 'T', compilation_options},
                      {"Test Swap Multiply", 'Y', [] { zvp::stop_unbuilt("Test Swap Multiply"); }},
                  });
}

} // namespace zorvane
