#include "session/normal_float_session_b.h"
#include "session/run_results.h"

#include "app/console/linear_console_status.h"
#include "app/raised.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

using namespace zvp;
using test::printed_by;
using test::raised_by;

/// Keeps the objects that a run reports, and what else is printed by its own names.
class RecordingSink final : public StatusSink {
public:
    void print_cells(const std::vector<StatusCell>&) override {}
    void print_line(std::string_view text, char) override { lines += std::string(text) + "\n"; }
    void print_pair(std::size_t, std::string_view label, const StatusCell& cell) override {
        lines += std::string(label) + cell.text + "\n";
    }
    void print_time(std::string_view label, double seconds) override {
        EXPECT_GE(seconds, 0);
        lines += "time of " + std::string(label) + "\n";
    }
    void report_result(const ReportObject& object) override {
        objects.emplace_back(object.get_name(), object.to_object().to_json());
    }
    void warning(std::string_view text) override { lines += "warning " + std::string(text) + "\n"; }
    void pause_warning(std::string_view text) override { warning(text); }
    void fatal(const Exception&) override { std::abort(); }
    void print(std::string_view text) override { lines += text; }
    void print(const StatusCell& cell) override { lines += cell.text; }
    void end_line() override { lines += "\n"; }
    void update(bool) override {}
    StatusNode& begin_task(std::string_view) override { return console.begin_task(""); }
    void end_task(double) override {}

    LinearConsoleRoot console;
    std::string lines;
    std::vector<std::pair<std::string, std::string>> objects;
};

NormalFloatSessionB& small(NormalFloatSessionB& session) {
    session.settings->set_constant(make_constant("sqrt", "2"));
    session.settings->set_decimal_digits(1000);
    session.settings->output.format = OutputFormat::none;
    session.update();
    return session;
}

TEST(Run, ALineOrAReportIsMissing) {
    NormalFloatSessionB session;
    RecordingSink sink;
    printed_by([&] { small(session).run(&sink); });
    std::size_t at = 0;
    for (const char* line :
         {"Start Time:", "Working Memory...  ", "Twiddle Tables...  ", "Begin Computation:\n", "time of Sqrt(2)\n\n"}) {
        at = sink.lines.find(line, at);
        ASSERT_NE(at, std::string::npos) << line << sink.lines;
    }
    ASSERT_EQ(sink.objects.size(), 2u);
    EXPECT_EQ(sink.objects[0].first, "ComputationOutput");
    EXPECT_EQ(sink.objects[1].first, "ComputationDiagnostics");
    for (const char* key : {"\"Start\"", "\"End\"", "\"ComputeTimeMillis\"", "\"WallTimeMillis\"", "\"DigitStats\""})
        EXPECT_NE(sink.objects[0].second.find(key), std::string::npos) << key;
    for (const char* key :
         {"\"MaxConcurrency\"", "\"UserTime%x100\"", "\"KernelTime%x100\"", "\"Contiguous\": \"true\""})
        EXPECT_NE(sink.objects[1].second.find(key), std::string::npos) << key << sink.objects[1].second;
}

TEST(Run, APhaseIsNotLogged) {
    NormalFloatSessionB session;
    const test::TemporaryFolder folder;
    const std::string path = (folder.path / "log.txt").string();
    session.event_log = std::make_unique<EventLog>();
    session.event_log->log("before");
    session.event_log->attach(path);
    printed_by([&] { small(session).run(); });
    const std::string text = session.event_log->text();
    EXPECT_EQ(test::read_file(path), text);
    std::size_t at = 0;
    for (const char* entry : {"\tbefore\r\n", "\tWorking Memory\r\n", "\tWorking Memory: ", "\tTwiddle Tables\r\n",
                              "\tTwiddle Tables: ", "\tBegin Computation\r\n", "\tEnd Computation\r\n"}) {
        at = text.find(entry, at);
        ASSERT_NE(at, std::string::npos) << entry << text;
    }
    const std::regex line(R"(\w{3} \w{3} \d+ \d\d:\d\d:\d\d \d{4}\t\d+\.\d{3}\t[^\r\n]*\r\n)");
    std::size_t matched = 0;
    for (std::sregex_iterator i(text.begin(), text.end(), line), end; i != end; ++i) matched += i->length();
    EXPECT_EQ(matched, text.size());
    EXPECT_EQ(raised_by([&] {
                  try {
                      EventLog().attach("/no/such/folder/log");
                  } catch (const Exception& failure) {
                      throw StringException("", failure.get_typename());
                  }
              }),
              "StringException: FileException");
}

TEST(Run, AFrameworkOrAnAllocatorIsNotSupported) {
    for (const std::string& framework : framework_registry().names()) {
        for (const std::string& allocator : allocator_registry().names()) {
            NormalFloatSessionB session;
            session.parallelism->framework = make_framework_config(framework);
            session.parallelism->task_decomposition = 3;
            session.allocator->allocator = make_allocator(allocator);
            const std::string printed = printed_by([&] { small(session).run(); });
            EXPECT_NE(printed.find("\nMulti-Threading:      " + session.parallelism->framework->summary(3) + "\n"),
                      std::string::npos)
                << printed;
            EXPECT_NE(printed.find("\nTotal Computation Time:     "), std::string::npos) << printed;
        }
    }
}

TEST(Run, ASessionRunsTwice) {
    NormalFloatSessionB session;
    printed_by([&] { small(session).run(); });
    EXPECT_EQ(raised_by([&] { session.run(); }), "InvalidParametersException: A session runs only once.");
}

TEST(RunResults, AReportTellsAnotherOutcome) {
    ComputationOutput output;
    output.start_date = "then";
    DigitResult decimal(10);
    output.decimal = &decimal;
    decimal.counts.counts[9] = 5;
    decimal.counts.hash = (std::uint64_t{1} << 61) - 1; // the residue 0
    const Object object = output.to_object();
    EXPECT_EQ(object.get_object("Dates").get_string("Start"), "then");
    const Object& stats = object.get_object("DigitStats");
    EXPECT_EQ(stats.get_object("DecStats").get_integer("Hash"), 0);
    EXPECT_EQ(stats.get_object("DecStats").get_array("Counts").size(), 10u);
    EXPECT_EQ(stats.get_object("DecStats").get_array("Counts").get_integer(9), 5);
    EXPECT_EQ(stats.find("HexStats"), nullptr);
    EXPECT_EQ(stats.find("HiddenDecDigits"), nullptr);

    ComputationDiagnostics diagnostics;
    diagnostics.seconds = 2;
    diagnostics.processor = {3, 0.5};
    for (const auto& [result, status] : {std::pair{50, "Passed"}, {-70, "Mismatch"}, {0, "Unavailable"}}) {
        diagnostics.spot_check = result;
        const Object told = diagnostics.to_object();
        const Object& check = told.get_object("SpotCheck");
        EXPECT_EQ(check.get_string("Status"), status);
        EXPECT_EQ(check.find("Offset") != nullptr, result != 0);
        if (result != 0) {
            EXPECT_EQ(check.get_integer("Offset"), std::abs(result));
        }
        EXPECT_EQ(told.get_object("Utilization").get_integer("UserTime%x100"), 15'000);
        EXPECT_EQ(told.get_object("Utilization").get_integer("KernelTime%x100"), 2'500);
    }
}

} // namespace
