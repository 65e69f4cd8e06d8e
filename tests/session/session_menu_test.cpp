#include "session/session_holder.h"

#include "app/raised.h"
#include "support/process.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::printed_with_input;

/// The session behind the menu, with what was typed before "0".
struct Edited {
    explicit Edited(const std::string& input) {
        session.settings->set_constant(make_constant("sqrt", "2"));
        session.settings->set_decimal_digits(1000);
        session.update();
        printed = printed_with_input(input + "0\n", [&] { session.menu(false); });
        text = session.to_config().to_text();
    }

    bool has(const std::string& line) const { return text.find(line + "\r\n") != std::string::npos; }
    bool told(const std::string& line) const { return printed.find(line) != std::string::npos; }

    NormalFloatSessionB session;
    std::string printed, text;
};

TEST(CustomMenu, AnOptionDoesNotReachItsSetting) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path.string();
    const struct {
        std::string input, line;
    } cases[] = {
        {"1\n0\n50\n", "        Argument : 50"},
        {"1\n1\n", "        Constant : \"goldenratio\""},
        {"1\n3\n2\n1\n", "        Algorithm : \"ramanujan\""},
        {"1\n2\n2\n1\n", "        Algorithm : \"exp(-1)\""},
        {"3\n5000\n", "        DecimalDigits : 5000"},
        {"3\n1K\n", "        DecimalDigits : 1024"},
        {"3\n99\n3\n1000000000000051\n3\n1m\n", "        DecimalDigits : 1000000"},
        {"4\n0\n", "        EnableHexDigits : \"false\""},
        {"4\n0\n4\n900\n", "        HexadecimalDigits : 900"},
        {"5\n1\n0\n0\n", "        Framework : \"none\""},
        {"5\n2\n" + path + "\n0\n", "        Path : \"" + path + "/\""},
        {"5\n3\n0\n", "        RawIO : \"false\""},
        {"5\n1\n1\n" + path + "\n0\n", "        Path : \"" + path + "/\""},
        {"5\n1\n2\n1\n25m\n\n0\n", "        DigitsPerFile : 25000000"},
        {"5\n1\n2\n1\n25m\n\n1\n2\n0\n\n0\n", "        DigitsPerFile : 0"},
        {"6\n", "    OutputVerify : \"false\""},
        {"7\n1\n", "    Mode : \"ram\""},
        {"8\n2\n5\n0\n", "        TaskDecomposition : 5"},
        {"8\n3\n0\n0\n", "        Framework : \"none\""},
        {"9\n2\n0\n0\n", "        Allocator : \"malloc\""},
        {"9\n2\n1\n3\n0\n", "        LargePages : \"forced\""},
    };
    for (const auto& c : cases) {
        const Edited edited(c.input);
        EXPECT_TRUE(edited.has(c.line)) << c.input << edited.text << edited.printed;
    }
}

TEST(CustomMenu, ARefusedAnswerIsTaken) {
    const std::string unchanged = Edited("").text;
    const struct {
        std::string input, told;
    } cases[] = {
        {"3\n99\n", "Computation size must be at least 100 decimal digits."},
        {"3\n2000000000000000\n", "Computation size cannot be larger than 1,000,000,000,000,050 decimal digits."},
        {"4\n5\n", "Computation size must be at least 83 hexadecimal digits."},
        {"5\n2\n/no/such/folder\n0\n", "Path is not writable."},
        {"5\n1\n2\n1\n999999\n0\n", "DigitsPerFile must be at least 1,000,000 digits."},
        {"1\n8\n0\n2\n", "Computing Euler's Constant isn't part of version"},
        {"7\n2\n1\n", "        Swap Mode           isn't part of version "},
        {"9\n1\n0\n", "   1    Adjust Total Memory (not available in this mode)\n"},
        {"3\n1e3\n2e3\n1000\n", "Invalid number: 2e3  (not understood: \"e3\")\nDigits: "},
        {"20\n\n21\n\n", "Load/Save Configuration File"},
        {"20\n/no/such/file\n", "Unable to open file."},
        {"21\n/no/such/file\n", "Unable to create file."},
        {"22\n10\n19\n", "option: option: option: option: "},
    };
    for (const auto& c : cases) {
        const Edited edited(c.input);
        EXPECT_EQ(edited.text, unchanged) << c.input;
        EXPECT_TRUE(edited.told(c.told)) << c.input << edited.printed;
    }
}

TEST(CustomMenu, VerifyingIsOfferedWithoutAnOutput) {
    const Edited off("5\n1\n0\n0\n6\n");
    const std::size_t second = off.printed.rfind("Custom Compute a Constant");
    EXPECT_TRUE(off.told("  6     Verify Output:"));
    EXPECT_EQ(off.printed.find("Verify Output", second), std::string::npos);
    EXPECT_TRUE(off.has("    OutputVerify : \"true\"")) << "the option that isn't there was taken";
}

TEST(CustomMenu, AnOutputCannotBeTurnedOnWhereItsPathIsBad) {
    const test::TemporaryFolder folder;
    OutputSettings output;
    output.format = OutputFormat::none;
    output.set_path("/no/such/folder");
    const std::string good = folder.path.string() + "/";
    const std::string printed =
        printed_with_input("1\n1\n/nor/this\n1\n1\n" + good + "\n0\n", [&] { output.menu(ComputationSize(1000)); });
    EXPECT_NE(printed.find("Path is not writable."), std::string::npos) << printed;
    EXPECT_EQ(output.format, OutputFormat::text);
    EXPECT_EQ(output.path, good);
}

TEST(CustomMenu, AFileReadsBackAsOtherSettings) {
    const test::TemporaryFolder folder;
    const std::string path = (folder.path / "saved").string();
    const Edited first("1\n0\n77\n3\n2000\n4\n500\n8\n2\n3\n0\n6\n21\n" + path + "\n");
    const Edited second("20\n" + path + "\n");
    EXPECT_EQ(second.text, first.text);
    EXPECT_TRUE(first.has("        Argument : 77"));
    test::write_file(path + ".cfg", "{Action : \"StressTest\" StressTest : {}}");
    const Edited third("20\n" + path + "\n");
    EXPECT_TRUE(third.told("Invalid Action: StressTest"));
    test::write_file(path + ".cfg", "{Action : \"CustomCompute\" CustomCompute : {Mode : \"swap\"}}");
    EXPECT_TRUE(Edited("20\n" + path + "\n").told("Swap Mode isn't part of version"));
    EXPECT_EQ(third.text, Edited("").text);
}

TEST(CustomMenu, AStartIsOfferedThatCannotRun) {
    const std::string start = "  0     Start Computation!\n", finish = "  0     Finish\n";
    for (const bool offered : {true, false}) {
        NormalFloatSessionB session;
        session.settings->set_constant(make_constant("sqrt", "2"));
        session.settings->set_decimal_digits(max_decimal_digits);
        session.update();
        const std::string printed = printed_with_input("0\n3\n1000\n0\n", [&] { session.menu(offered); });
        const std::size_t end = printed.find(offered ? start : finish);
        ASSERT_NE(end, std::string::npos);
        EXPECT_LT(printed.find("option: option: "), end) << printed;
        EXPECT_EQ(printed.find(offered ? finish : start), std::string::npos);
        EXPECT_EQ(session.obstacle, nullptr);
    }
}

} // namespace
