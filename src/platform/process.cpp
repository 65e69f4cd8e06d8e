#include "platform/process.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <unistd.h>

namespace zvp::platform {

namespace {

/// The main thread's nice value is the one that the process shows; a thread that asks first may have another.
std::atomic<int>& base_nice_value() {
    static std::atomic<int> value{getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()))};
    return value;
}

} // namespace

std::optional<std::string> executable_path() {
    std::string path(PATH_MAX, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0) return std::nullopt;
    path.resize(static_cast<std::size_t>(length));
    return path;
}

void end_process(int code) noexcept { _exit(code); }

void ignore_write_signals() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

int nice_value(PriorityClass priority) {
    switch (priority) {
    case PriorityClass::idle: return 19;
    case PriorityClass::below_normal: return 10;
    case PriorityClass::normal: return 0;
    case PriorityClass::above_normal: return -7;
    case PriorityClass::high: return -14;
    case PriorityClass::real_time: return -20;
    }
    return 0;
}

int set_priority_class(PriorityClass priority, bool requested) {
    base_nice_value(); // read before it changes
    const int target = nice_value(priority);
    errno = 0;
    const int current = getpriority(PRIO_PROCESS, 0);
    if (!requested && errno == 0 && current >= target) return 0;
    if (setpriority(PRIO_PROCESS, 0, target) != 0) return errno;
    base_nice_value() = target;
    return 0;
}

int process_nice_value() { return base_nice_value(); }

std::string environment_variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

} // namespace zvp::platform
