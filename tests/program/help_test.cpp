#include "program/zorvane.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

TEST(Help, AnswersOnStandardOutputAndDoesNothingElse) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"--help",
         {"\nUsage:  zorvane [", "zorvane custom pi -dec:1m", "    slave version", "    -minIO:size", "    pause:N"}},
        {"-h", {"\nOptions of stress:\n", "2.5t\n", "    -printtraffic:N"}},
        {"colors:0 help", {"\nGlobal options, before the action:\n"}},
        {"help custom", {"Usage:  zorvane [global options] custom", "    -hex:N", "exp(1) exp(-1)\n", "pushpool"}},
        {"custom --help", {"Usage:  zorvane [global options] custom"}},
        {"help bench", {"This action isn't part of version V.\n", "512M 1G"}},
        {"--version", {"zorvane vV\nTuning:  Linux/", "\nCompiler:  ", "\nBuild Type:"}},
    };
    for (const auto& [line, lines] : cases) {
        const ProgramRun run = zorvane(line);
        const ProgramResult result = run_program(run);
        const std::string output = behind_start_up(result);
        EXPECT_EQ(result.exit_code, 0) << describe(run, result);
        EXPECT_EQ(output.find("Checking"), std::string::npos) << describe(run, result);
        for (const std::string& expected : lines)
            EXPECT_NE(output.find(expected), std::string::npos) << expected << describe(run, result);
    }
}

TEST(UnknownWord, TheNearestKnownOneIsShown) {
    const std::pair<const char*, std::string> cases[] = {
        {"cutsom", "Invalid Parameter: cutsom\nDid you mean \"custom\"?\n"},
        {"pi", "Invalid Parameter: pi\nDid you mean \"custom pi\"?\n"},
        {"color:0 about", "Invalid Parameter: color:0\nDid you mean \"colors\"?\n"},
        {"custom Pi", invalid("Invalid Constant: Pi\nDid you mean \"pi\"?")},
        {"custom pi -deck:5", invalid("Invalid Command: -deck:5\nDid you mean \"-dec\"?")},
        {"custom pi -algorithm:chudnosky", invalid("Invalid Algorithm: chudnosky\nDid you mean \"chudnovsky\"?")},
        {"custom pi -mode:swp", invalid("Invalid Mode: swp\nDid you mean \"swap\"?")},
        {"custom pi -PF:pool", invalid("Invalid Parallel Framework: pool")},
        {"custom pi -MA:mallok", invalid("Invalid Memory Allocator: mallok\nDid you mean \"malloc\"?")},
    };
    for (const auto& [line, expected] : cases) expect_output(zorvane(line), expected);
    expect_output(zorvane("help cutsom"), "Invalid Parameter: cutsom\nDid you mean \"custom\"?\n");
}

} // namespace
