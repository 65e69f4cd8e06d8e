#include "session/digit_checks.h"

#include "support/program.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::printed_by;

const std::string duplicate = "Error parsing digit file: Duplicate entries.\n";

/// The digits of a text.
class TextReader final : public DigitViewer2::BasicDigitReader {
public:
    explicit TextReader(std::string digits_) : BasicDigitReader(10), digits(std::move(digits_)) {}

    std::string first_digits() override { return "0." + digits; }
    std::uint64_t stream_end() override { return digits.size(); }
    bool range_is_available(std::uint64_t start, std::uint64_t count) override {
        return start + count <= digits.size();
    }
    std::size_t recommend_buffer_size(std::uint64_t, std::size_t limit) override { return limit; }
    void flush_cache() override {}
    void load_stats(DigitCounts&, std::uint64_t, std::uint64_t, DigitViewer2::DigitBuffer,
                    const ParallelContext&) override {
        FAIL() << "not asked for";
    }
    void load_digits(std::uint8_t* output, DigitCounts*, std::uint64_t start, std::uint64_t count,
                     DigitViewer2::DigitBuffer buffer, const ParallelContext&) override {
        EXPECT_GE(buffer.bytes, 4096u);
        for (std::uint64_t i = 0; i < count; ++i) output[i] = static_cast<std::uint8_t>(digits.at(start + i) - '0');
    }

    std::string digits;
};

std::string shown(const DigitChecks& checks) {
    std::string text;
    for (const auto& [position, value] : checks) text += std::to_string(position) + "=" + std::to_string(value) + " ";
    return text;
}

TEST(DigitFile, ALineIsMisread) {
    const struct {
        const char *text, *entries;
        std::string printed;
    } cases[] = {
        {"", "", ""},
        {"100 | 3421170679\n", "100=3421170679 ", ""},
        {"1,000|1,234\r\n\r\n\t 200 \t|\t 0000000007 \t\n", "200=7 1000=1234 ", ""},
        {"300 | 1\n100 | 2\n200 | 3", "100=2 200=3 300=1 ", ""},
        {"100 | 1\n100 | 2\n100 | 1\n", "100=1 ", duplicate + duplicate},
        {"100 3421170679\n// comment\nabc | 5\n| 5\n100 |\n100 | x\n,|,\n100 x | 5\n200 | 5 x\n", "200=5 ", ""},
        {"0 | 1\n9 | 2\n10 | 3\n", "10=3 ", ""},
    };
    for (const auto& c : cases) {
        DigitChecks checks;
        EXPECT_EQ(printed_by([&] { checks = parse_digit_checks(c.text); }), c.printed) << c.text;
        EXPECT_EQ(shown(checks), c.entries) << c.text;
    }
}

TEST(DigitFile, AnotherFolderIsSearchedFirst) {
    const test::TemporaryFolder folder;
    const std::string program = (folder.path / "a/b/c").string() + "/";
    std::filesystem::create_directories(program);
    EXPECT_FALSE(load_digit_checks(program, "Pi").has_value());
    int value = 0;
    for (const char* place : {"../../../Digits", "../../Digits", "Digits", "Binaries/Digits"}) {
        std::filesystem::create_directories(program + place);
        test::write_file(program + place + "/Pi.txt", "10 | " + std::to_string(++value));
        test::write_file(program + place + "/pi.txt", "10 | 99");
        EXPECT_EQ(load_digit_checks(program, "Pi")->at(10), static_cast<std::uint64_t>(value)) << place;
    }
    std::filesystem::remove(program + "Binaries/Digits/Pi.txt");
    std::filesystem::create_directories(program + "Binaries/Digits/Pi.txt"); // opens as no file
    EXPECT_EQ(load_digit_checks(program, "Pi")->at(10), 3u);
}

TEST(SpotCheck, AWrongDigitPassesOrARightOneFails) {
    const test::TemporaryFolder folder;
    const std::string program = folder.path.string() + "/";
    std::filesystem::create_directories(program + "Digits");
    TextReader source("14159265358979323846264338327950288419716939937510");
    const std::string good = "Spot Check: Good through ", bad = "Spot Check: Mismatch at ",
                      none = "Spot Check: Unavailable - No suitable spot check entry.\n";
    const struct {
        const char* file;
        std::uint64_t digits;
        std::int64_t result;
        std::string printed;
    } cases[] = {
        {"10 | 1415926535\n20 | 8979323846\n50 | 6939937510\n", 50, 50, good + "50\n"}, // ends at the very last digit
        {"10 | 1415926535\n20 | 8979323846\n50 | 6939937510\n", 49, 20, good + "20\n"},
        {"20 | 8979323846\n", 20, 20, good + "20\n"},
        {"20 | 8979323846\n", 19, 0, none},
        {"", 50, 0, none},
        {"10 | 1415926535\n20 | 8979323847\n30 | 0\n", 50, -20, bad + "20\n"},
        {"10 | 1415926536\n20 | 8979323846\n", 50, -10, bad + "10\n"},
        {"19 | 5897932384\n", 50, 19, good + "19\n"},
        {"1,000 | 5\n20 | 8979323846\n", 50, 20, good + "20\n"},
    };
    for (const auto& c : cases) {
        test::write_file(program + "Digits/Number.txt", c.file);
        std::int64_t result = 1;
        EXPECT_EQ(printed_by([&] { result = spot_check(program, source, c.digits, "Number"); }), c.printed) << c.file;
        EXPECT_EQ(result, c.result) << c.file;
    }
    EXPECT_EQ(printed_by([&] { EXPECT_EQ(spot_check(program, source, 50, "Other"), 0); }),
              "Spot Check: Unavailable - Digit file not found.\n");
}

TEST(SpotCheck, TheInstalledFilesAreBroken) {
    for (const char* name : {"Catalan", "Gamma", "GoldenRatio", "Lemniscate", "Log-2", "Pi", "Sqrt-2", "Zeta3", "e"}) {
        const std::optional<DigitChecks> checks = load_digit_checks(ZORVANE_DATA_FOLDER "/", name);
        ASSERT_TRUE(checks.has_value()) << name;
        EXPECT_EQ(checks->begin()->first, 100u) << name;
        EXPECT_GE(checks->rbegin()->first, 100'000u) << name;
    }
}

} // namespace
