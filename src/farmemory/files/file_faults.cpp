#include "farmemory/files/file_faults.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "platform/clock.h"

#include <mutex>

namespace FileIO {

namespace {

constexpr unsigned longest_unattended_wait = 64;
constexpr std::uint64_t shortest_key_press = 50'000'000; // nanoseconds

void print_in_red(const std::string& text) {
    const std::lock_guard lock(zvp::console_mutex());
    zvp::print(text, 'R');
    zvp::set_color('w');
}

} // namespace

void throw_file_fault(const char* function, std::string_view message, const std::string& path, int error,
                      FaultDirection direction) {
    throw FileException(function, zvp::with_system_error(message, error, direction), path, error);
}

void warn_of_file(std::string_view text, const std::string& path) {
    print_in_red("\n" + std::string(text) + "\nPath: " + path + "\n");
}

void warn_of_file_once(std::atomic<bool>& told, std::string_view text, const std::string& path) {
    if (told.exchange(true)) return;
    warn_of_file(std::string(text), path + "\nFurther messages for this warning will be suppressed.\n");
}

void UserRetry::wait(std::string_view lines) {
    print_in_red(std::string(lines) + "Re-attempting...\n");
    const std::uint64_t begin = zvp::platform::performance_counter();
    zvp::pause('R');
    if (zvp::platform::performance_counter() - begin >= shortest_key_press) return;
    if (unattended_seconds > longest_unattended_wait)
        zvp::fatal_stop("The fault lasts, and nobody is there to mend it. Stopping.");
    system.sleep(unattended_seconds);
    unattended_seconds *= 2;
}

} // namespace FileIO
