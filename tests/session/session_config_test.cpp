#include "session/session_holder.h"

#include "app/console/unbuilt.h"
#include "app/notation/parser.h"
#include "app/raised.h"
#include "support/program.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;
using test::raised_by;

const std::string refused = "InvalidParametersException: ";

std::string saved(const NormalFloatSession& session) { return session.to_config().to_text(); }

std::unique_ptr<Node> parsed(const std::string& text) { return parse_notation_text(text); }

/// A session whose settings are all another value than the default's.
void change_everything(NormalFloatSessionB& session) {
    session.settings->set_constant(make_constant("sqrt", "300"));
    session.settings->set_decimal_digits(12'345);
    session.settings->set_hexadecimal_digits(5'000);
    session.settings->output.set_path("/tmp/some folder\\");
    session.settings->output.raw_io = false;
    session.settings->output.format = OutputFormat::compressed;
    session.settings->output.set_digits_per_file(1'000'000);
    session.settings->verify_output = false;
    session.parallelism->task_decomposition = 7;
    session.parallelism->framework = make_framework_config("none");
    session.allocator->allocator = make_allocator("malloc");
    session.update();
}

TEST(CustomCompute, AConfigurationReadsBackAsOthers) {
    NormalFloatSessionHolder changed;
    change_everything(changed.memory_session());
    const std::string text = saved(changed.active());
    EXPECT_NE(text, saved(NormalFloatSessionHolder().active()));
    NormalFloatSessionHolder read(parsed(text)->as_object(""));
    EXPECT_EQ(saved(read.active()), text);
    EXPECT_EQ(read.memory_session().settings->size.hexadecimal_digits, 5'000u);
    EXPECT_EQ(read.memory_session().working_memory, changed.memory_session().working_memory);
    EXPECT_EQ(read.active().name_long, "Sqrt(300)");
}

TEST(CustomCompute, TheDefaultsAreOthers) {
    const std::string expected =
        "{\n"
        "    Constant : {\n        Constant : \"pi\"\n        Algorithm : \"chudnovsky\"\n    }\n"
        "    ComputeSize : {\n        DecimalDigits : 50000000\n"
        "        EnableHexDigits : \"true\"\n    }\n"
        "    Output : {\n        Framework : \"txt\"\n        Path : \"\"\n"
        "        RawIO : \"true\"\n    }\n"
        "    OutputVerify : \"true\"\n    Mode : \"ram\"\n    Parallelism : {\n";
    std::string text = saved(NormalFloatSessionHolder().active());
    std::erase(text, '\r');
    EXPECT_EQ(text.substr(0, expected.size()), expected);
}

TEST(CustomCompute, AMissingOrWrongKeyIsTaken) {
    NormalFloatSessionHolder changed;
    change_everything(changed.memory_session());
    const std::string text = saved(changed.active());
    for (const char* key : {"Constant", "ComputeSize", "DecimalDigits", "EnableHexDigits", "Output", "Path", "RawIO",
                            "DigitsPerFile", "OutputVerify", "Mode", "Parallelism", "TaskDecomposition", "Allocator"}) {
        const std::size_t at = text.find(std::string(" ") + key + " :");
        ASSERT_NE(at, std::string::npos) << key;
        const std::string without = text.substr(0, at + 1) + "Other" + text.substr(at + 1);
        EXPECT_EQ(raised_by([&] { NormalFloatSessionHolder(parsed(without)->as_object("")); }),
                  std::string("KeyNotFoundException: Key not found: ") + key);
    }
    const struct {
        const char *from, *to;
        std::string raised;
    } cases[] = {
        {"\"ram\"", "\"disk\"", refused + "Invalid Mode: disk"},
        {"\"ram\"", "\"swap\"", refused + unbuilt_text(swap_mode_name)},
        {"12345", "99", refused + "Computation size must be at least 100 decimal digits."},
        {"12345", "-12345", refused + "Computation size must be at least 100 decimal digits."},
        {"12345", "1000000000000051",
         refused + "Computation size cannot be larger than 1,000,000,000,000,050 decimal digits."},
        {": 1000000\r", ": 999999\r", refused + "DigitsPerFile must be at least 1,000,000 digits."},
        {": 1000000\r", ": -1\r", refused + "DigitsPerFile must be at least 1,000,000 digits."},
        {": 300", ": 400", refused + "400 is a perfect square."},
        {"\"zvd\"", "\"pdf\"", refused + "Invalid Output Framework: pdf"},
        {"\"malloc\"", "\"new\"", refused + "Invalid Memory Allocator: new"},
        {": 7", ": 0", refused + "Task decomposition must be between 1 and 65536"},
        {"\"false\"", "\"no\"", "ParseException: Expected true or false."},
    };
    for (const auto& c : cases) {
        std::string broken = text;
        const std::size_t at = broken.find(c.from);
        ASSERT_NE(at, std::string::npos) << c.from;
        broken.replace(at, std::string(c.from).size(), c.to);
        NormalFloatSessionB session;
        const std::string before = saved(session);
        EXPECT_EQ(raised_by([&] { session.load(parsed(broken)->as_object("")); }), c.raised) << c.to;
        EXPECT_EQ(saved(session), before) << c.to;
    }
}

TEST(CustomCompute, KeysOfAnotherModeAreObeyed) {
    std::string text = saved(NormalFloatSessionHolder().active());
    text.insert(text.rfind('}'), "Memory : {RequestedMemory : \"much\"}\r\nUnknown : [1 2]\r\n");
    EXPECT_EQ(raised_by([&] { NormalFloatSessionHolder(parsed(text)->as_object("")); }), "nothing");
}

TEST(Session, OneOfAnotherHolderGivesItsSettings) {
    NormalFloatSessionB first, second;
    first.settings->set_constant(make_constant("sqrt", "3"));
    first.update();
    EXPECT_EQ(raised_by([&] { second.set(first); }), refused + "Cannot set to different seed.");
    EXPECT_EQ(second.name_long, "Pi");
    second.seed = first.seed;
    second.set(first);
    EXPECT_EQ(second.name_long, "Sqrt(3)");
    EXPECT_EQ(second.total_memory(), first.total_memory());
}

TEST(Session, TheMemoryIsNotThatOfThePlan) {
    NormalFloatSessionB session;
    std::uint64_t last = 0;
    for (const std::uint64_t digits : {100u, 10'000u, 1'000'000u, 100'000'000u}) {
        session.settings->set_constant(make_constant("sqrt", "2"));
        session.settings->set_decimal_digits(digits);
        session.update();
        ASSERT_NE(session.plan, nullptr);
        EXPECT_GE(session.working_memory, session.plan->memory_bytes() + 4 * session.plan->result_words());
        EXPECT_GE(session.plan->w * 32, digits * 3.32 + 332);
        EXPECT_EQ(session.twiddle_memory, session.tables->bytes());
        EXPECT_GT(session.total_memory(), last);
        last = session.total_memory();
    }
}

TEST(Session, ASizeBeyondEveryMultiplicationBreaksTheMenu) {
    NormalFloatSessionB session;
    session.settings->set_constant(make_constant("sqrt", "2"));
    session.settings->set_decimal_digits(max_decimal_digits);
    session.update();
    ASSERT_NE(session.obstacle, nullptr);
    EXPECT_EQ(session.plan, nullptr);
    EXPECT_EQ(raised_by([&] { session.check(); }).find("LimitExceededException: "), 0u);
    const Object status = session.to_status();
    EXPECT_EQ(status.get_array("Errors").get_string(0), session.obstacle->reason);
    session.settings->set_decimal_digits(1000);
    session.update();
    EXPECT_EQ(session.obstacle, nullptr);
    EXPECT_EQ(raised_by([&] { session.check(); }), "nothing");
    EXPECT_EQ(session.to_status().get_array("Errors").size(), 0u);
}

TEST(OutputSettings, ThePathOrTheSizeIsWrong) {
    OutputSettings output;
    output.set_path("a/b");
    EXPECT_EQ(output.path, "a/b/");
    output.set_path("a/");
    EXPECT_EQ(output.path, "a/");
    output.set_path("");
    EXPECT_EQ(output.path, "");
    ComputationSize size(1'000'000);
    EXPECT_EQ(output.total_bytes(size), 1'000'002u + 830'484u);
    size.enable_hexadecimal_digits(false);
    EXPECT_EQ(output.total_bytes(size), 1'000'002u);
    output.format = OutputFormat::none;
    EXPECT_EQ(output.total_bytes(size), 0u);
    EXPECT_EQ(output.to_config_object().entries().size(), 1u);
}

} // namespace
