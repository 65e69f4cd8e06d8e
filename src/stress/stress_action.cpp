#include "stress/stress_action.h"

#include "app/console/build_info.h"
#include "app/console/unbuilt.h"
#include "app/notation/typed_values.h"

#include <algorithm>

namespace StressTest {

namespace {

using Line = CommandLine::CommandLine;
using Table = CommandLine::OptionTable<StressRequest>;

std::vector<std::pair<std::string, Table::Handler>> stress_rows() {
    std::vector<std::pair<std::string, Table::Handler>> rows{
        {"-M",
         [](StressRequest& request, Line& line) {
             request.memory = std::min(CommandLine::read_bytes(line.take_value()), zvp::memory_cap);
         }},
        {"-D",
         [](StressRequest& request, Line& line) {
             request.seconds_per_test = std::clamp(CommandLine::read_u32(line.take_value()), 1u, max_seconds);
         }},
        {"-TL",
         [](StressRequest& request, Line& line) {
             request.seconds_total = std::min(CommandLine::read_u32(line.take_value()), max_seconds);
         }},
        // A test of other builds: known by name, refused like a word that isn't known.
        {"C17", [](StressRequest&, Line& line) { CommandLine::reject_parameter(line); }},
    };
    for (const char* tag : {"BKT", "BBP", "FFT", "N32", "N64", "HNT", "VST"})
        rows.emplace_back(tag, [](StressRequest& request, Line& line) { request.tests.insert(line.take_parameter()); });
    return rows;
}

} // namespace

const Table& stress_options() {
    static const Table table(stress_rows());
    return table;
}

void stress_action(Line& line) {
    StressRequest request;
    CommandLine::apply_options(stress_options(), request, line);
    zvp::stop_unbuilt(action_name);
}

void stress_menu() { zvp::stop_unbuilt(action_name); }

} // namespace StressTest
