#include "parallel/topology/affinity_screen.h"

#include "parallel/topology/machines.h"
#include "support/process.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

using namespace zvp;

/// The screens of an output, each cut down to its active cores.
std::string active_cores(const std::string& output) {
    static const std::regex around(
        R"(\n\nThread Affinity\n[^]*?Active Cores (\(\d+ total\):\n[^]*?\n)\n    #  [^]*?Option: )");
    return std::regex_replace(output, around, "$1");
}

std::string screen(std::size_t count, const std::string& list) {
    return "(" + std::to_string(count) + " total):\n    " + list + "\n";
}

TEST(AffinityScreen, AnEntryDoesTheWrongThing) {
    const CoreMap map(test::machine_of({6, 2}));
    const auto foreign = [](unsigned core, int group) {
        return "Core " + std::to_string(core) + " is not compatible with processor group " + std::to_string(group)
               + ".\n";
    };
    const struct {
        std::string line, said;
        std::size_t count;
        std::string list;
    } steps[] = {
        {"3", "", 1, "3 "},
        {"3", "", 0, "(none)"},
        {"1-3", "", 3, "1-3 "},
        {"2-4", "", 2, "1 4 "},
        {"3-1", "\nInvalid Range\n", 2, "1 4 "},
        {"4-", "\nInvalid Range\n", 2, "1 4 "},
        {"4x", "\nInvalid Range\n", 2, "1 4 "},
        {"8", "Core 8 doesn't exist.\n", 2, "1 4 "},
        {"99999999999", "Core 4294967295 doesn't exist.\n", 2, "1 4 "},
        {"5-4000000000", foreign(6, 0) + foreign(7, 0), 3, "1 4-5 "},
        {"9-12", "", 3, "1 4-5 "},
        {"a", foreign(6, 0) + foreign(7, 0), 6, "0-5 "},
        {"e", foreign(6, 0), 3, "1 3 5 "},
        {"odd", "", 1, "7 "}, // the set was empty when core 7's turn came
        {"a", foreign(0, 1) + foreign(1, 1) + foreign(2, 1) + foreign(3, 1) + foreign(4, 1) + foreign(5, 1), 2, "6-7 "},
        {"x", "", 2, "6-7 "},
        {"-1", "", 2, "6-7 "},
        {"d", "", 0, "(none)"},
    };
    SchedulingGroup group(map);
    std::string lines, expected = screen(0, "(none)");
    for (const auto& step : steps) {
        lines += step.line + "\n";
        expected += step.said + screen(step.count, step.list);
    }
    EXPECT_EQ(active_cores(test::printed_with_input(lines + "\n", [&] { edit_cores(group); })), expected);
    EXPECT_TRUE(group.empty());
}

} // namespace
