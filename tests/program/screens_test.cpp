#include "platform/kernel_set.h"
#include "program/zorvane.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

using namespace test;

const std::string short_run = "2\n100000\n3\n12\n0\n";

const std::string main_items =
    "  0         Benchmark Pi  (all in ram)\n"
    "  1         Component Stress Tester\n"
    "  2         Run I/O Performance Analysis\n"
    "\n"
    "  3         Custom Compute a Constant\n"
    "                -   Compute other constants (e, Golden Ratio, etc...)\n"
    "                -   Choose your own settings (use disk for large computations)\n"
    "\n"
    "  4         BBP Digit Extractor for Pi\n"
    "  5         Digit Viewer\n"
    "\n"
    "  6         Advanced Options\n"
    "  7         About\n"
    "\n\n"
    "Enter your choice:\n"
    "option: ";

const std::string advanced_items = "Advanced Options\n"
                                   "\n"
                                   "  0         Benchmark Validator\n"
                                   "  1         Log(n) Formula Generator\n"
                                   "  2         Hardware Features\n"
                                   "  3         Compilation Options\n"
                                   "  4         Test Swap Multiply\n"
                                   "\n"
                                   "option: ";

void expect_parts(const ProgramRun& run, const std::vector<std::string>& parts, int exit_code) {
    const ProgramResult result = run_program(run);
    const std::string output = behind_start_up(result);
    for (const std::string& part : parts)
        EXPECT_NE(output.find(part), std::string::npos) << "Expected: " << part << "\n"
                                                        << describe(run, result);
    EXPECT_EQ(result.exit_code, exit_code) << describe(run, result);
    EXPECT_TRUE(result.output.starts_with(start_up)) << describe(run, result);
    EXPECT_EQ(result.output.find_first_of("\x1b\r"), std::string::npos) << describe(run, result);
}

TEST(MainMenu, AnItemRunsAnotherOrEndsWithTheWrongCode) {
    const struct {
        std::string input, shown;
        int exit_code;
    } cases[] = {
        {"0\n", unbuilt("Benchmark Pi"), 1},
        {"1\n", unbuilt("The Component Stress Tester"), 1},
        {"2\n", unbuilt("The I/O performance analysis"), 1},
        {"3\n", unbuilt("Custom Compute a Constant"), 1},
        {"4\n" + short_run, "Digit Extractor for Pi  -  zorvane vV\n", 0},
        {"5\n", unbuilt("The Digit Viewer (action \"digitviewer\")"), 1},
        {"6\n0\n", advanced_items + "\n" + unbuilt("The Benchmark Validator"), 1},
        {"6\n1\n", unbuilt("The Log(n) Formula Generator"), 1},
        {"6\n2\n", unbuilt("The list of Hardware Features"), 1},
        {"6\n3\n", "\nBelow is a partial list of compilation options used for this binary.\n\n", 0},
        {"6\n4\n", unbuilt("Test Swap Multiply"), 1},
        {"6\n5\n3\n", advanced_items + "option: \nLike any other program, zorvane", 0},
        {"7\n", "\nDisclaimer:\n\nPerforming large multi-threaded computations", 0},
        {"8\n4294967303\n\r\n", main_items + "option: option: \n" + unbuilt("Benchmark Pi"), 1},
        {"7", "\nDisclaimer:\n", 0},
    };
    for (const auto& c : cases)
        expect_parts(zorvane({}, c.input),
                     {"zorvane vV\n", "\nDistribute Freely - Please report any bugs.\n\nTuning:  Linux/",
                      "\n\n" + main_items, c.shown},
                     c.exit_code);
}

TEST(EndOfInput, TheMenuAsksForEver) {
    expect_parts(zorvane({}, "9"), {main_items + "option: \n" + unbuilt("Benchmark Pi")}, 1);
    expect_parts(zorvane({}, "6\n9"), {advanced_items + "option: \n" + unbuilt("The Benchmark Validator")}, 1);
    expect_parts(zorvane({}, "4\n3\n"), {"Digits: Digits: " + input_ended}, 1);
}

TEST(About, TheDisclaimerIsCut) {
    expect_parts(zorvane({"about", "ignored", "-o"}),
                 {"Version: V\n", "\nDisclaimer:\n"
                                  "\n"
                                  "Performing large multi-threaded computations using this program may\n"
                                  "subject your computer to extremely high levels of stress for extended\n"
                                  "periods of time. To protect your computer, MAKE SURE that your hardware\n"
                                  "is stable and fit before performing large computations. I will take\n"
                                  "absolutely no responsibility for any damage that may be caused by this\n"
                                  "program.\n\n"},
                 0);
}

