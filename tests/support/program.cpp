#include "support/program.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <pty.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

void exec_program(const ProgramRun& run) {
    if (!run.working_directory.empty() && chdir(run.working_directory.c_str()) != 0) _exit(126);
    for (const auto& [name, value] : run.environment) setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> arguments;
    for (const std::string& argument : run.arguments) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
}

struct Child {
    pid_t process;
    int input, output; // the same descriptor on a terminal
};

Child start_on_terminal(const ProgramRun& run) {
    int terminal;
    const winsize size{25, 80, 0, 0};
    const pid_t process = forkpty(&terminal, nullptr, nullptr, &size);
    if (process == 0) exec_program(run);
    return {process, terminal, terminal};
}

Child start_on_pipes(const ProgramRun& run) {
    int in[2], out[2];
    if (pipe(in) != 0 || pipe(out) != 0) throw std::runtime_error("pipe() failed");
    const pid_t process = fork();
    if (process == 0) {
        dup2(in[0], 0);
        dup2(out[1], 1);
        dup2(out[1], 2);
        for (const int end : {in[0], in[1], out[0], out[1]}) close(end);
        exec_program(run);
    }
    close(in[0]);
    close(out[1]);
    return {process, in[1], out[0]};
}

ProgramResult drive(const ProgramRun& run, const std::string& marker, const std::function<void(int)>& action) {
    std::signal(SIGPIPE, SIG_IGN);
    const Child child = run.terminal ? start_on_terminal(run) : start_on_pipes(run);
    fcntl(child.input, F_SETFL, fcntl(child.input, F_GETFL) | O_NONBLOCK);
    std::string_view unsent = run.input;
    ProgramResult result;
    bool acted = !action;
    bool input_open = true;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(run.seconds);
    for (;;) {
        if (std::chrono::steady_clock::now() > deadline) kill(child.process, SIGKILL);
        if (input_open && !run.terminal && unsent.empty() && acted) {
            close(child.input);
            input_open = false;
        }
        pollfd events[2] = {{child.output, POLLIN, 0}, {child.input, POLLOUT, 0}};
        poll(events, input_open && !unsent.empty() ? 2 : 1, 100);
        if (!unsent.empty() && (events[1].revents & (POLLOUT | POLLERR)) != 0) {
            const ssize_t sent = write(child.input, unsent.data(), unsent.size());
            if (sent > 0) unsent.remove_prefix(static_cast<std::size_t>(sent));
            if (sent < 0 && errno != EAGAIN) unsent = {};
        }
        if ((events[0].revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
            char block[4096];
            const ssize_t got = read(child.output, block, sizeof block);
            if (got < 0 && errno == EAGAIN) continue;
            if (got <= 0) break; // a terminal whose program ended reads as an error
            result.output.append(block, static_cast<std::size_t>(got));
        }
        if (!acted && result.output.find(marker) != std::string::npos) {
            action(child.process);
            acted = true;
        }
    }
    if (input_open && child.input != child.output) close(child.input);
    close(child.output);
    int status = 0;
    waitpid(child.process, &status, 0);
    if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
    return result;
}

std::filesystem::path make_folder() {
    std::string path = (std::filesystem::temp_directory_path() / "zorvane-test-XXXXXX").string();
    if (!mkdtemp(path.data())) throw std::runtime_error("mkdtemp() failed");
    return path;
}

} // namespace

ProgramResult run_program(const ProgramRun& run) { return drive(run, "", nullptr); }

ProgramResult run_and_act(const ProgramRun& run, const std::string& marker,
                          const std::function<void(int process)>& action) {
    return drive(run, marker, action);
}

std::string describe(const ProgramRun& run, const ProgramResult& result) {
    constexpr std::size_t shown = 4000;
    std::string text = "Command:";
    for (const auto& [name, value] : run.environment) text += " " + name + "='" + value + "'";
    for (const std::string& argument : run.arguments) text += " '" + argument.substr(0, shown) + "'";
    return text + "\nInput: " + run.input.substr(0, shown) + "\nExit code: " + std::to_string(result.exit_code)
           + ", signal: " + std::to_string(result.signal) + "\nOutput:\n" + result.output.substr(0, shown) + "\n";
}

TemporaryFolder::TemporaryFolder() : path(make_folder()) {}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

void write_file(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string read_file(const std::filesystem::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

} // namespace test
