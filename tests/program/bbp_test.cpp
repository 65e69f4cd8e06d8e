#include "platform/kernel_set.h"
#include "program/zorvane.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace {

using namespace test;
using zvp::platform::KernelSet;

struct Digits {
    std::uint64_t offset;
    std::string digits;
};

// From an independent library.
const Digits at_0{0, "243f6a8885a308d3"};
const Digits at_1000{1'000, "49f1c09b075372c9"};
const Digits at_999999{999'999, "26c65e52cb4593"};
const Digits at_9999999{9'999'999, "17af5863efed8d"};

struct Case {
    Digits expected;
    KernelSet kernels;
    int formula;       // 0: 4 terms, 1: 7 terms
    std::string modes; // "A", "B" or "AB"
    int threads;
    bool pin;
};

std::ostream& operator<<(std::ostream& out, const Case& c) {
    return out << "offset" << c.expected.offset << "_" << kernel_set_name(c.kernels)
               << (c.formula == 0 ? "_4terms_" : "_7terms_") << c.modes << "_" << c.threads
               << (c.threads == 1 ? "thread" : "threads") << (c.pin ? "_pinned" : "_free");
}

/// Small offsets in every combination of settings, larger ones in those that run other code on long sums.
std::vector<Case> all_cases() {
    std::vector<Case> cases;
    for (const KernelSet kernels : zvp::platform::all_kernel_sets) {
        for (const int formula : {0, 1}) {
            for (const char* modes : {"AB", "B", "A"}) {
                for (const Digits& expected : {at_0, at_1000})
                    for (const int threads : {1, 3})
                        for (const bool pin : {false, true})
                            cases.push_back({expected, kernels, formula, modes, threads, pin});
                cases.push_back({at_999999, kernels, formula, modes, 2, true});
            }
            for (const char* modes : {"AB", "B"}) cases.push_back({at_9999999, kernels, formula, modes, 2, false});
        }
    }
    return cases;
}

std::string settings(std::uint64_t offset, std::size_t digits, int threads = 1) {
    return "2\n" + std::to_string(offset) + "\n3\n" + std::to_string(digits) + "\n4\n" + std::to_string(threads) + "\n";
}

/// The answers that switch these modes on or off.
std::string toggled(const std::string& modes) {
    std::string input = "6\n";
    for (const char letter : modes) input += letter == 'A' ? "1\n" : "2\n";
    return input + "0\n";
}

std::string menu_input(const Case& c) {
    std::string input = settings(c.expected.offset, c.expected.digits.size(), c.threads);
    if (c.formula == 1) input += "1\n1\n";
    if (!c.pin) input += "5\n";
    for (const char letter : std::string_view("AB"))
        if (c.modes.find(letter) == std::string::npos) input += toggled({letter});
    return input + "0\n";
}

/// All digits that were printed, in lower case.
std::string printed_digits(const std::string& output) {
    const std::size_t heading = output.find("starting from: 16^-");
    std::string digits;
    for (std::size_t i = std::min(output.find("\n\n", heading), output.size()); i < output.size(); ++i)
        if (std::isxdigit(static_cast<unsigned char>(output[i]))) digits += static_cast<char>(std::tolower(output[i]));
    return digits;
}

class DigitsOfPi : public testing::TestWithParam<Case> {};

TEST_P(DigitsOfPi, AreWrong) {
    const Case& c = GetParam();
    if (!kernel_set_supported(c.kernels)) GTEST_SKIP() << "this machine can't run " << kernel_set_name(c.kernels);
    ProgramRun run = zorvane("bbp", menu_input(c));
    run.environment = {{"ZORVANE_KERNELS", std::string(kernel_set_name(c.kernels))}};
    const ProgramResult result = run_program(run);
    const std::string digits = printed_digits(result.output);
    EXPECT_EQ(digits.substr(0, c.expected.digits.size()), c.expected.digits);
    EXPECT_EQ(digits.size(), 32u) << "all words are shown";
    EXPECT_EQ(result.exit_code, 0);
    const std::regex menu("Tuning:  Linux/" + std::string(kernel_set_name(c.kernels))
                          + "  -  (?:.*\n)*  5     Pin Threads to Cores:   " + (c.pin ? "Yes" : "No")
                          + "\n  6     Modes:                  " + (c.modes == "AB" ? "A B" : c.modes)
                          + " ?\n\n  0     Start");
    EXPECT_TRUE(std::regex_search(result.output.substr(result.output.rfind("Tuning: ")), menu));
    if (HasFailure()) ADD_FAILURE() << describe(run, result);
}

INSTANTIATE_TEST_SUITE_P(Menu, DigitsOfPi, testing::ValuesIn(all_cases()), testing::PrintToStringParamName());

TEST(LongRun, ItsDigitsAreWrongFarBehindTheOffset) {
    for (const char* formula : {"0", "1"}) {
        const ProgramRun run = zorvane("bbp", settings(0, 1'100, 2) + "1\n" + formula + "\n0\n");
        const ProgramResult result = run_program(run);
        const std::string digits = printed_digits(result.output);
        EXPECT_EQ(digits.substr(0, 16), at_0.digits) << describe(run, result);
        EXPECT_EQ(digits.substr(std::min<std::size_t>(1'000, digits.size()), 16), at_1000.digits)
            << describe(run, result);
        EXPECT_EQ(digits.size(), 1'120u);
    }
}

TEST(Report, ALineIsMissingOrMisprinted) {
    const ProgramRun run = zorvane("bbp", settings(1'000, 64) + "0\n");
    const ProgramResult result = run_program(run);
    const std::regex report(R"(
Formula:                Original 4-term BBP
Hexadecimal Offset:     1,000
Digits to Compute:      64

Threads:                1  \(pinned to cores\)

Terms Needed:           1,080
Internal Precision:     80 Hexadecimal Digits

Start Time:             .*
Frac\( 1/\(8k \+ 1\) \* 2\^\(-4k \+ 4002\) \)
Time:    .*
Frac\( 1/\(2k \+ 1\) \* 2\^\(-4k \+ 3999\) \)
Time:    .*
Frac\( 1/\(8k \+ 5\) \* 2\^\(-4k \+ 4000\) \)
Time:    .*
Frac\( 1/\(4k \+ 3\) \* 2\^\(-4k \+ 3999\) \)
Time:    .*

End Time:               .*
Total Time:             .*
(?:.*\n){2}
Green = Requested digits that should be correct.
Red  = Extra working precision. May not be correct.
\|    = End of the requested digits.

Hexadecimal Digits starting from: 16\^-1001

  49F1C09B 075372C9(?: [0-9A-F]{8}){6}\|
  [0-9A-F]{8} [0-9A-F]{8}

$)");
    EXPECT_TRUE(std::regex_search(result.output, report)) << describe(run, result);
}

TEST(Start, ARunBeyondTheModesIsOfferedOrOneWithinThemRefused) {
    constexpr std::uint64_t last_in_a = (std::uint64_t{1} << 46) - 25, last_in_b = (std::uint64_t{1} << 48) - 25;
    // The 7-term formula has (24 + offset) / 5 + 1 terms, and k = (2^49 - 12) / 20 of (20k + 19) is beyond mode A.
    constexpr std::uint64_t last_for_7 = 5 * (((std::uint64_t{1} << 49) - 12) / 20) - 30;
    const std::string ready = "  0     Start Computation!\n", refused = "        Cannot Start: ";
    const std::string beyond_a = refused + "Divisor exceeds limit of 2^49 - 1.\n";
    const std::string beyond_b = refused + "Divisor exceeds limit of 2^51 - 1.\n";
    const struct {
        std::uint64_t offset;
        std::uint32_t digits;
        const char* formula;
        std::string disabled, expected;
    } cases[] = {
        {0, 8, "0", "AB", refused + "No modes enabled.\n"},
        {last_in_a, 8, "0", "B", ready},
        {last_in_a + 1, 8, "0", "B", beyond_a},
        {last_in_a, 9, "0", "B", beyond_a},
        {last_in_a, 8, "1", "B", ready},
        {last_for_7, 8, "1", "B", ready},
        {last_for_7 + 1, 8, "1", "B", refused + "No mode is able to handle this range.\n"},
        {last_in_a + 1, 8, "0", "", ready},
        {last_in_a + 1, 8, "0", "A", ready},
        {last_in_b, 8, "0", "", ready},
        {last_in_b + 1, 8, "0", "", beyond_b},
        {922'337'203'684'428'988, 1'048'576, "1", "", beyond_b},
    };
    for (const auto& c : cases) {
        std::string enabled = "AB";
        for (const char letter : c.disabled) std::erase(enabled, letter);
        // The menu to look at is the one with 7 threads. At the end every mode is off, and 0 is refused.
        const ProgramRun run = zorvane("bbp", settings(c.offset, c.digits) + "1\n" + c.formula + "\n"
                                                  + toggled(c.disabled) + "4\n7\n" + toggled(enabled) + "0\n");
        const ProgramResult result = run_program(run);
        const std::string menu = result.output.substr(result.output.find("7 threads\n"));
        EXPECT_NE(menu.substr(0, menu.find("option: ")).find(c.expected), std::string::npos)
            << c.expected << describe(run, result);
        EXPECT_TRUE(result.output.ends_with("option: option: option: " + input_ended)) << describe(run, result);
        EXPECT_EQ(result.exit_code, 1) << describe(run, result);
    }
}

TEST(Answers, OneOutOfRangeIsTaken) {
    const std::pair<std::string, std::string> cases[] = {
        {"7\n4294967296\n6\n0\n", "option: option: option: \nMode Selections\n"},
        {"3\n7\n1048577\n\n8\n", "Digits: Digits: Digits: Digits: \n"},
        {"4\n0\n65537\n65536\n", "Threads: Threads: Threads: \n"},
        {"2\n922337203684428989\n18446744073709551617\n0\n", "Offset: Offset: Offset: \n"},
        {"1\n2\n99999999999999999999\n0\n", "option: option: option: \n"},
        {"6\n3\n0\n", "  0     Done!\n\noption: option: \n"},
    };
    for (const auto& [answers, expected] : cases) {
        const ProgramRun run = zorvane("bbp", answers + settings(0, 8) + "0\n");
        const ProgramResult result = run_program(run);
        EXPECT_NE(result.output.find(expected), std::string::npos) << describe(run, result);
        EXPECT_EQ(printed_digits(result.output).substr(0, 8), "243f6a88") << describe(run, result);
    }
}

TEST(Answers, TheEndOfInputAsksForEver) {
    const std::string no_modes = "6\n1\n2\n0\n";
    for (const std::string& input : {no_modes, no_modes + "0\n0\n", std::string("3\n"), std::string("4\n0"),
                                     std::string("3\n8\n4\n") + std::string(100'000, '9')}) {
        const ProgramRun run = zorvane("bbp", input);
        const ProgramResult result = run_program(run);
        EXPECT_TRUE(result.output.ends_with(input_ended)) << describe(run, result);
        EXPECT_EQ(result.exit_code, 1) << describe(run, result);
    }
}

} // namespace