TEST(UnfinishedComputation, AnotherActionRuns) {
    const TemporaryFolder folder;
    write_file(folder.path / "zorvane Checkpoint File.txt", "");
    for (const std::vector<std::string>& parameters :
         std::vector<std::vector<std::string>>{{}, {"about"}, {"colors:0", "nonsense"}, {"config"}}) {
        ProgramRun run = zorvane(parameters, "7\n");
        run.working_directory = folder.path;
        const ProgramResult result = run_program(run);
        EXPECT_EQ(behind_start_up(result), "An unfinished computation has been found.\nResuming...\n\n\n\n"
                                               + unbuilt("Resuming a computation"))
            << describe(run, result);
        EXPECT_EQ(result.exit_code, 1) << describe(run, result);
    }
}

TEST(Colors, TerminalsGetNoneOrSwitchedOffOnesRemain) {
    const struct {
        std::vector<std::string> parameters;
        std::string input;
        const char* colored; // a piece that holds a change of colour
    } cases[] = {
        {{}, "7\n", "\x1b[96m  0         Benchmark Pi"},
        {{"about"}, "", "\x1b[93mDisclaimer:"},
        {{"bench"}, "", "\x1b[91mBenchmark Pi isn't part of"},
        {{"custom", "pi", "-o"}, "", "\x1b[91mUncaught std exception: "},
        {{"custom", "tau"}, "", "\x1b[91m\r\nException Encountered: "},
        {{"bbp"}, "2\n0\n3\n12\n0\n", "\x1b[92m  243F6A88 85A3\x1b[91m08D3 13198A2E 03707345\r\n\x1b[0m"},
    };
    for (const auto& c : cases) {
        ProgramRun run = zorvane(c.parameters, c.input);
        run.terminal = true;
        run.arguments.insert(run.arguments.begin() + 1, "pause:-2");
        const ProgramResult colored = run_program(run);
        EXPECT_NE(colored.output.find(c.colored), std::string::npos) << c.colored << "\n"
                                                                     << describe(run, colored);
        EXPECT_GT(colored.output.rfind("\x1b[0m") + 1, colored.output.rfind("\x1b[9") + 1)
            << "the last colour stays\n"
            << describe(run, colored);
        run.arguments.insert(run.arguments.begin() + 1, "colors:0");
        const ProgramResult plain = run_program(run);
        EXPECT_EQ(plain.output.find('\x1b'), std::string::npos) << describe(run, plain);
        EXPECT_EQ(plain.exit_code, colored.exit_code) << describe(run, plain);
    }
}

TEST(StatusLine, ItIsMissingOnATerminalOrRedirected) {
    const std::string erased = "\r" + std::string(79, ' ') + "\r";
    for (const bool terminal : {true, false}) {
        ProgramRun run = zorvane({"colors:0", "bbp"}, short_run);
        run.terminal = terminal;
        const ProgramResult result = run_program(run);
        EXPECT_EQ(result.exit_code, 0) << describe(run, result);
        EXPECT_EQ(result.output.find(erased + "Summing...  ") != std::string::npos, terminal)
            << describe(run, result);
        EXPECT_EQ(result.output.find(erased + "Time:    ") != std::string::npos, terminal)
            << describe(run, result);
        EXPECT_EQ(result.output.find('\r') != std::string::npos, terminal) << describe(run, result);
    }
}

TEST(StatusLine, TheProgressIsMissing) {
    ProgramRun run = zorvane({"colors:0", "bbp"}, "2\n999999999\n4\n64\n0\n");
    run.terminal = true;
    const ProgramResult result = run_and_act(run, " %", [](int process) { kill(process, SIGKILL); });
    EXPECT_TRUE(std::regex_search(result.output, std::regex(R"(\r +\rSumming\.\.\.  \d+\.\d{6} %)")))
        << describe(run, result);
}

TEST(KernelSet, TheForcedOneIsNotTheOneThatRuns) {
    std::string supported;
    for (const auto set : zvp::platform::all_kernel_sets) {
        if (!kernel_set_supported(set)) continue;
        const std::string name(kernel_set_name(set));
        supported += (supported.empty() ? "" : ", ") + name;
        ProgramRun run = zorvane({}, "7\n");
        run.environment = {{"ZORVANE_KERNELS", name}};
        expect_parts(
            run, {"\nTuning:  Linux/" + name + "  -  " + std::string(kernel_set_processors(set)) + "\n"}, 0);
    }
    for (const std::string wrong : {"avx1024", "SSE3", "sse3 ", "avx2,sse3"}) {
        ProgramRun run = zorvane({"about"});
        run.environment = {{"ZORVANE_KERNELS", wrong}};
        const ProgramResult result = run_program(run);
        EXPECT_NE(result.output.find("\nZORVANE_KERNELS names the kernel set \"" + wrong
                                     + "\". This machine runs: " + supported + ".\n"),
                  std::string::npos)
            << describe(run, result);
        EXPECT_EQ(result.output.find("Disclaimer"), std::string::npos) << describe(run, result);
        EXPECT_EQ(result.exit_code, 1) << describe(run, result);
    }
}

} // namespace
