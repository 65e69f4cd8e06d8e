#include "program/zorvane.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sstream>
#include <unistd.h>

namespace {

using namespace test;
using Lines = std::vector<std::string>;

/// Runs in a folder of its own, so that digits and reports end there.
ProgramResult run_in(const TemporaryFolder& folder, ProgramRun run) {
    run.working_directory = folder.path;
    return run_program(run);
}

/// The lines come in this order, and the exit code is as told.
void expect_lines(const ProgramRun& run, const Lines& lines, int exit_code = 0) {
    const TemporaryFolder folder;
    const ProgramResult result = run_in(folder, run);
    const std::string output = "\n" + behind_start_up(result);
    std::size_t at = 0;
    for (const std::string& line : lines) {
        at = output.find("\n" + line, at);
        ASSERT_NE(at, std::string::npos) << line << "\n" << describe(run, result);
        ++at;
    }
    EXPECT_EQ(result.exit_code, exit_code) << describe(run, result);
}

TEST(Custom, TheReportLacksALine) {
    expect_lines(zorvane("custom pi -dec:12345 -hex:10000 -mode:ram -od:0 -PF:none -TD:3 -MA:malloc"),
                 {"Custom Compute a Constant\n\n",
                  "  1     Constant:               Pi\n",
                  "  2     Algorithm:              Chudnovsky (1988)\n",
                  "  3     Decimal Digits:         12,345\n",
                  "  4     Hexadecimal Digits:     10,000\n",
                  "  5     Digit Output:           No Digit Output\n",
                  "  7     Computation Mode:       Ram Only\n",
                  "  8     Multi-Threading:        None (No Multi-threading)  ->  3 / ?\n",
                  "  9     Logical Memory Needed:  ",
                  "        Logical Disk Needed:      0 bytes  +    0 bytes for output\n\n\n",
                  "Constant:   Pi\nAlgorithm:  Chudnovsky (1988)\n\n",
                  "Decimal Digits:       12,345\nHexadecimal Digits:   10,000\n\n",
                  "Computation Mode:     Ram Only\nMulti-Threading:      None (No Multi-threading)  ->  3 / ?\n\n\n",
                  "Start Time: ",
                  "Working Memory...  ",
                  "Twiddle Tables...  ",
                  "Begin Computation:\n\n",
                  "Pi:  0.",
                  "Start Time: ",
                  "End Time:   ",
                  "Total Computation Time:     0.",
                  "Start-to-End Wall Time:     0.",
                  "CPU Utilization:        ",
                  "Multi-core Efficiency:  "});
}

TEST(Custom, AConstantOrAnAlgorithmIsNotReached) {
    const struct {
        const char *line, *constant, *algorithm;
    } cases[] = {
        {"pi", "Pi", "Chudnovsky (1988)"},
        {"pi -algorithm:ramanujan", "Pi", "Ramanujan (1910)"},
        {"pi -algorithm:chudnovsky-reduced", "Pi", "Chudnovsky (1988) (reduced memory)"},
        {"pi -algorithm:ramanujan-reduced", "Pi", "Ramanujan (1910) (reduced memory)"},
        {"e", "e", "Taylor Series of exp(1)"},
        {"e -algorithm:exp(-1)", "e", "Taylor Series of exp(-1)"},
        {"sqrt:4294967295", "Sqrt(4294967295)", "Newton's Method"},
        {"sqrt", "Sqrt(2)", "Newton's Method"},
        {"goldenratio -algorithm:newton", "Golden Ratio", "Newton's Method"},
    };
    for (const auto& c : cases)
        expect_lines(zorvane(std::string("custom ") + c.line + " -dec:1k -od:0"),
                     {std::string("Constant:   ") + c.constant + "\nAlgorithm:  " + c.algorithm + "\n",
                      "Decimal Digits:       1,000\nHexadecimal Digits:   830\n", std::string(c.constant) + ":  0."});
    expect_lines(zorvane("custom pi -dec:100 -hex:0 -od:0"),
                 {"Decimal Digits:       100\nHexadecimal Digits:   Disabled\n", "Pi:  0."});
}

TEST(Custom, WhatIsNotBuiltIsComputed) {
    const std::pair<const char*, const char*> cases[] = {{"log:2", "Log(2)"},
                                                         {"zeta3", "Zeta(3) - Apery's Constant"},
                                                         {"apery", "Zeta(3) - Apery's Constant"},
                                                         {"catalan", "Catalan's Constant"},
                                                         {"lemniscate", "Lemniscate Constant"},
                                                         {"gamma", "Euler's Constant"},
                                                         {"brent:5", "Euler's Constant"}};
    for (const auto& [line, name] : cases)
        expect_lines(zorvane(std::string("custom ") + line + " -dec:1k"),
                     {"This constant can't be computed yet.\n",
                      "Computing " + std::string(name) + " isn't part of version V.\n"},
                     1);
    expect_output(zorvane("custom pi -mode:swap -M:1.5G -minIO:1 -swap:raid0 /tmp"), unbuilt("Swap Mode"));
    expect_lines(zorvane("custom pi -dec:1k -C:-1"), {"The compressed digit format (.zvd) isn't part of version V.\n"},
                 1);
}

TEST(Custom, AWrongValueIsComputedWith) {
    const std::string size = "Computation size ";
    const std::pair<const char*, std::string> cases[] = {
        {"pi -dec:99", size + "must be at least 100 decimal digits."},
        {"pi -dec:", size + "must be at least 100 decimal digits."},
        {"pi -dec:2000t", size + "cannot be larger than 1,000,000,000,000,050 decimal digits."},
        {"pi -dec:1000000000000051", size + "cannot be larger than 1,000,000,000,000,050 decimal digits."},
        {"pi -hex:5", size + "must be at least 83 hexadecimal digits."},
        {"pi -algorithm:agm", "Invalid Algorithm: agm"},
        {"pi -algorithm", "Invalid Algorithm: "},
        {"sqrt:1", "Argument must be greater than 1."},
        {"sqrt:", "Argument must be greater than 1."},
        {"log:", "Argument must be greater than 1."},
        {"brent", "Argument must be greater than 0."},
        {"brent:0", "Argument must be greater than 0."},
        {"sqrt:4294967296", "Argument is too large."},
        {"sqrt:144", "144 is a perfect square."},
        {"custom", "No formula file specified."},
        {"custom:none.cfg", "File not found."},
        {"pi -C:999999", "DigitsPerFile must be at least 1,000,000 digits."},
        {"pi -MA:none", "Invalid Memory Allocator: none"},
        {"pi -PF:mmap", "Invalid Parallel Framework: mmap"},
    };
    for (const auto& [line, message] : cases) expect_output(zorvane("custom " + std::string(line)), invalid(message));
}

TEST(Custom, TheOrderOfOptionsDoesNotMatter) {
    for (const char* options : {"-od:0 -C:10 -dec:1,000", "-C:10 -dec:1k -od:0", "-dec:1k -C:-1 -od:0"})
        expect_lines(zorvane(std::string("custom pi -hex:0 ") + options),
                     {"  5     Digit Output:           No Digit Output\n", "Decimal Digits:       1,000\n", "Pi:  0."});
}

TEST(Custom, APathWithoutAccessIsFoundOutAfterTheComputation) {
    const ProgramResult result = run_program(zorvane("custom e -dec:1k -o /no/such/folder"));
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_NE(result.output.find(invalid("Path is not writable.")), std::string::npos) << result.output;
    EXPECT_EQ(result.output.find("Begin Computation"), std::string::npos) << result.output;
}

TEST(LockedMemory, ALowLimitIsToldOnceAndOnlyWhereItCostsSomething) {
    const std::string user = geteuid() == 0 ? "setpriv --bounding-set=-ipc_lock,-sys_resource " : "";
    const std::string warning = "The limit on locked memory is too low", large = "  (2.00 MiB pages";
    for (const std::string allocator : {"interleave", "mmap", "malloc"}) {
        ProgramRun run;
        run.arguments = {"/bin/sh", "-c",
                         "ulimit -l 64; exec " + user + "\"$0\" custom e -dec:1m -hex:0 -od:0 -MA:" + allocator,
                         ZORVANE_PROGRAM};
        const ProgramResult result = run_program(run);
        const std::size_t first = result.output.find(warning), pages = result.output.find(large);
        // The system may have no large pages to spare.
        const bool lost = allocator != "malloc" && result.output.find(large, pages + 1) == std::string::npos;
        EXPECT_EQ(first != std::string::npos, lost) << describe(run, result);
        EXPECT_EQ(result.output.find(warning, first + 1), std::string::npos) << describe(run, result);
    }
}

TEST(Interrupt, CtrlCTellsWhatWasRunning) {
    const TemporaryFolder folder;
    ProgramRun run = zorvane("custom pi -dec:100m -od:0");
    run.working_directory = folder.path;
    run.terminal = true;
    const ProgramResult result = run_and_act(run, "Series CommonP2B3...", [](int process) { kill(process, SIGINT); });
    EXPECT_EQ(result.exit_code, 130) << describe(run, result);
    const std::regex line("Interrupted: Pi, in \"Series CommonP2B3.*\", after \\d+\\.\\d{3} seconds .*\r\n\x1b\\[0m$");
    EXPECT_TRUE(std::regex_search(result.output, line)) << describe(run, result);
}

TEST(FullDisk, CostsNoDigitsAndNamesTheFile) {
    const TemporaryFolder folder;
    ProgramRun run;
    run.arguments = {"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 200; exec \"$0\" custom pi -dec:300k -hex:0",
                     ZORVANE_PROGRAM};
    run.working_directory = folder.path;
    const ProgramResult result = run_program(run);
    EXPECT_EQ(result.exit_code, 1) << describe(run, result);
    for (const char* line :
         {"The digits couldn't be written as a whole. What could be written is kept:\n"
          "    Pi - Dec - Chudnovsky.txt\nFree some disk space",
          "6833548515 8606931459 7838528361 6945633618 6314956895  : 300,000\n", "Spot Check: Good through 200,000\n",
          "Path:   Pi - Dec - Chudnovsky.txt\n", "Disk is Full"})
        EXPECT_NE(result.output.find(line), std::string::npos) << line << describe(run, result);
    const std::string kept = read_file(folder.path / "Pi - Dec - Chudnovsky.txt");
    EXPECT_TRUE(kept.starts_with("3.14159265358979")) << kept.size();
    EXPECT_LT(kept.size(), 300'000u);
}

TEST(CustomMenu, AComputationDoesNotStart) {
    expect_lines(zorvane("", "3\n1\n0\n3\n3\n2500\n4\n0\n5\n0\n0\n"),
                 {"Compute a Constant: (in ascending order of difficulty to compute)\n",
                  "  #         Constant                      Value        Approximate Difficulty*\n\nFast Constants:\n"
                  "  0         Sqrt(n)                                         1.46\n",
                  "  1     Constant:               Sqrt(3)\n", "Select the # of decimal digits to compute:\n",
                  "Select the # of hexadecimal digits to compute: (0 to disable)\n",
                  "  4     Hexadecimal Digits:     Disabled\n", "  0     Start Computation!\n", "Constant:   Sqrt(3)\n",
                  "Decimal Digits:       2,500\nHexadecimal Digits:   Disabled\n", "Sqrt(3):  0."});
}

TEST(CustomMenu, ASavedFileDoesNotRun) {
    const TemporaryFolder folder;
    const ProgramRun saving =
        zorvane("custom", "1\n2\n2\n1\n3\n3000\n4\n0\n5\n0\n8\n2\n3\n3\n0\n0\n9\n2\n0\n0\n21\nmine\n0\n");
    const ProgramResult saved = run_in(folder, saving);
    EXPECT_EQ(saved.exit_code, 0) << describe(saving, saved);
    const std::string file = read_file(folder.path / "mine.cfg");
    for (const char* line : {"//  zorvane Configuration File\r\n", "    Action : \"CustomCompute\"\r\n",
                             "            Algorithm : \"exp(-1)\"\r\n",
                             "            DecimalDigits : 3000\r\n            EnableHexDigits : \"false\"\r\n",
                             "            Framework : \"none\"\r\n", "            TaskDecomposition : 3\r\n",
                             "            Allocator : \"malloc\"\r\n"})
        EXPECT_NE(file.find(line), std::string::npos) << line << file;
    const ProgramRun running = zorvane("config mine");
    const ProgramResult run = run_in(folder, running);
    EXPECT_EQ(run.exit_code, 0) << describe(running, run);
    for (const char* line : {"\nAlgorithm:  Taylor Series of exp(-1)\n", "\nDecimal Digits:       3,000\n", "\ne:  0."})
        EXPECT_NE(run.output.find(line), std::string::npos) << line << describe(running, run);
}

TEST(Config, SettingsThatCannotRunAreRun) {
    const TemporaryFolder folder;
    run_in(folder, zorvane("custom", "4\n0\n3\n1000\n5\n0\n21\nmine\n0\n"));
    const std::string good = read_file(folder.path / "mine.cfg");
    const struct {
        std::string from, to, told;
    } cases[] = {
        {"\"pi\"\r\n            Algorithm : \"chudnovsky\"", "\"zeta3\" Algorithm : \"az\"",
         "Computing Zeta(3) - Apery's Constant isn't part of version V.\n"},
        {": 1000\r", ": 1000000000000000\r",
         "No algorithm multiplies to this length in words.\n\n"
             + invalid("Cannot run computation with these parameters.")},
        {": 1000\r", ": 30000000000\r",
         "    Physical Memory:  \n\n" + invalid("Cannot run computation with these parameters.")},
        {"\"ram\"", "\"swap\"", unbuilt("Swap Mode")},
    };
    for (const auto& c : cases) {
        std::string file = good;
        const std::size_t at = file.find(c.from);
        ASSERT_NE(at, std::string::npos) << c.from << file;
        write_file(folder.path / "mine.cfg", file.replace(at, c.from.size(), c.to));
        const ProgramRun running = zorvane("config mine");
        const ProgramResult run = run_in(folder, running);
        EXPECT_EQ(run.exit_code, 1);
        const std::string output = std::regex_replace(behind_start_up(run), std::regex("(Physical Memory:  ).*"), "$1");
        EXPECT_NE(output.find(c.told), std::string::npos) << c.told << describe(running, run);
    }
}

} // namespace
