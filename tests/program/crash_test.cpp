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
const std::string told = "\nOops... zorvane has crashed.\n\nCreating mini-dump file...  ";
const std::string told_done = "Done!\n\nThe program will now exit.\n\n";

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

void to_process(int process, int signal) { kill(process, signal); }

TEST(Crash, LeavesNoRecord) {
    const struct {
        int signal;
        const char* name;
        std::string input;
        const char* marker;
        void (*send)(int process, int signal);
    } cases[] = {
        {SIGSEGV, "SIGSEGV", "", "option: ", to_process},       {SIGSEGV, "SIGSEGV", long_run, "Frac(", to_process},
        {SIGSEGV, "SIGSEGV", long_run, "Frac(", signal_worker}, {SIGABRT, "SIGABRT", "", "option: ", to_process},
        {SIGABRT, "SIGABRT", long_run, "Frac(", signal_worker}, {SIGFPE, "SIGFPE", long_run, "Frac(", signal_worker},
        {SIGILL, "SIGILL", "", "option: ", to_process},         {SIGBUS, "SIGBUS", "", "option: ", to_process},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        ProgramRun run = zorvane("bbp", c.input);
        run.working_directory = folder.path;
        const ProgramResult result = run_and_act(run, c.marker, [&](int process) { c.send(process, c.signal); });
        EXPECT_EQ(result.signal, c.signal) << describe(run, result);
        EXPECT_TRUE(result.output.ends_with(told + told_done)) << describe(run, result);
        using std::filesystem::directory_iterator;
        const std::vector<std::filesystem::path> files(directory_iterator(folder.path), directory_iterator{});
        ASSERT_EQ(files.size(), 1u) << describe(run, result);
        const std::string name = files[0].filename();
        EXPECT_TRUE(std::regex_match(name, std::regex(R"(zorvane-\d{8}-\d{6}\.dmp)"))) << name;
        const std::string record = read_file(files[0]);
        for (const std::string& line :
             {"Signal:   " + std::to_string(c.signal) + "  " + c.name, std::string("    rip = 0x")})
            EXPECT_NE(record.find(line), std::string::npos) << record;
        const std::size_t frames = std::min(record.find("\nBacktrace:\n"), record.size());
        EXPECT_GE(std::count(record.begin() + static_cast<std::ptrdiff_t>(frames), record.end(), '\n'), 5) << record;
    }
}

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
        EXPECT_TRUE(result.output.ends_with(told + expected + "\n")) << describe(run, result);
    }
}

} // namespace
