#include "app/menus/main_menu.h"

#include "app/console/banner.h"
#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/console/unbuilt.h"
#include "app/menus/about_screen.h"
#include "app/menus/advanced_menu.h"
#include "bbp/bbp_session.h"
#include "ioanalysis/benchio_action.h"
#include "session/bench_action.h"
#include "session/custom_action.h"
#include "stress/stress_action.h"

#include <array>
#include <string_view>

namespace zorvane {

namespace {

struct MainMenuItem {
    char color;
    std::string_view lines;
    void (*run)();
};

constexpr std::array<MainMenuItem, 8> items{{
    {'T', "  0         Benchmark Pi  (all in ram)", bench_menu},
    {'T', "  1         Component Stress Tester", StressTest::stress_menu},
    {'T', "  2         Run I/O Performance Analysis", benchio_menu},
    {'Y',
     "  3         Custom Compute a Constant\n"
     "                -   Compute other constants (e, Golden Ratio, etc...)\n"
     "                -   Choose your own settings (use disk for large computations)",
     custom_menu},
    {'G', "  4         BBP Digit Extractor for Pi", bbp_menu},
    {'G', "  5         Digit Viewer", digit_viewer},
    {'t', "  6         Advanced Options", advanced_menu},
    {'t', "  7         About", about_screen},
}};

} // namespace

void main_menu() {
    zvp::print_banner();
    zvp::print_line();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i != 0 && items[i].color != items[i - 1].color) zvp::print_line();
        zvp::print_line(items[i].lines, items[i].color);
    }
    zvp::set_color('w');
    zvp::print_line("\n");
    zvp::print_line("Enter your choice:");
    const std::uint32_t choice = zvp::prompt_option(0, items.size() - 1);
    zvp::print_line();
    items[choice].run();
}

void digit_viewer() { zvp::stop_unbuilt("The Digit Viewer (action \"digitviewer\")"); }

} // namespace zorvane
