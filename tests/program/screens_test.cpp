#include "platform/kernel_set.h"
#include "program/zorvane.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

using namespace test;

const std::string main_items = R"(

  0         Benchmark Pi  (all in ram)
  1         Component Stress Tester
  2         Run I/O Performance Analysis

  3         Custom Compute a Constant
                -   Compute other constants (e, Golden Ratio, etc...)
                -   Choose your own settings (use disk for large computations)

  4         BBP Digit Extractor for Pi
  5         Digit Viewer

  6         Advanced Options
  7         About


Enter your choice:
option: )";

const std::string advanced_items = R"(Advanced Options

  0         Benchmark Validator
  1         Log(n) Formula Generator
  2         Hardware Features
  3         Compilation Options
  4         Test Swap Multiply

option: )";

const std::string disclaimer = R"(
Disclaimer:

Performing large multi-threaded computations using this program may
subject your computer to extremely high levels of stress for extended
periods of time. To protect your computer, MAKE SURE that your hardware
is stable and fit before performing large computations. I will take
absolutely no responsibility for any damage that may be caused by this
program.

)";

TEST(Menus, AnItemRunsAnotherOrEndsWithTheWrongCode) {
    const struct {
        std::string input, shown;
        int exit_code;
    } cases[] = {
        {"0\n", unbuilt(bench_name), 1},
        {"1\n", unbuilt(stress_name), 1},
        {"2\n", unbuilt(benchio_name), 1},
        {"3\n5\n0\n3\n100\n0\n", "\n\nCustom Compute a Constant\n\n  1     Constant:               Pi\n", 0},
        {"4\n2\n0\n0\n", "Hexadecimal Digits starting from: 16^-1\n", 0},
        {"5\n", unbuilt(viewer_name), 1},
        {"6\n0\n", advanced_items + "\n" + unbuilt(validator_name), 1},
        {"6\n1\n", unbuilt("The Log(n) Formula Generator"), 1},
        {"6\n2\n", unbuilt("The list of Hardware Features"), 1},
        {"6\n5\n3\n", advanced_items + "option: \nLike any other program, zorvane", 0},
        {"6\n4\n", unbuilt("Test Swap Multiply"), 1},
        {"7", disclaimer, 0},
        {"8\n4294967303\n\r\n", main_items + "option: option: \n" + unbuilt(bench_name), 1},
        {"9", main_items + "option: option: " + input_ended, 1}, // the end of input chooses nothing
        {"6\n", advanced_items + "option: " + input_ended, 1},
        {"4\n", "option: option: " + input_ended, 1},
        {"3\n", "option: option: " + input_ended, 1},
        {"4\n3\n", "Digits: Digits: " + input_ended, 1},
    };
    for (const auto& c : cases) {
        const ProgramRun run = zorvane("", c.input);
        const ProgramResult result = run_program(run);
        const std::string output = behind_start_up(result);
        EXPECT_TRUE(output.starts_with("zorvane vV\n")) << describe(run, result);
        for (const std::string& shown :
             {std::string("\n\nDistribute Freely - Please report any bugs.\n\nTuning:  Linux/"), main_items, c.shown})
            EXPECT_NE(output.find(shown), std::string::npos) << shown << describe(run, result);
        EXPECT_EQ(output.find_first_of("\x1b\r"), std::string::npos) << describe(run, result);
        EXPECT_EQ(result.exit_code, c.exit_code) << describe(run, result);
    }
}

TEST(UnfinishedComputation, AStrayFileIsAWarning) {
    const TemporaryFolder folder;
    write_file(folder.path / "zorvane Checkpoint File.txt", "");
    ProgramRun run = zorvane("bench");
    run.working_directory = folder.path;
    expect_output(run, "An unfinished computation has been found: zorvane Checkpoint File.txt\n"
                           + unbuilt("Resuming a computation") + "\n" + unbuilt(bench_name));
}

