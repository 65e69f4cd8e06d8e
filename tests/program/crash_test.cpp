#include "program/zorvane.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace test;

const std::string long_run = "2\n99999999\n4\n3\n0\n";
constexpr std::string_view told = "\nOops... zorvane has crashed.\n\nCreating mini-dump file...  ";
constexpr std::string_view told_done = "Done!\n\nThe program will now exit.\n\n";

/// Sends a signal to a thread other than the main one, once there is one.
void signal_worker(int process, int signal) {
    const std::string tasks = "/proc/" + std::to_string(process) + "/task";
    for (int tries = 0; tries < 1000; ++tries, std::this_thread::sleep_for(std::chrono::milliseconds(5)))
        for (const auto& task : std::filesystem::directory_iterator(tasks))
            if (const int thread = std::stoi(task.path().filename()); thread != process) {
                std::this_thread::sleep_for(std::chrono::milliseconds(50)); // until it works
                syscall(SYS_tgkill, process, thread, signal);
                return;
            }
    kill(process, SIGKILL);
}

std::vector<std::filesystem::path> files_in(const std::filesystem::path& folder) {
    return {std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()};
}

struct Case {
    const char* name;
    int signal;
    const char* signal_name;
    std::string input;
    const char* marker;
    void (*send)(int process, int signal);
};

const auto to_process = [](int process, int signal) { kill(process, signal); };

class Crash : public testing::TestWithParam<Case> {};

TEST_P(Crash, LeavesNoRecord) {
    const Case& c = GetParam();
    const TemporaryFolder folder;
    ProgramRun run = zorvane({"bbp"}, c.input);
    run.working_directory = folder.path;
    const ProgramResult result = run_and_act(run, c.marker, [&](int process) { c.send(process, c.signal); });
    EXPECT_EQ(result.signal, c.signal) << describe(run, result);
    EXPECT_TRUE(result.output.ends_with(std::string(told) + std::string(told_done))) << describe(run, result);
    const std::vector<std::filesystem::path> files = files_in(folder.path);
    ASSERT_EQ(files.size(), 1u) << describe(run, result);
    EXPECT_TRUE(std::regex_match(files[0].filename().string(), std::regex(R"(zorvane-\d{8}-\d{6}\.dmp)")))
        << files[0];
    const std::string record = read_file(files[0]);
    EXPECT_NE(record.find(std::string("Signal:   ") + std::to_string(c.signal) + "  " + c.signal_name),
              std::string::npos)
        << record;
    EXPECT_NE(record.find("    rip = 0x"), std::string::npos) << record;
    // The handler, what it interrupted and its callers.
    const std::size_t frames = record.find("\nBacktrace:\n");
    ASSERT_NE(frames, std::string::npos) << record;
    EXPECT_GE(std::count(record.begin() + static_cast<std::ptrdiff_t>(frames), record.end(), '['), 4) << record;
}

INSTANTIATE_TEST_SUITE_P(
    Signal, Crash,
    testing::Values(Case{"InvalidAccessWaiting", SIGSEGV, "SIGSEGV", "", "option: ", to_process},
                    Case{"InvalidAccessComputing", SIGSEGV, "SIGSEGV", long_run, "Frac(", to_process},
                    Case{"InvalidAccessInWorker", SIGSEGV, "SIGSEGV", long_run, "Frac(", signal_worker},
                    Case{"AbortWaiting", SIGABRT, "SIGABRT", "", "option: ", to_process},
                    Case{"AbortInWorker", SIGABRT, "SIGABRT", long_run, "Frac(", signal_worker},
                    Case{"ArithmeticFault", SIGFPE, "SIGFPE", long_run, "Frac(", signal_worker},
                    Case{"IllegalInstruction", SIGILL, "SIGILL", "", "option: ", to_process},
                    Case{"BusError", SIGBUS, "SIGBUS", "", "option: ", to_process}),
    [](const auto& test_case) { return test_case.param.name; });

TEST(CrashRecord, AFileThatCannotBeWrittenHangsOrIsReportedAsDone) {
    const std::pair<const char*, std::string> cases[] = {
        {"rmdir \"$PWD\"; exec \"$0\" bbp", "Unable to create dump file: Path does not exist.\n"},
        {"trap '' XFSZ; ulimit -f 0; exec \"$0\" bbp", "Unable to create minidump: Disk is Full\n"},
    };
    for (const auto& [script, expected] : cases) {
        const TemporaryFolder folder;
        std::filesystem::create_directory(folder.path / "work");
        ProgramRun run;
        run.arguments = {"/bin/sh", "-c", script, ZORVANE_PROGRAM};
        run.working_directory = folder.path / "work";
        const ProgramResult result = run_and_act(run, "option: ", [](int process) { kill(process, SIGSEGV); });
        EXPECT_EQ(result.signal, SIGSEGV) << describe(run, result);
        EXPECT_TRUE(result.output.ends_with(std::string(told) + expected + "\n")) << describe(run, result);
    }
}

} // namespace
