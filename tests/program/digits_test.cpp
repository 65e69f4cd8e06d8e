// The digits that the program writes and what it tells of them.

#include "program/zorvane.h"

#include <gmp.h>
#include <mpfr.h>

#include <gtest/gtest.h>

namespace {

using namespace test;

ProgramResult run_in(const TemporaryFolder& folder, ProgramRun run) {
    run.working_directory = folder.path;
    return run_program(run);
}

/// A number of MPFR's.
class Number {
public:
    Number(const std::string& name, unsigned bits) {
        mpfr_init2(value, bits);
        if (name == "Pi") {
            mpfr_const_pi(value, MPFR_RNDN);
        } else if (name == "e") {
            mpfr_set_ui(value, 1, MPFR_RNDN);
            mpfr_exp(value, value, MPFR_RNDN);
        } else if (name == "Golden Ratio") {
            mpfr_sqrt_ui(value, 5, MPFR_RNDN);
            mpfr_add_ui(value, value, 1, MPFR_RNDN);
            mpfr_div_2ui(value, value, 1, MPFR_RNDN);
        } else {
            mpfr_sqrt_ui(value, 2, MPFR_RNDN);
        }
    }
    ~Number() { mpfr_clear(value); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;

    /// The one digit in front of the point, the point, and `digits` digits, cut.
    std::string text(int radix, std::size_t digits) const {
        mpfr_exp_t exponent;
        char* const raw = mpfr_get_str(nullptr, &exponent, radix, digits + 1, value, MPFR_RNDZ);
        EXPECT_EQ(exponent, 1);
        const std::string all = raw;
        mpfr_free_str(raw);
        return all.substr(0, 1) + "." + all.substr(1);
    }

private:
    mpfr_t value;
};

struct Computation {
    const char *line, *name, *algorithm;
};

constexpr Computation computations[] = {
    {"pi", "Pi", "Chudnovsky"},
    {"pi -algorithm:chudnovsky-reduced", "Pi", "Chudnovsky (reduced)"},
    {"pi -algorithm:ramanujan -PF:none -TD:1", "Pi", "Ramanujan"},
    {"pi -algorithm:ramanujan-reduced -PF:taskqueue -TD:7", "Pi", "Ramanujan (reduced)"},
    {"e -MA:malloc", "e", "exp(1)"},
    {"e -algorithm:exp(-1) -MA:interleave", "e", "exp(-1)"},
    {"sqrt:2", "Sqrt(2)", "Newton"},
    {"goldenratio -PF:spawn", "Golden Ratio", "Newton"},
};

/// Runs the program and compares its files; the texts may be longer than asked for. 0 hexadecimal digits are no file.
void expect_files(const Computation& c, std::size_t decimal, std::size_t hexadecimal, const std::string& decimal_text,
                  const std::string& hexadecimal_text) {
    const TemporaryFolder folder;
    const ProgramRun run = zorvane("custom " + std::string(c.line) + " -dec:" + std::to_string(decimal)
                                   + " -hex:" + std::to_string(hexadecimal));
    const ProgramResult result = run_in(folder, run);
    EXPECT_EQ(result.exit_code, 0) << describe(run, result);
    const auto expect_file = [&](const char* radix, std::size_t digits, const std::string& text) {
        const std::filesystem::path path =
            folder.path / (std::string(c.name) + " - " + radix + " - " + c.algorithm + ".txt");
        EXPECT_EQ(std::filesystem::exists(path), digits != 0);
        const bool same = digits == 0 || read_file(path) == text.substr(0, 2 + digits);
        EXPECT_TRUE(same) << path << "\n" << describe(run, result);
    };
    expect_file("Dec", decimal, decimal_text);
    expect_file("Hex", hexadecimal, hexadecimal_text);
}

TEST(Digits, AFileHoldsAWrongOne) {
    const std::pair<unsigned, unsigned> sizes[] = {{100, 83},      {101, 0},         {997, 2000},
                                                   {4'096, 4'096}, {12'345, 10'251}, {65'537, 100}};
    for (const Computation& c : computations) {
        const Number number(c.name, 300'000);
        for (const auto& [decimal, hexadecimal] : sizes)
            expect_files(c, decimal, hexadecimal, number.text(10, decimal), number.text(16, hexadecimal));
    }
}

TEST(Digits, OneOfAMillionIsWrong) {
    constexpr std::size_t digits = 1'000'000, hexadecimal = 830'482;
    std::string name, decimal_text, hexadecimal_text;
    for (const Computation& c : computations) {
        if (c.name != name) {
            const Number number(c.name, 3'322'100);
            name = c.name;
            decimal_text = number.text(10, digits);
            hexadecimal_text = number.text(16, hexadecimal);
        }
        expect_files(c, digits, hexadecimal, decimal_text, hexadecimal_text);
    }
}

/// Which of the lines stand in the output.
void expect_lines(const ProgramRun& run, const ProgramResult& result, const std::vector<std::string>& there,
                  const std::vector<std::string>& not_there) {
    for (const std::string& line : there)
        EXPECT_NE(result.output.find("\n" + line), std::string::npos) << line << "\n" << describe(run, result);
    for (const std::string& line : not_there)
        EXPECT_EQ(result.output.find("\n" + line), std::string::npos) << line << "\n" << describe(run, result);
}

TEST(Digits, AStageRunsUnwantedOrIsLeftOut) {
    const std::string hex_file = "Verifying Hexadecimal Output\n", binary = "Verifying Binary Output\n",
                      conversion = "Verifying Base Conversion\n", dec_file = "Verifying Decimal Output\n";
    const struct {
        std::string line;
        std::vector<std::string> there, not_there;
        std::size_t files;
    } cases[] = {
        {"",
         {"Writing Hexadecimal Digits\n", "Base Converting\n", "Writing Decimal Digits\n", conversion, binary, dec_file,
          hex_file},
         {"Processing"},
         2},
        {" -hex:0",
         {"Writing Decimal Digits\n", conversion, dec_file},
         {"Writing Hex", binary, hex_file, "Last Hex"},
         1},
        {" -verify:0", {"Writing Hexadecimal Digits\n", "Writing Decimal Digits\n"}, {"Verifying"}, 2},
        {" -od:0",
         {"Processing Hexadecimal Digits\n", "Processing Decimal Digits\n", conversion, binary},
         {"Writing", dec_file, hex_file},
         0},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const ProgramRun run = zorvane("custom pi -dec:1000" + c.line);
        const ProgramResult result = run_in(folder, run);
        EXPECT_EQ(result.exit_code, 0);
        expect_lines(run, result, c.there, c.not_there);
        expect_lines(run, result,
                     {"Last Decimal Digits:  Pi\n", "1857780532 1712268066 1300192787 6611195909 2164201989  : 1,000\n",
                      "Spot Check: Good through 1,000\n"},
                     {});
        const std::filesystem::directory_iterator files(folder.path), end;
        EXPECT_EQ(static_cast<std::size_t>(std::distance(files, end)), c.files) << describe(run, result);
    }
}

TEST(Digits, TheOutputGoesToAnotherFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path / "out/deep");
    const ProgramRun run = zorvane("custom e -dec:100 -hex:0 -C:0 -o out/deep");
    const ProgramResult result = run_in(folder, run);
    EXPECT_EQ(read_file(folder.path / "out/deep/e - Dec - exp(1).txt"), Number("e", 1000).text(10, 100))
        << describe(run, result);
}

TEST(SpotCheck, AWrongResultLooksRightOrLosesItsFiles) {
    const TemporaryFolder folder;
    const std::filesystem::path program = folder.path / "zorvane";
    std::filesystem::copy_file(ZORVANE_PROGRAM, program);
    std::filesystem::create_directories(folder.path / "Digits");
    const struct {
        std::string file, line;
        int exit_code;
    } cases[] = {
        {"100 | 3421170679\n200 | 5493038196\n", "Spot Check: Good through 200\n", 0},
        {"100 | 3421170679\n200 | 5493038197\n", "Spot Check: Mismatch at 200\n", 1},
        {"100 | 3421170679\n201 | 0\n", "Spot Check: Good through 100\n", 0},
        {"1,000 | 2164201989\n", "Spot Check: Unavailable - No suitable spot check entry.\n", 0},
        {"", "Spot Check: Unavailable - Digit file not found.\n", 0},
    };
    for (const auto& c : cases) {
        std::filesystem::remove(folder.path / "Digits/Pi.txt");
        if (!c.file.empty()) write_file(folder.path / "Digits/Pi.txt", c.file);
        ProgramRun run = zorvane("custom pi -dec:200 -hex:0");
        run.arguments[0] = program;
        const TemporaryFolder output;
        const ProgramResult result = run_in(output, run);
        EXPECT_EQ(result.exit_code, c.exit_code) << describe(run, result);
        expect_lines(run, result, {c.line}, {});
        const std::string failure = reported("AlgorithmFailedException", "Spot check failed at: 200");
        EXPECT_EQ(result.output.find(failure) != std::string::npos, c.exit_code != 0) << describe(run, result);
        EXPECT_EQ(read_file(output.path / "Pi - Dec - Chudnovsky.txt"), Number("Pi", 1000).text(10, 200));
    }
}

} // namespace