TEST(EndOfInput, OnATerminalItCountsForOneReadAlone) {
    const std::string end = "\x04";
    const struct {
        std::string line, input, shown;
    } cases[] = {
        {"", end + "7\n", "Disclaimer:"},
        {"bbp", end + "2\n1000\n" + end + end + "3\n8\n4\n" + end + "1\n0\n", "starting from: 16^-1001"},
        {"custom", end + "3\n500\n" + end + "1\n" + end + "2\n5\n1\n0\n" + end + "0\n0\n", "Last Decimal Digits:  e"},
    };
    for (const auto& c : cases) {
        ProgramRun run = zorvane("colors:0 pause:-2 " + c.line, c.input);
        if (c.line.empty()) run.arguments.pop_back();
        run.terminal = true;
        run.seconds = 20;
        const ProgramResult result = run_program(run);
        EXPECT_EQ(result.exit_code, 0) << describe(run, result);
        EXPECT_NE(result.output.find(c.shown), std::string::npos) << describe(run, result);
    }
}

TEST(Colors, TerminalsGetNoneOrSwitchedOffOnesRemain) {
    const struct {
        std::string line, input, colored;
    } cases[] = {
        {"", "7\n", "\x1b[96m  0         Benchmark Pi"},
        {"about", "", "\x1b[93mDisclaimer:"},
        {"bench", "", "\x1b[91mBenchmark Pi (action \"bench\") isn't part of"},
        {"custom pi -o", "", "\x1b[91mUncaught std exception: "},
        {"custom tau", "", "\x1b[91m\r\nException Encountered: "},
        {"bbp", "2\n0\n3\n12\n0\n", "\x1b[92m  243F6A88 85A3\x1b[91m08D3 13198A2E "},
    };
    for (const auto& c : cases) {
        for (const bool colors : {true, false}) {
            ProgramRun run = zorvane((colors ? "pause:-2 " : "pause:-2 colors:0 ") + c.line, c.input);
            if (c.line.empty()) run.arguments.pop_back();
            run.terminal = true;
            const ProgramResult result = run_program(run);
            EXPECT_EQ(result.output.find(c.colored) != std::string::npos, colors) << describe(run, result);
            EXPECT_EQ(result.output.find('\x1b') != std::string::npos, colors) << describe(run, result);
            EXPECT_EQ(result.output.rfind("\x1b"), result.output.rfind("\x1b[0m")) << "the last colour stays";
        }
    }
}

TEST(StatusLine, ItIsMissingOnATerminalOrRedirected) {
    const std::string erased = "\r" + std::string(79, ' ') + "\r";
    for (const bool terminal : {true, false}) {
        ProgramRun run = zorvane("colors:0 bbp", "2\n0\n0\n");
        run.terminal = terminal;
        const ProgramResult result = run_program(run);
        for (const std::string& piece : {erased + "Summing...  ", erased + "Time:    ", std::string("\r")})
            EXPECT_EQ(result.output.find(piece) != std::string::npos, terminal) << describe(run, result);
    }
    ProgramRun run = zorvane("colors:0 bbp", "2\n999999999\n4\n64\n0\n");
    run.terminal = true;
    const ProgramResult result = run_and_act(run, " %", [](int process) { kill(process, SIGKILL); });
    EXPECT_TRUE(std::regex_search(result.output, std::regex(R"(\r +\rSumming\.\.\.  \d+\.\d{6} %)")))
        << describe(run, result);
}

TEST(KernelSet, TheForcedOneIsNotTheOneThatIsTold) {
    std::string names;
    for (const auto set : zvp::platform::all_kernel_sets) {
        if (!kernel_set_supported(set)) continue;
        const std::string name(kernel_set_name(set));
        names += (names.empty() ? "" : ", ") + name;
        ProgramRun run = zorvane("", "7\n");
        run.environment = {{"ZORVANE_KERNELS", name}};
        const ProgramResult result = run_program(run);
        EXPECT_NE(result.output.find("\nTuning:  Linux/" + name + "  -  "), std::string::npos) << describe(run, result);
    }
    for (const std::string wrong : {"avx1024", "SSE3", "sse3 ", "avx2,sse3"}) {
        ProgramRun run = zorvane("about");
        run.environment = {{"ZORVANE_KERNELS", wrong}};
        // It ends the start-up behind the first check.
        const std::string text =
            "ZORVANE_KERNELS names the kernel set \"" + wrong + "\". This machine runs: " + names + ".";
        expect_output(run, feature_check + invalid(text));
    }
}

} // namespace
