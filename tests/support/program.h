#pragma once
// Runs programs from outside: arguments and input in, output, exit code and files back.

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace test {

struct ProgramResult {
    std::string output; // standard output and standard error together
    int exit_code = -1; // -1 when a signal ended the program
    int signal = 0;
};

struct ProgramRun {
    std::vector<std::string> arguments; // the program's path first
    std::string input;
    std::vector<std::pair<std::string, std::string>> environment; // added to the test's own
    std::filesystem::path working_directory;                      // the test's own if empty
    bool terminal = false; // standard input and output are a pseudo-terminal, and `input` is typed there
    double seconds = 120;  // the program is killed behind this
};

ProgramResult run_program(const ProgramRun& run);

/// Starts the program, calls `action` with its process id once its output contains `marker`, and waits for its
/// end. The input stays open until then.
ProgramResult run_and_act(const ProgramRun& run, const std::string& marker,
                          const std::function<void(int process)>& action);

/// The command line, the input and what came of it, for the message of a failed test.
std::string describe(const ProgramRun& run, const ProgramResult& result);

/// A folder that is removed at the end of the test.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path path;
};

void write_file(const std::filesystem::path& path, const std::string& content);
std::string read_file(const std::filesystem::path& path);

/// What `function` prints on standard output.
template <class Function>
std::string printed_by(Function&& function);

} // namespace test

#include <gtest/gtest.h>

template <class Function>
std::string test::printed_by(Function&& function) {
    testing::internal::CaptureStdout();
    function();
    return testing::internal::GetCapturedStdout();
}
