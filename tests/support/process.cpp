#include "support/process.h"

#include <filesystem>
#include <iterator>

namespace test {

namespace {

bool is_root() { return getuid() == 0; }

void require(bool done, const char* call) {
    if (!done) throw std::runtime_error(std::string(call) + " failed");
}

} // namespace

TypedInput::TypedInput(const std::string& text) : before(dup(STDIN_FILENO)) {
    int ends[2];
    require(pipe(ends) == 0, "pipe()");
    require(write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()), "write()");
    dup2(ends[0], STDIN_FILENO);
    for (const int end : ends) close(end);
}

TypedInput::~TypedInput() {
    dup2(before, STDIN_FILENO);
    close(before);
}

void show_output() { dup2(STDERR_FILENO, STDOUT_FILENO); }

// The saved user stays root, so that the destructor can go back; a user other than root has no capabilities.
UserLimit::UserLimit(int resource, rlim_t limit, bool hard) : limited(resource) {
    constexpr uid_t nobody_else = 54'321;
    require(getrlimit(resource, &before) == 0, "getrlimit()");
    const rlimit wanted{limit, hard ? limit : before.rlim_max};
    require(setrlimit(resource, &wanted) == 0, "setrlimit()");
    if (is_root()) require(setresuid(nobody_else, nobody_else, 0) == 0, "setresuid()");
    if (hard) before = wanted;
}

UserLimit::~UserLimit() {
    if (geteuid() != 0) static_cast<void>(!setresuid(0, 0, 0)); // a user other than root stays what it is
    setrlimit(limited, &before);
}

rlim_t threads_and(unsigned more) {
    if (!is_root()) return 0;
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return static_cast<rlim_t>(std::distance(begin(threads), end(threads))) + more;
}

} // namespace test
